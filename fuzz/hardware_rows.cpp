// Lines pasted from the clipboard, which may hold anything: accepted lines are copied as a text that reads as
// the same lines, and a refused text comes with a reason.
#include "Require.h"

#include "hardware/LineRows.h"

#include <cstddef>
#include <cstdint>

using namespace tolvex;

namespace {

QString copied(const QList<HardwareLine>& lines) {
    HardwareCard card;
    LineNumbers numbers;
    for (const HardwareLine& line : lines.mid(0, LinesPerCard)) {
        numbers.append(static_cast<int>(numbers.size()) + 1);
        card.Lines[numbers.last()] = line;
    }
    return RowsOfLines(card, numbers);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QString why;
    const auto lines = LinesOfRows(text, &why);
    require(lines || !why.isEmpty());
    if (!lines)
        return 0;
    const QString copy = copied(*lines);
    const auto again = LinesOfRows(copy, &why);
    require(again && again->size() == qMin<qsizetype>(lines->size(), LinesPerCard) && copied(*again) == copy);
    for (qsizetype i = 0; i < again->size(); ++i) {
        const HardwareLine& line = (*lines)[i];
        const HardwareLine& read = (*again)[i];
        require(read.Action == line.Action && read.ActionData == line.ActionData &&
                read.LineType == line.LineType && read.Color == line.Color);
    }
    return 0;
}
