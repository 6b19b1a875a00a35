#include "hardware/LineEdits.h"

#include "hardware/LineDisplay.h"
#include "platform/CodePage.h"

namespace tolvex {

namespace {

LineNumbers groupOfEight(int line) {
    const int first = (line - 1) / 8 * 8 + 1;
    LineNumbers lines;
    for (int n = first; n < first + 8; ++n)
        lines.append(n);
    return lines;
}

void applyRule(const DefaultRule& rule, int& counter, std::array<qint32, 4>& data) {
    if (rule.clear)
        data = {};
    if (rule.wrapAbove > 0 && counter > rule.wrapAbove)
        counter = rule.wrapTo;
    if (rule.highest > 0 && data[0] > rule.highest)
        data[0] = 1;
    if (data[0] == 0 && rule.fill != DefaultRule::Fill::Nothing)
        data[0] = rule.fill == DefaultRule::Fill::One ? 1 : counter;
}

int entryOf(const Choices& choices, qint32 value) {
    for (int i = 0; i < choices.size(); ++i)
        if (choices[i].value == value)
            return i;
    return -1;
}

CellEditor parameterEditor(const HardwareLine& line, int number) {
    static constexpr Parameter nothing{};
    const ActionRow* row = FindLineAction(line.Action);
    const Parameter& parameter = row ? row->parameter(number) : nothing;
    CellEditor editor;
    editor.number = line.ActionData[static_cast<std::size_t>(number - 1)];
    switch (parameter.kind) {
    case Parameter::Kind::Typed:
        editor.kind = CellEditor::Kind::Number;
        editor.tag = number;
        break;
    case Parameter::Kind::None:
        if (row)
            break;
        // An unknown action has parameters too: its list has no entries.
        [[fallthrough]];
    default:
        editor.kind = CellEditor::Kind::List;
        editor.tag = number;
        editor.choices = ParameterChoices(parameter, KindOf(line));
        editor.selected = entryOf(editor.choices, editor.number);
    }
    return editor;
}

} // namespace

QString CheckLine(const CardLines& lines, int number, const HardwareLine& line) {
    if (number < 1 || number > lines.count)
        return QStringLiteral("The card has no line %1.").arg(number);
    const bool output = lines.card.Lines[number].isOutput();
    if ((lines.type.fixedLines || lines.type.byEights) && line.isOutput() != output)
        return QStringLiteral("Line %1 of this card is an %2 and stays one.")
            .arg(number)
            .arg(output ? QStringLiteral("output") : QStringLiteral("input"));
    const QString text = line.description();
    if (text == lines.card.Lines[number].description())
        return {};
    const int most = LongestDescription - (IsQuoted(text) ? 1 : 0);
    if (text.size() > most)
        return QStringLiteral("The description of line %1 has %2 characters; at most %3 are stored.")
            .arg(number)
            .arg(text.size())
            .arg(most);
    if (FittingDescription(text) != text)
        return QStringLiteral("The description of line %1 has a character that the file cannot hold.")
            .arg(number);
    return {};
}

QString SetLine(const CardLines& lines, int number, const HardwareLine& line) {
    QString wrong = CheckLine(lines, number, line);
    if (wrong.isEmpty()) {
        lines.card.Lines[number] = line;
        lines.card.Lines[number].Description = line.description();
    }
    return wrong;
}

QString FittingDescription(const QString& text) {
    QString fitting;
    for (const QChar c : text) {
        if (c < u' ')
            fitting += u' ';
        else if (platform::FromCodePage(platform::ToCodePage(c)) == c)
            fitting += c;
    }
    return fitting;
}

bool ToggleLineType(HardwareCard& card, const CardTypeRow& type, const LineNumbers& lines) {
    if (type.fixedLines)
        return false;
    const qint32 other = card.Lines[lines.first()].isOutput() ? 0 : 1;
    for (const int n : type.byEights ? groupOfEight(lines.first()) : lines)
        card.Lines[n].LineType = other;
    return true;
}

void ToggleLogic(HardwareCard& card, const LineNumbers& lines) {
    for (const int n : lines)
        card.Lines[n].ActiveLow = card.Lines[n].ActiveLow ? 0 : -1;
}

QString SetDescription(const CardLines& lines, const LineNumbers& numbers, const QString& text) {
    QList<HardwareLine> changed;
    for (const int n : numbers) {
        changed.append(lines.card.Lines[n]);
        changed.last().Description = text;
        if (QString wrong = CheckLine(lines, n, changed.last()); !wrong.isEmpty())
            return wrong;
    }
    for (qsizetype i = 0; i < changed.size(); ++i)
        SetLine(lines, numbers[i], changed[i]);
    return {};
}

void ChooseAction(HardwareCard& card, const LineNumbers& lines, qint32 action) {
    const ActionRow* row = FindLineAction(action);
    int counter = 1;
    for (const int n : lines) {
        HardwareLine& line = card.Lines[n];
        line.Action = action;
        line.Description.clear();
        if (row)
            applyRule(row->rule, counter, line.ActionData);
        ++counter;
    }
}

void SetParameter(HardwareCard& card, const LineNumbers& lines, int number, qint32 value) {
    for (const int n : lines) {
        card.Lines[n].ActionData.at(static_cast<std::size_t>(number - 1)) = value;
        card.Lines[n].Description.clear();
    }
}

CellEditor EditorOf(const HardwareLine& line, int column) {
    CellEditor editor;
    switch (column) {
    case ColumnType:
        editor.kind = CellEditor::Kind::Type;
        break;
    case ColumnLogic:
        editor.kind = CellEditor::Kind::Logic;
        break;
    case ColumnDescription:
        editor.kind = CellEditor::Kind::Description;
        break;
    case ColumnAction:
        editor.kind = CellEditor::Kind::List;
        editor.tag = 0;
        editor.choices = ActionChoices(KindOf(line));
        editor.selected = qMax(0, entryOf(editor.choices, line.Action));
        break;
    case ColumnInfo1:
    case ColumnInfo2:
        return parameterEditor(line, column - ColumnAction);
    default:
        break;
    }
    return editor;
}

} // namespace tolvex
