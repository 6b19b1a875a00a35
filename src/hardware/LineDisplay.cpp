#include "hardware/LineDisplay.h"

#include <QStringList>

namespace tolvex {

namespace {

constexpr LineColumnRow columns[] = {
    {"Line", 400},    {"Type", 600},    {"L", 200},       {"Description", 2000}, {"Action", 1860},
    {"Info 1", 2100}, {"Info 2", 2100}, {"Info 3", 2100}, {"Info 4", 2100},
};
static_assert(std::size(columns) == LineColumnCount);

// The text for an unknown code.
const ActionRow& shownAs(const ActionRow* row) {
    return row ? *row : LineActions().front();
}

QString infoOf(const ActionRow& row, const HardwareLine& line, int number) {
    return ParameterText(row.parameter(number), line.ActionData[static_cast<std::size_t>(number - 1)],
                         KindOf(line));
}

bool same(const QString& text, const char* word) {
    return word && text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

QString listOf(const Choices& choices) {
    QStringList words;
    for (const Choice& choice : choices)
        words += u'"' + choice.text + u'"';
    return words.join(QStringLiteral(", "));
}

} // namespace

std::span<const LineColumnRow> LineColumns() {
    return columns;
}

LineTexts TextsOf(const HardwareLine& line) {
    const ActionRow& row = shownAs(FindLineAction(line.Action));
    return {line.isOutput() ? QStringLiteral("Output") : QStringLiteral("Input"),
            line.ActiveLow ? QStringLiteral("Y") : QString(),
            line.description(),
            QString::fromLatin1(row.nameOn(KindOf(line))),
            infoOf(row, line, 1),
            infoOf(row, line, 2)};
}

QString DefaultDescription(const HardwareLine& line) {
    const ActionRow* row = FindLineAction(line.Action);
    QString text;
    if (!row)
        return text;
    for (const char* c = row->description; *c; ++c) {
        if (*c != '%') {
            text += QLatin1Char(*c);
            continue;
        }
        switch (*++c) {
        case '1':
        case '2':
            text += QString::number(line.ActionData[static_cast<std::size_t>(*c - '1')]);
            break;
        case '4':
            text += QLatin1String(row->nameOn(KindOf(line)));
            break;
        default:
            text += infoOf(*row, line, *c - '4');
            break;
        }
    }
    return text;
}

LineTexts GetGridinfo(HardwareLine& line) {
    if (line.description().isEmpty())
        line.Description = DefaultDescription(line);
    return TextsOf(line);
}

std::optional<qint32> ActionByName(const QString& name, LineKinds kind, QString* expected) {
    const QString wanted = name.trimmed();
    for (const qint32 code : OfferedActions(kind)) {
        const ActionRow& row = *FindLineAction(code);
        if (same(wanted, row.listNameOn(kind)) || same(wanted, row.nameOn(kind)))
            return code;
    }
    if (expected)
        *expected = listOf(ActionChoices(kind));
    return std::nullopt;
}

std::optional<qint32> ParameterByText(const Parameter& parameter, const QString& text, LineKinds kind,
                                      bool anyNumber, QString* expected) {
    const QString wanted = text.trimmed();
    const Choices choices = ParameterChoices(parameter, kind);
    for (const Choice& choice : choices)
        if (wanted.compare(choice.text, Qt::CaseInsensitive) == 0)
            return choice.value;
    for (const ParameterValue& value : parameter.values)
        if ((value.listed || anyNumber) && (value.on & kind) && same(wanted, value.inGrid()))
            return value.value;
    const QLatin1String prefix(parameter.prefix);
    const bool prefixed = !prefix.isEmpty() && wanted.startsWith(prefix.trimmed(), Qt::CaseInsensitive);
    bool good = false;
    const qint32 number = (prefixed ? wanted.mid(prefix.trimmed().size()) : wanted).trimmed().toInt(&good);
    if (good) {
        const auto offers = [number](const Choice& choice) { return choice.value == number; };
        if (parameter.kind == Parameter::Kind::Typed || anyNumber ||
            std::any_of(choices.begin(), choices.end(), offers))
            return number;
    }
    if (expected)
        *expected = parameter.kind == Parameter::Kind::Typed  ? QStringLiteral("a whole number")
                    : parameter.kind == Parameter::Kind::None ? QStringLiteral("nothing")
                                                              : listOf(choices);
    return std::nullopt;
}

} // namespace tolvex
