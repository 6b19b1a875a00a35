// The hardware cards and the actions of their lines.
#include "app/ctl/Commands.h"

#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "hardware/CardSetup.h"
#include "hardware/HardwareStore.h"
#include "hardware/LineDisplay.h"
#include "hardware/LineEdits.h"

namespace tolvex::ctl {

namespace {

// A type of card by a word of its own.
struct TypeWord {
    const char* word;
    HardwareCardType type;
};
constexpr TypeWord typeWords[] = {{"disabled", CardDisabled},
                                  {"rs232", CardRS232},
                                  {"advantech", CardAdvantech},
                                  {"joystick", CardJoystick}};

std::optional<int> numberIn(const QString& text, int highest) {
    bool good = false;
    const int number = text.toInt(&good);
    return good && number >= 1 && number <= highest ? std::optional(number) : std::nullopt;
}

QString noCard(const QString& given) {
    return QStringLiteral("A card from 1 to %1 is expected, not \"%2\".").arg(HardwareCardCount).arg(given);
}

bool readCards(Call& call, DriverReports& reports) {
    if (!call.session.read())
        return false;
    ReadHardwareSettings(call.station.cards, call.station.settings.LocalIniFile, reports);
    // For a joystick the file has the types of used lines only; all lines of the card have one type.
    for (HardwareCard& card : call.station.cards)
        if (card.CardType == CardJoystick)
            SelectCardType(card, card.CardType, {}, reports);
    return true;
}

// The source of an Advantech card's line counts.
void noteOrigin(const Call& call, int number) {
    const HardwareCard& card = call.station.cards[number];
    if (card.CardType == CardAdvantech)
        call.output.note(QStringLiteral("Card %1: ").arg(number) +
                         OriginOfLines(card.BaseAddress, {card.NumberLines, card.NumberInputs,
                                                          card.NumberOutputs, true, card.Answered}));
}

int write(const Call& call, int number, DriverReports& reports) {
    const QString file = call.station.settings.LocalIniFile;
    if (const int error = WriteHardwareSettings(call.station.cards, file, reports))
        return call.fail(ProfileErrorText(error, ProfilePath(file)), error);
    noteOrigin(call, number);
    return Done;
}

QJsonObject recordOf(int card, int number, const HardwareLine& line) {
    const LineTexts texts = TextsOf(line);
    QJsonArray data;
    for (const qint32 value : line.ActionData)
        data += value;
    return {{QStringLiteral("card"), card},
            {QStringLiteral("line"), number},
            {QStringLiteral("type"), line.isOutput() ? QStringLiteral("output") : QStringLiteral("input")},
            {QStringLiteral("activeLow"), line.ActiveLow != 0},
            {QStringLiteral("description"), texts.description},
            {QStringLiteral("action"), texts.action},
            {QStringLiteral("info1"), texts.info1},
            {QStringLiteral("info2"), texts.info2},
            {QStringLiteral("actionCode"), line.Action},
            {QStringLiteral("data"), data}};
}

int list(Call& call) {
    int first = 1;
    int last = HardwareCardCount;
    if (!call.arguments.isEmpty()) {
        const std::optional<int> only = numberIn(call.argument(0), HardwareCardCount);
        if (!only)
            return call.wrong(noCard(call.argument(0)));
        first = last = *only;
    }
    DriverReports reports;
    if (!readCards(call, reports))
        return call.fail(QStringLiteral("No local ini file was chosen."));
    QJsonArray records;
    for (int card = first; card <= last; ++card) {
        noteOrigin(call, card);
        for (int n = 1; n <= qMin(int{call.station.cards[card].NumberLines}, LinesPerCard); ++n)
            records += recordOf(card, n, call.station.cards[card].Lines[n]);
    }
    if (records.isEmpty() && !call.output.json())
        return call.no(QStringLiteral("No card has lines: \"tolvexctl hardware card\" sets its type."));
    call.output.records(records, {{"card", "Card", true},
                                  {"line", "Line", true},
                                  {"type", "Type"},
                                  {"activeLow", "Active low"},
                                  {"description", "Description"},
                                  {"action", "Action"},
                                  {"info1", "Info 1"},
                                  {"info2", "Info 2"}});
    return records.isEmpty() ? No : Done;
}

// Gives the line an action and its parameters by their words; an empty text, or what is wrong with them.
QString setAction(HardwareCard& card, int number, const QString& name, const QStringList& parameters) {
    HardwareLine& line = card.Lines[number];
    const LineKinds kind = KindOf(line);
    QString expected;
    const std::optional<qint32> code = ActionByName(name, kind, &expected);
    if (!code)
        return QStringLiteral("\"%1\" is no action of an %2; it can be %3.")
            .arg(name, line.isOutput() ? QStringLiteral("output") : QStringLiteral("input"), expected);
    line.ActionData = {};
    ChooseAction(card, {number}, *code);
    for (int k = 1; k <= parameters.size(); ++k) {
        const QString& words = parameters[k - 1];
        const std::optional<qint32> value =
            ParameterByText(FindLineAction(*code)->parameter(k), words, kind, false, &expected);
        if (!value)
            return QStringLiteral("\"%1\" is no parameter %2 of %3; it can be %4.")
                .arg(words)
                .arg(k)
                .arg(name, expected);
        SetParameter(card, {number}, k, *value);
    }
    return {};
}

int set(Call& call) {
    const std::optional<int> number = numberIn(call.argument(0), HardwareCardCount);
    if (!number)
        return call.wrong(noCard(call.argument(0)));
    const QString type = call.option("--type").toLower();
    if (type != QLatin1String("input") && type != QLatin1String("output"))
        return call.wrong(QStringLiteral("--type is expected with \"input\" or \"output\"."));
    const QStringList parameters = call.arguments.mid(2);
    if (!parameters.isEmpty() && !call.has("--action"))
        return call.wrong(QStringLiteral("Parameters belong to an action: --action is expected."));
    DriverReports reports;
    if (!readCards(call, reports))
        return call.fail(QStringLiteral("No local ini file was chosen."));
    HardwareCard card = call.station.cards[*number]; // a copy, until everything is found valid
    const int lines = qMin(int{card.NumberLines}, LinesPerCard);
    const std::optional<int> n = numberIn(call.argument(1), lines);
    if (!n)
        return call.wrong(lines == 0 ? QStringLiteral("Card %1 has no lines.").arg(*number)
                                     : QStringLiteral("A line from 1 to %1 is expected, not \"%2\".")
                                           .arg(lines)
                                           .arg(call.argument(1)));
    HardwareLine& line = card.Lines[*n];
    const bool output = type == QLatin1String("output");
    const CardTypeRow& row = *FindCardType(card.CardType);
    if (!row.name)
        return call.fail(QStringLiteral("This card is not currently supported"));
    if (line.isOutput() != output)
        line.LineType = output ? 1 : 0;
    line.ActiveLow = call.has("--active-low") ? -1 : 0;
    if (call.has("--action")) {
        const QString wrong = setAction(card, *n, call.option("--action"), parameters);
        if (!wrong.isEmpty())
            return call.wrong(wrong);
    }
    if (call.has("--description"))
        line.Description = call.option("--description");
    const QString wrong = SetLine({call.station.cards[*number], row, lines}, *n, line);
    if (!wrong.isEmpty())
        return call.wrong(wrong);
    HardwareLine& stored = call.station.cards[*number].Lines[*n];
    GetGridinfo(stored);
    const int status = write(call, *number, reports);
    if (status == Done && call.output.json())
        call.output.record(recordOf(*number, *n, stored), {});
    return status;
}

int card(Call& call) {
    const std::optional<int> number = numberIn(call.argument(0), HardwareCardCount);
    if (!number)
        return call.wrong(noCard(call.argument(0)));
    const TypeWord* type = nullptr;
    QStringList words;
    for (const TypeWord& row : typeWords) {
        words += QLatin1String(row.word);
        const CardTypeRow& names = *FindCardType(row.type);
        for (const char* name : {row.word, names.name})
            if (call.argument(1).compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
                type = &row;
    }
    if (!type)
        return call.wrong(QStringLiteral("\"%1\" is no type of card; it can be %2.")
                              .arg(call.argument(1), words.join(QStringLiteral(", "))));
    const QString address = call.argument(2);
    const CardTypeRow& row = *FindCardType(type->type);
    if (!address.isEmpty() && !row.usesAddress && !row.usesPort)
        return call.wrong(QStringLiteral("This type of card has no address."));
    const int port = row.usesPort ? numberIn(address, SerialPorts).value_or(0) - 1 : -1;
    DriverReports reports;
    if (!readCards(call, reports))
        return call.fail(QStringLiteral("No local ini file was chosen."));
    HardwareCard& at = call.station.cards[*number];
    const QString wrong = SetCard(at, {type->type, address, port});
    if (!wrong.isEmpty())
        return call.wrong(wrong);
    SelectCardType(at, at.CardType, QString::number(at.BaseAddress), reports);
    return write(call, *number, reports);
}

} // namespace

CommandRows HardwareCommands() {
    return {
        {"hardware list", "[CARD]", "List the lines of the hardware cards and what they do", list},
        Changing({"hardware set",
                  "CARD LINE [P1 [P2]]",
                  "Set up a line; parameters of the action by the words of its lists",
                  set,
                  {{"--type", "input|output", "what the line is"},
                   {"--action", "NAME", "what it does; without it the action stays"},
                   {"--description", "TEXT", "its description; without it, the one of the action"},
                   {"--active-low", nullptr, "flip its logic; without it the logic is normal"}}}),
        Changing(
            {"hardware card", "CARD TYPE [ADDRESS]",
             "Set the type of a card: disabled, rs232 with its serial port from 1 to 4, advantech with its "
             "device "
             "number from 0 to FF (hexadecimal), or joystick",
             card}),
    };
}

} // namespace tolvex::ctl
