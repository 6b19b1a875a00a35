// Cart records and list files of any content: every 300 bytes decode, and the decoded record survives the
// file form unchanged; a list of any length opens, keeps its whole records, and can be read.
#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <cstring>

using namespace tolvex;

namespace {

void check(bool holds) {
    if (!holds)
        std::abort();
}

// Bit by bit, as NaNs do not equal themselves.
void checkRecord(const char* bytes) {
    const CartRecord record = DecodeCartRecord(bytes);
    for (const QString* const line : {&record.Line1, &record.Line2, &record.Line3})
        check(line->size() == CartLineLength);
    const CartListRecord once = EncodeCartRecord(record);
    check(EncodeCartRecord(DecodeCartRecord(once)) == once);
    check(CartDescription(record, false).size() == 3 * CartLineLength);
    check(CartDescription(record, true).size() <= 3 * CartLineLength);
}

void checkHotlistRecord(const char* bytes) {
    HotlistBytes entry;
    std::memcpy(entry.data(), bytes, entry.size());
    check(EncodeHotlistRecord(DecodeHotlistRecord(entry)) == entry);
}

void checkList(const QByteArray& list) {
    static const QTemporaryDir folder;
    static const bool ready = platform::SetMachineFolder(folder.path());
    check(ready);
    const QString path = QStringLiteral("C:\\Carts1.lst");
    QFile file(platform::HostPath(path));
    check(file.open(QIODevice::WriteOnly) && file.write(list) == list.size() && file.flush());
    Settings settings;
    CartStore carts(settings);
    settings.NoCarts = 20;
    settings.CartPartTable[1].Location = QStringLiteral("C:");
    check(OpenCartParts(carts, 0, true) == 0);
    for (int cart = 0; cart <= 21; ++cart) {
        qint16 status = 0;
        const CartRecord record = ReadCart(carts, cart, &status);
        check(status == (cart >= 1 && cart <= 20 ? 0 : -1));
        check(record.Line1.size() == CartLineLength);
    }
    const qsizetype whole = list.size() / CartListRecordLength * CartListRecordLength;
    const QByteArray now = platform::ReadWholeFile(path).value_or(QByteArray());
    check(now.left(whole) == list.left(whole));
    check(whole < 20 * CartListRecordLength ? now.size() == 20 * CartListRecordLength : now == list);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    for (qsizetype at = 0; at + CartListRecordLength <= bytes.size(); at += CartListRecordLength)
        checkRecord(bytes.constData() + at);
    for (qsizetype at = 0; at + HotlistRecordLength <= bytes.size(); at += HotlistRecordLength)
        checkHotlistRecord(bytes.constData() + at);
    checkList(bytes);
    return 0;
}
