#include "audio/search/CartDetails.h"

#include "audio/CartNotes.h"
#include "audio/CartStore.h"
#include "core/report/Folders.h"
#include "core/time/TimeText.h"

namespace tolvex {

namespace {

constexpr int minutesToHundredths = 0;

QString timeText(float seconds) {
    return SecondsToTime(static_cast<double>(seconds), minutesToHundredths);
}

// Where ReadCart finds the record.
QString recordPlace(const CartStore& carts, qint32 cart) {
    const QString own = CartFileStem(carts, cart) + QStringLiteral(".LST");
    if (carts.settings.UseIndividualCartListFiles != 0 && FileLength(own) > 0)
        return own;
    const int part = PartOfCart(cart);
    return QStringLiteral("%1, record %2")
        .arg(CartListPath(carts, part))
        .arg(cart - (part - 1) * CartsInPart);
}

} // namespace

QList<CartDetail> CartDetails(CartStore& carts, qint32 cart) {
    qint16 status = 0;
    const CartRecord record = ReadCart(carts, cart, &status);
    QList<CartDetail> details = {{QStringLiteral("Cart"), QString::number(cart)}};
    if (record.isEmpty()) {
        details += {QStringLiteral("State"), status == 0 ? QStringLiteral("This cart is empty.")
                                                         : QStringLiteral("This cart cannot be read.")};
    } else {
        details += {QStringLiteral("Line 1"), record.Line1.trimmed()};
        details += {QStringLiteral("Line 2"), record.Line2.trimmed()};
        details += {QStringLiteral("Line 3"), record.Line3.trimmed()};
        details += {QStringLiteral("Length"), timeText(record.Length)};
        details += {QStringLiteral("Whole length"), timeText(record.TotalLength)};
        details += {QStringLiteral("Plays"), QStringLiteral("from %1 to %2, %3 long")
                                                 .arg(timeText(record.PlayStart), timeText(record.PlayEnd),
                                                      timeText(record.PlayLength))};
    }
    if (!CartFileStem(carts, cart).isEmpty())
        details += {QStringLiteral("Listed in"), recordPlace(carts, cart)};
    bool exists = false;
    const QString notes = CartNotesPath(carts, cart, &exists);
    details += {QStringLiteral("Notes"), exists ? notes : QString()};
    return details;
}

QString CartDetailsText(const QList<CartDetail>& details) {
    QString text;
    for (const CartDetail& detail : details)
        if (!detail.value.isEmpty())
            text += detail.name + QStringLiteral(": ") + detail.value + u'\n';
    return text;
}

} // namespace tolvex
