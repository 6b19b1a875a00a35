// Lines as tab-separated text, for the clipboard: from card to card, to a spreadsheet and back. The words
// that the grid shows come first, the stored numbers behind them. Where both say the same the numbers count,
// so that a copy is exact; where the words were edited, the words count.
#pragma once

#include "hardware/LineEdits.h"

#include <optional>

namespace tolvex {

// A heading and one row for each line.
QString RowsOfLines(const HardwareCard& card, const LineNumbers& lines);

// The lines of such a text. Columns are found by the headings above them; without a heading they stand in the
// order of RowsOfLines, and those at the end may be missing. Nothing, with a sentence in *why, when a row
// cannot be understood.
std::optional<QList<HardwareLine>> LinesOfRows(const QString& text, QString* why);

// Puts lines over those given, as many as both have. All or, with a sentence in *why, none.
bool PasteLines(const CardLines& lines, const LineNumbers& over, const QList<HardwareLine>& pasted,
                QString* why);

} // namespace tolvex
