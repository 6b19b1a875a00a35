#include "app/ctl/CartOutput.h"

#include "audio/CartStore.h"
#include "platform/files/Files.h"

#include <cmath>

namespace tolvex::ctl {

namespace {

// Times are stored as 32-bit floats; they are meant to a thousandth.
double seconds(float value) {
    return std::isfinite(value) ? std::round(static_cast<double>(value) * 1000) / 1000 : 0;
}

QString withoutBlanks(QString line) {
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

} // namespace

const QString NoIniChosen = QStringLiteral("No local ini file was chosen.");
const QString NoCartListOpens =
    QStringLiteral("No cart list could be opened; \"tolvexctl carts locations\" lists the missing folders.");

std::optional<qint32> CartNumber(const QString& text) {
    bool good = false;
    const qint32 number = text.toInt(&good);
    return good && number >= 1 && number <= HighestCart ? std::optional(number) : std::nullopt;
}

QString NoCartNumber(const QString& text) {
    return QStringLiteral("A cart number from 1 to %1 is expected, not \"%2\".").arg(HighestCart).arg(text);
}

QJsonObject CartAsJson(qint32 number, const CartRecord& cart, qint16 status) {
    return {{QStringLiteral("number"), number},
            {QStringLiteral("line1"), withoutBlanks(cart.Line1)},
            {QStringLiteral("line2"), withoutBlanks(cart.Line2)},
            {QStringLiteral("line3"), withoutBlanks(cart.Line3)},
            {QStringLiteral("backColor"), cart.BackColor},
            {QStringLiteral("foreColor"), cart.ForeColor},
            {QStringLiteral("length"), seconds(cart.Length)},
            {QStringLiteral("totalLength"), seconds(cart.TotalLength)},
            {QStringLiteral("playStart"), seconds(cart.PlayStart)},
            {QStringLiteral("playEnd"), seconds(cart.PlayEnd)},
            {QStringLiteral("playLength"), seconds(cart.PlayLength)},
            {QStringLiteral("empty"), cart.isEmpty()},
            {QStringLiteral("status"), status}};
}

const Columns& CartColumns() {
    static const Columns columns = {{"number", "Cart", true},
                                    {"line1", "Line 1"},
                                    {"line2", "Line 2"},
                                    {"line3", "Line 3"},
                                    {"length", "Seconds", true}};
    return columns;
}

bool OpenForReading(const Call& call, const CartListFacts& list) {
    if (list.isTorn() || list.isShort())
        NoteListFault(call, list.inWords());
    if (list.error == platform::NoError && OpenCartParts(call.station.carts, list.part, true) == 0 &&
        call.station.settings.CartPartTable[list.part].IsOpen)
        return true;
    if (!list.length.path.isEmpty())
        call.output.note(list.isSound() ? QStringLiteral("%1 could not be opened.").arg(list.length.path)
                                        : list.inWords());
    return false;
}

} // namespace tolvex::ctl
