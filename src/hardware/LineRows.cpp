#include "hardware/LineRows.h"

#include "core/text/Numbers.h"
#include "hardware/LineDisplay.h"

#include <QStringList>

namespace tolvex {

namespace {

enum Cell {
    Line,
    Type,
    Logic,
    Description,
    Action,
    Info1,
    Info2,
    Code,
    Data1,
    Data4 = Data1 + 3,
    Color,
    CellCount
};

constexpr const char* headings[] = {"Line", "Type",   "L",      "Description", "Action", "Info 1", "Info 2",
                                    "Code", "Data 1", "Data 2", "Data 3",      "Data 4", "Color"};
static_assert(std::size(headings) == CellCount);

// One line of text: a description is a value of an ini file.
QString withoutControls(QString text) {
    for (QChar& c : text)
        if (c < u' ')
            c = u' ';
    return text.trimmed();
}

// Quotes a cell that could be misread, as spreadsheets do.
QString toCell(const QString& shown) {
    QString text = withoutControls(shown);
    if (text.startsWith(u'"'))
        return u'"' + text.replace(u'"', QLatin1String("\"\"")) + u'"';
    return text;
}

QString fromCell(const QString& cell) {
    QString text = cell.trimmed();
    if (text.size() < 2 || !text.startsWith(u'"') || !text.endsWith(u'"'))
        return text;
    return text.mid(1, text.size() - 2).replace(QLatin1String("\"\""), QLatin1String("\""));
}

// The position of each cell in the rows of a text.
using Places = std::array<int, CellCount>;

std::optional<Places> placesOf(const QStringList& heading) {
    Places places;
    for (std::size_t cell = 0; cell < CellCount; ++cell) {
        places[cell] = -1;
        for (int at = 0; at < heading.size(); ++at)
            if (heading[at].trimmed().compare(QLatin1String(headings[cell]), Qt::CaseInsensitive) == 0)
                places[cell] = at;
    }
    if (places[Type] < 0 || places[Action] < 0)
        return std::nullopt;
    return places;
}

class RowReader {
public:
    RowReader(const QStringList& cells, const Places& places)
        : cells_(cells)
        , places_(places) {}

    QString cell(int cell) const {
        const int place = places_[static_cast<std::size_t>(cell)];
        return place < 0 || place >= cells_.size() ? QString() : fromCell(cells_[place]);
    }

    // An empty text, or the reason against it.
    QString read(HardwareLine& line) const {
        const QString type = cell(Type);
        if (type.compare(QLatin1String("Output"), Qt::CaseInsensitive) == 0)
            line.LineType = 1;
        else if (type.compare(QLatin1String("Input"), Qt::CaseInsensitive) != 0)
            return refused("Type", type, QStringLiteral("\"Input\" or \"Output\""));
        line.ActiveLow = cell(Logic).isEmpty() ? 0 : -1;
        line.Description = withoutControls(cell(Description));
        line.Color = number(Color);
        line.Action = number(Code);
        for (std::size_t k = 0; k < line.ActionData.size(); ++k)
            line.ActionData[k] = number(Data1 + static_cast<int>(k));
        const LineTexts stored = TextsOf(line);
        const bool numbersHold =
            stored.action == cell(Action) && stored.info1 == cell(Info1) && stored.info2 == cell(Info2);
        return numbersHold ? QString() : readWords(line);
    }

private:
    qint32 number(int at) const { return ToLong(LeadingNumber(cell(at))); }

    static QString refused(const char* column, const QString& text, const QString& expected) {
        return QStringLiteral("%1 is \"%2\"; it can be %3.").arg(QLatin1String(column), text, expected);
    }

    QString readWords(HardwareLine& line) const {
        const LineKinds kind = KindOf(line);
        QString expected;
        const QString action = cell(Action).isEmpty() ? QStringLiteral("Not in use") : cell(Action);
        const std::optional<qint32> code = ActionByName(action, kind, &expected);
        if (!code)
            return refused("Action", action, expected);
        line.Action = *code;
        line.ActionData = {};
        for (const int k : {1, 2}) {
            const QString words = cell(k == 1 ? Info1 : Info2);
            if (words.isEmpty())
                continue;
            const std::optional<qint32> value =
                ParameterByText(FindLineAction(*code)->parameter(k), words, kind, true, &expected);
            if (!value)
                return refused(k == 1 ? "Info 1" : "Info 2", words, expected);
            line.ActionData[static_cast<std::size_t>(k - 1)] = *value;
        }
        return {};
    }

    const QStringList& cells_;
    const Places& places_;
};

} // namespace

QString RowsOfLines(const HardwareCard& card, const LineNumbers& lines) {
    QStringList row;
    for (const char* heading : headings)
        row += QLatin1String(heading);
    QString text = row.join(u'\t') + u'\n';
    for (const int n : lines) {
        const HardwareLine& line = card.Lines[n];
        const LineTexts texts = TextsOf(line);
        row = {QString::number(n), texts.type,  texts.logic, toCell(texts.description),
               texts.action,       texts.info1, texts.info2, QString::number(line.Action)};
        for (const qint32 data : line.ActionData)
            row += QString::number(data);
        row += QString::number(line.Color);
        text += row.join(u'\t') + u'\n';
    }
    return text;
}

std::optional<QList<HardwareLine>> LinesOfRows(const QString& text, QString* why) {
    QList<HardwareLine> lines;
    Places places;
    for (std::size_t cell = 0; cell < CellCount; ++cell)
        places[cell] = static_cast<int>(cell);
    const QStringList rows = text.split(u'\n');
    for (int n = 0; n < rows.size(); ++n) {
        const QStringList cells = rows[n].split(u'\t');
        if (rows[n].trimmed().isEmpty())
            continue;
        if (const std::optional<Places> found = placesOf(cells)) {
            places = *found;
            continue;
        }
        HardwareLine line;
        const QString wrong = RowReader(cells, places).read(line);
        if (!wrong.isEmpty()) {
            *why = QStringLiteral("Row %1 cannot be pasted. ").arg(n + 1) + wrong;
            return std::nullopt;
        }
        lines.append(line);
    }
    if (!lines.isEmpty())
        return lines;
    *why = QStringLiteral("There are no lines to paste: copy rows of a card or of a spreadsheet first.");
    return std::nullopt;
}

bool PasteLines(const CardLines& lines, const LineNumbers& over, const QList<HardwareLine>& pasted,
                QString* why) {
    const qsizetype count = qMin(over.size(), pasted.size());
    for (qsizetype i = 0; i < count; ++i) {
        const QString wrong = CheckLine(lines, over[i], pasted[i]);
        if (wrong.isEmpty())
            continue;
        *why = QStringLiteral("Nothing was pasted. ") + wrong;
        return false;
    }
    for (qsizetype i = 0; i < count; ++i)
        SetLine(lines, over[i], pasted[i]);
    return true;
}

} // namespace tolvex
