// The audiowall's lists.
#include "app/ctl/CartOutput.h"
#include "app/ctl/Commands.h"

#include "audio/CartBackup.h"
#include "audio/CartCheck.h"
#include "audio/CartStore.h"
#include "platform/files/Files.h"
#include "station/CheckConfiguration.h"
#include "station/LoadSettings.h"

namespace tolvex::ctl {

namespace {

int locations(Call& call) {
    if (!call.session.read())
        return call.fail(NoIniChosen);
    QJsonArray records;
    bool complete = true;
    const ConfigurationStatus facts = LookAtConfiguration(call.station);
    for (const LocationStatus& location : facts.locations) {
        const int first = (location.part - 1) * CartsInPart + 1;
        const bool last = location.part == CartPartCount;
        records += QJsonObject{{QStringLiteral("part"), location.part},
                               {QStringLiteral("path"), location.path},
                               {QStringLiteral("state"), location.state},
                               {QStringLiteral("list"), location.list},
                               {QStringLiteral("first"), first},
                               {QStringLiteral("last"), last ? HighestCart : first + CartsInPart - 1}};
        complete = complete && location.state != u"missing" && location.state != u"not set";
    }
    call.output.records(records, {{"part", "Part", true},
                                  {"first", "First", true},
                                  {"last", "Last", true},
                                  {"state", "State"},
                                  {"list", "List"},
                                  {"path", "Location"}});
    for (const QString& fault : facts.listFaults)
        NoteListFault(call, fault);
    return complete ? Done : No;
}

int list(Call& call) {
    qint32 first = 1;
    qint32 last = HighestCart;
    if (!call.arguments.isEmpty()) {
        const QStringList ends = call.argument(0).split(u'-');
        const auto from = CartNumber(ends.first());
        const auto to = CartNumber(ends.last());
        if (!from || !to || ends.size() > 2 || *from > *to)
            return call.wrong(QStringLiteral("A cart number or FIRST-LAST is expected, 1 to %1, not \"%2\".")
                                  .arg(HighestCart)
                                  .arg(call.argument(0)));
        first = *from;
        last = *to;
    }
    if (!ReadAudiowall(call.station))
        return call.fail(NoIniChosen);
    QJsonArray records;
    last = std::min(last, call.station.settings.NoCarts);
    bool anyList = false;
    for (int part = PartOfCart(first); first <= last && part <= PartOfCart(last); ++part) {
        const CartListFacts facts = LookAtCartList(call.station.carts, part);
        if (!OpenForReading(call, facts))
            continue;
        anyList = true;
        const qint32 end = std::min(last, facts.lastCart());
        for (qint32 number = std::max(first, (part - 1) * CartsInPart + 1); number <= end; ++number) {
            qint16 status = 0;
            const CartRecord cart = ReadCart(call.station.carts, number, &status);
            if (!cart.isEmpty())
                records += CartAsJson(number, cart, status);
        }
    }
    if (!anyList && first <= last)
        return call.fail(NoCartListOpens);
    if (records.isEmpty() && !call.output.json())
        return call.no(QStringLiteral("There is no cart in that range."));
    call.output.records(records, CartColumns());
    return records.isEmpty() ? No : Done;
}

int show(Call& call) {
    const auto number = CartNumber(call.argument(0));
    if (!number)
        return call.wrong(NoCartNumber(call.argument(0)));
    if (!ReadAudiowall(call.station))
        return call.fail(NoIniChosen);
    if (*number > call.station.settings.NoCarts)
        return call.fail(QStringLiteral("The audiowall has %1 carts.").arg(call.station.settings.NoCarts));
    const CartListFacts facts = LookAtCartList(call.station.carts, PartOfCart(*number));
    if (facts.length.path.isEmpty())
        return call.fail(QStringLiteral("Part %1 of the AudioWall has no location.").arg(facts.part));
    if (!OpenForReading(call, facts))
        return call.fail(QStringLiteral("Cart %1 could not be read.").arg(*number));
    qint16 status = 0;
    const CartRecord cart = ReadCart(call.station.carts, *number, &status);
    // A cart beyond the end of a list is an empty cart to the suite.
    if (status != platform::NoError && status != platform::PastEndOfFile)
        return call.fail(QStringLiteral("Cart %1 could not be read (error %2).").arg(*number).arg(status));
    call.output.record(CartAsJson(*number, cart, status), {{"number", "Cart"},
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

int check(Call& call) {
    if (!call.session.read())
        return call.fail(NoIniChosen);
    const CartCheckResult result = CheckCarts(call.station.carts);
    QJsonArray faults;
    for (const CartFault& fault : result.faults)
        faults += QJsonObject{{QStringLiteral("kind"), fault.kind},
                              {QStringLiteral("part"), fault.part},
                              {QStringLiteral("cart"), fault.cart},
                              {QStringLiteral("text"), fault.text}};
    if (result.lists == 0 && faults.isEmpty())
        return call.fail(NoCartListOpens);
    if (!call.output.json() && !faults.isEmpty())
        call.output.records(faults, {{"part", "Part", true}, {"kind", "Fault"}, {"text", "What was found"}});
    call.output.record({{QStringLiteral("faults"), faults},
                        {QStringLiteral("lists"), result.lists},
                        {QStringLiteral("carts"), result.carts}},
                       {{"lists", "Lists"}, {"carts", "Carts"}});
    return faults.isEmpty() ? Done : No;
}

// Repairs the list of one part; makes a missing one if the user wants it. Reports action and result.
QJsonObject mend(const Call& call, int part, int* error) {
    CartListRepair repair;
    const CartListFacts before = LookAtCartList(call.station.carts, part);
    if (before.isMissing())
        OpenCartParts(call.station.carts, part, false);
    else
        repair = RepairCartList(call.station.carts, part);
    *error = repair.error;
    const CartListFacts after = LookAtCartList(call.station.carts, part);
    return {{QStringLiteral("part"), part},
            {QStringLiteral("path"), after.length.path},
            {QStringLiteral("before"), before.state()},
            {QStringLiteral("after"), after.state()},
            {QStringLiteral("added"), before.isMissing() ? after.length.records() : repair.added},
            {QStringLiteral("keptIn"), repair.keptIn}};
}

int repair(Call& call) {
    if (!call.session.read())
        return call.fail(NoIniChosen);
    QJsonArray records;
    int worst = Done;
    for (int part = 1; part <= PartOfCart(call.station.settings.NoCarts); ++part) {
        if (CartListPath(call.station.carts, part).isEmpty()) {
            call.output.say(QStringLiteral("Part %1 of the AudioWall has no location.").arg(part));
            worst = std::max<int>(worst, No);
            continue;
        }
        int error = platform::NoError;
        const QJsonObject mended = mend(call, part, &error);
        records += mended;
        if (error != platform::NoError)
            call.output.say(QStringLiteral("%1 could not be repaired (error %2); nothing of it is lost.")
                                .arg(CartListPath(call.station.carts, part))
                                .arg(error));
        if (mended[QLatin1String("after")] != QLatin1String("sound"))
            worst = std::max<int>(worst, error != platform::NoError ? Failed : No);
    }
    call.output.records(records, {{"part", "Part", true},
                                  {"before", "Before"},
                                  {"after", "After"},
                                  {"added", "Carts added", true},
                                  {"keptIn", "Torn bytes are in"},
                                  {"path", "List"}});
    return worst;
}

int backup(Call& call) {
    if (!call.session.read())
        return call.fail(NoIniChosen);
    if (!BackupCartLists(call.station.settings, true))
        return call.fail(
            QStringLiteral("A cart list could not be copied to the Backups folder of its location."));
    return Done;
}

} // namespace

CommandRows CartCommands() {
    return {
        {"carts locations", "", "List the folders of the audiowall; 0 if all that are needed exist",
         locations},
        {"carts list", "[FIRST[-LAST]]", "List the carts that are not empty", list},
        CartFindCommand(),
        {"carts show", "N", "Print everything in the lists about a cart; 1 if it is empty", show},
        {"carts check", "", "Find torn and short lists, carts without audio, duplicates; 0 if there are none",
         check},
        Changing({"carts repair", "",
                  "Fill every list up with empty carts; torn bytes are kept in a file beside it", repair}),
        Changing(
            {"carts backup", "", "Copy the cart lists to the Backups folders of their locations", backup}),
    };
}

} // namespace tolvex::ctl
