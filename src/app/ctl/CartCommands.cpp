// The audiowall's lists.
#include "app/ctl/Commands.h"

#include "audio/CartBackup.h"
#include "audio/CartStore.h"
#include "console/CheckConfiguration.h"
#include "core/Folders.h"

#include <cmath>

namespace tolvex::ctl {

namespace {

const QString noIni = QStringLiteral("No local ini file was chosen.");

// Times are stored with the precision of a 32-bit float; thousandths are what they mean.
double seconds(float value) {
    return std::isfinite(value) ? std::round(static_cast<double>(value) * 1000) / 1000 : 0;
}

QString withoutBlanks(QString line) {
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

QJsonObject recordOf(qint32 number, const CartRecord& cart, qint16 status) {
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

std::optional<qint32> cartNumber(const QString& text) {
    bool good = false;
    const qint32 number = text.toInt(&good);
    return good && number >= 1 && number <= HighestCart ? std::optional(number) : std::nullopt;
}

// Opens the list of a part; one that is not there is not made, since these commands only read.
bool openExisting(int part) {
    const CartPart& entry = settings().CartPartTable[part];
    const QString list = entry.Location + QStringLiteral("\\Carts%1.lst").arg(part);
    return !entry.Location.trimmed().isEmpty() && FileLength(list) >= 0 && OpenCartParts(part, true) == 0 &&
           entry.IsOpen;
}

int locations(Call& call) {
    if (!LoadWorkstation())
        return call.fail(noIni);
    QJsonArray records;
    bool complete = true;
    for (const LocationStatus& location : LookAtConfiguration().locations) {
        const int first = (location.part - 1) * CartsInPart + 1;
        const bool last = location.part == CartPartCount;
        records += QJsonObject{{QStringLiteral("part"), location.part},
                               {QStringLiteral("path"), location.path},
                               {QStringLiteral("state"), location.state},
                               {QStringLiteral("first"), first},
                               {QStringLiteral("last"), last ? HighestCart : first + CartsInPart - 1}};
        complete = complete && location.state != u"missing" && location.state != u"not set";
    }
    call.output.records(records, {{"part", "Part", true},
                                  {"first", "First", true},
                                  {"last", "Last", true},
                                  {"state", "State"},
                                  {"path", "Location"}});
    return complete ? Done : No;
}

int list(Call& call) {
    qint32 first = 1;
    qint32 last = HighestCart;
    if (!call.arguments.isEmpty()) {
        const QStringList ends = call.argument(0).split(u'-');
        const auto from = cartNumber(ends.first());
        const auto to = cartNumber(ends.last());
        if (!from || !to || ends.size() > 2 || *from > *to)
            return call.wrong(QStringLiteral("A cart number or FIRST-LAST is expected, 1 to %1, not \"%2\".")
                                  .arg(HighestCart)
                                  .arg(call.argument(0)));
        first = *from;
        last = *to;
    }
    if (!LoadWorkstation())
        return call.fail(noIni);
    QJsonArray records;
    last = std::min(last, settings().NoCarts);
    bool anyList = false;
    for (int part = PartOfCart(first); first <= last && part <= PartOfCart(last); ++part) {
        if (!openExisting(part)) {
            if (const QString& folder = settings().CartPartTable[part].Location; !folder.isEmpty())
                call.output.note(
                    QStringLiteral("Part %1 of the AudioWall has no list in %2.").arg(part).arg(folder));
            continue;
        }
        anyList = true;
        const qint32 end = part == CartPartCount ? last : std::min(last, part * CartsInPart);
        for (qint32 number = std::max(first, (part - 1) * CartsInPart + 1); number <= end; ++number) {
            qint16 status = 0;
            const CartRecord cart = ReadCart(number, &status);
            if (!cart.isEmpty())
                records += recordOf(number, cart, status);
        }
    }
    if (!anyList && first <= last)
        return call.fail(QStringLiteral(
            "No cart list could be opened; \"tolvexctl carts locations\" tells which folders are missing."));
    if (records.isEmpty() && !call.output.json())
        return call.no(QStringLiteral("There is no cart in that range."));
    call.output.records(records, {{"number", "Cart", true},
                                  {"line1", "Line 1"},
                                  {"line2", "Line 2"},
                                  {"line3", "Line 3"},
                                  {"length", "Seconds", true}});
    return records.isEmpty() ? No : Done;
}

int show(Call& call) {
    const auto number = cartNumber(call.argument(0));
    if (!number)
        return call.wrong(QStringLiteral("A cart number from 1 to %1 is expected, not \"%2\".")
                              .arg(HighestCart)
                              .arg(call.argument(0)));
    if (!LoadWorkstation())
        return call.fail(noIni);
    const bool there = *number <= settings().NoCarts && openExisting(PartOfCart(*number));
    qint16 status = -1;
    const CartRecord cart = there ? ReadCart(*number, &status) : CartRecord();
    if (status != 0)
        return call.fail(
            QStringLiteral("Cart %1 could not be read: its number is above %2, or its list is not there.")
                .arg(*number)
                .arg(settings().NoCarts));
    call.output.record(recordOf(*number, cart, status), {{"number", "Cart"},
                                                         {"line1", "Line 1"},
                                                         {"line2", "Line 2"},
                                                         {"line3", "Line 3"},
                                                         {"length", "Length"},
                                                         {"totalLength", "Total length"},
                                                         {"playStart", "Play start"},
                                                         {"playEnd", "Play end"},
                                                         {"playLength", "Play length"},
                                                         {"backColor", "Back colour"},
                                                         {"foreColor", "Fore colour"},
                                                         {"empty", "Empty"}});
    return cart.isEmpty() ? No : Done;
}

int backup(Call& call) {
    if (!LoadWorkstation())
        return call.fail(noIni);
    if (!BackupCartLists(true))
        return call.fail(
            QStringLiteral("A cart list could not be copied to the Backups folder of its location."));
    return Done;
}

} // namespace

CommandRows CartCommands() {
    return {
        {"carts locations", "", "List the folders of the audiowall; 0 when all that are needed are there",
         locations},
        {"carts list", "[FIRST[-LAST]]", "List the carts that are not empty", list},
        {"carts show", "N", "Print all that the lists hold of a cart; 1 when it is empty", show},
        {"carts backup", "", "Copy the cart lists to the Backups folders of their locations", backup},
    };
}

} // namespace tolvex::ctl
