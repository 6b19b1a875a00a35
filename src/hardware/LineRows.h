// Lines as tab-separated text, for the clipboard: from card to card, to a spreadsheet and back. The words of
// the grid come first, then the stored numbers. If both agree the numbers count, so that a copy is exact; if
// the words were edited, the words count.
#pragma once

#include "hardware/LineEdits.h"

#include <optional>

namespace tolvex {

// A heading and one row per line.
QString RowsOfLines(const HardwareCard& card, const LineNumbers& lines);

// Parses such a text. Columns are identified by the headings above them; without headings they have the order
// of RowsOfLines, and trailing ones may be missing. Nothing, with a sentence in *why, if a row cannot be
// understood.
std::optional<QList<HardwareLine>> LinesOfRows(const QString& text, QString* why);

// Overwrites the given lines, as many as both have. All or, with a sentence in *why, none.
bool PasteLines(const CardLines& lines, const LineNumbers& over, const QList<HardwareLine>& pasted,
                QString* why);

} // namespace tolvex
