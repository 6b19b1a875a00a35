// "carts find": the search over the audiowall.
#include "app/ctl/CartOutput.h"

#include "audio/CartStore.h"
#include "audio/search/CartSearch.h"
#include "core/time/TimeText.h"
#include "station/LoadSettings.h"

namespace tolvex::ctl {

namespace {

// The defaults of the window's search.
constexpr double usualGive = 3;

// How long the search runs between checks of the number of carts found.
constexpr std::chrono::milliseconds slice{50};

constexpr double mostGive = 86400; // seconds: a day

// Minutes and seconds, "3:05", as TimeToSeconds takes them.
constexpr int minutesAndSeconds = 203;

// Fills the query from the options; an empty text, or what was expected.
QString takeOptions(const Call& call, CartQuery& query) {
    query.notes = call.has("--notes");
    query.backwards = call.has("--backwards");
    query.wholeWall = call.has("--whole") || !call.has("--from");
    if (call.has("--from")) {
        const auto from = CartNumber(call.option("--from"));
        if (!from)
            return NoCartNumber(call.option("--from"));
        query.start = *from;
    }
    if (call.has("--lines")) {
        query.limitLines = true;
        for (const QString& line : call.option("--lines").split(u',')) {
            if (line != u"1" && line != u"2" && line != u"3")
                return QStringLiteral("--lines is expected with some of 1,2,3, not \"%1\".")
                    .arg(call.option("--lines"));
            query.lines[line.toUInt() - 1] = true;
        }
    }
    if (call.has("--give") && !call.has("--length"))
        return QStringLiteral("--give belongs to --length.");
    if (call.has("--length")) {
        const double target = TimeToSeconds(call.option("--length"), minutesAndSeconds);
        if (target < 0 || !call.option("--length").contains(u':'))
            return QStringLiteral("--length is expected as M:SS, not \"%1\".").arg(call.option("--length"));
        bool good = true;
        const double give = call.has("--give") ? call.option("--give").toDouble(&good) : usualGive;
        if (!good || !(give >= 0 && give <= mostGive))
            return QStringLiteral("--give is expected with a number of seconds, not \"%1\".")
                .arg(call.option("--give"));
        query.length = LengthRule{target, give};
    }
    return {};
}

// Opens the lists that the search will read. False if none opens.
bool openLists(const Call& call) {
    bool any = false;
    for (int part = 1; part <= PartOfCart(call.station.settings.NoCarts); ++part)
        any = OpenForReading(call, LookAtCartList(call.station.carts, part)) || any;
    return any;
}

int find(Call& call) {
    CartQuery query;
    query.text = call.argument(0);
    if (const QString expected = takeOptions(call, query); !expected.isEmpty())
        return call.wrong(expected);
    bool good = true;
    const int most = call.has("--max") ? call.option("--max").toInt(&good) : HighestCart;
    if (!good || most < 1)
        return call.wrong(QStringLiteral("--max is expected with a number of carts, not \"%1\".")
                              .arg(call.option("--max")));
    if (!ReadAudiowall(call.station))
        return call.fail(NoIniChosen);
    if (!openLists(call))
        return call.fail(NoCartListOpens);
    CartSearch search(call.station.carts, query, call.station.settings.NoCarts);
    while (search.foundCount() < most && search.runFor(slice)) {
    }
    QJsonArray records;
    for (const FoundCart& cart : search.takeFound().mid(0, most))
        records += CartAsJson(cart.number, cart.record, 0);
    if (records.isEmpty() && !call.output.json())
        return call.no(QStringLiteral("No carts found."));
    call.output.records(records, CartColumns());
    return records.isEmpty() ? No : Done;
}

} // namespace

Command CartFindCommand() {
    return {"carts find",
            "TEXT",
            "List the carts whose description contains a text, in any case; \"*\" finds all",
            find,
            {{"--lines", "1,2,3", "look at these lines only, each by itself"},
             {"--notes", nullptr, "look at the first 10,000 bytes of a cart's notes, too"},
             {"--length", "M:SS", "only carts of about this length"},
             {"--give", "SECONDS", "how far from that length a cart may be; default 3"},
             {"--from", "N", "begin at this cart; without it, the whole audiowall"},
             {"--backwards", nullptr, "go to lower numbers"},
             {"--whole", nullptr, "begin at the first cart, backwards at the last, regardless of --from"},
             {"--max", "N", "end after so many carts"}}};
}

} // namespace tolvex::ctl
