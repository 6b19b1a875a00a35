// An audiowall on a workstation of a test's own, and somebody who opens the windows that pick a cart.
#pragma once

#include "SetupForm.h"

#include "audio/CartPicking.h"
#include "audio/CartStore.h"

#include <QFile>

namespace tolvex::tests {

// Who opens a picker: keeps its answers.
class Asker : public QObject {
    Q_OBJECT

public:
    QList<int> answers;
    std::function<void()> then;

    Q_INVOKABLE void JumpToCart(double cart) {
        answers += int(cart);
        if (then)
            then();
    }
};

struct PickerStation : SetupStation {
    CartStore carts{settings};
    CartPicking picking;
    Asker asker;

    PickerStation() {
        InitCartState(carts);
        for (CartPart& part : settings.CartPartTable)
            part.Location = QStringLiteral("D:\\WALL");
    }
    // An audiowall of carts that hold nothing but these lines.
    void makeWall(qint32 count, const QMap<qint32, QStringList>& lines) {
        settings.NoCarts = count;
        for (int part = 1; part <= PartOfCart(count); ++part)
            list(part).resize(CartListRecords(carts, part) * CartListRecordLength);
        for (auto cart = lines.begin(); cart != lines.end(); ++cart)
            setCart(cart.key(), cart.value());
        OpenCartParts(carts, 0, true);
    }
    static QByteArray cartBytes(const QStringList& lines, float length = 180) {
        CartRecord record = MakeEmptyCartRecord(0xC0C0C0, 0);
        record.Line1 = lines.value(0);
        record.Line2 = lines.value(1);
        record.Line3 = lines.value(2);
        record.Length = record.TotalLength = record.PlayEnd = record.PlayLength = length;
        return {EncodeCartRecord(record).data(), CartListRecordLength};
    }
    void setCart(qint32 cart, const QStringList& lines, float length = 180) {
        const int part = PartOfCart(cart);
        QFile file(list(part).fileName());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(qint64(cart - (part - 1) * CartsInPart - 1) * CartListRecordLength));
        file.write(cartBytes(lines, length));
    }
    // The list of a part.
    struct List : QFile {
        using QFile::QFile;
        bool resize(qint64 size) { return open(ReadWrite) && QFile::resize(size); }
    };
    List list(int part) const {
        return List(machine.host(QStringLiteral("D:\\WALL\\Carts%1.lst").arg(part)));
    }
};

} // namespace tolvex::tests
