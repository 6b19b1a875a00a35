// Exports rows of a database as text and imports them.
//
// CSV: a heading line of column names, then one line per row (Csv.h). JSON: one line per row, an object keyed
// by the column names; null, true and false, numbers; everything else as text. ValueText.h describes the
// values; in JSON dates have a T between day and time.
#pragma once

#include "jet/sql/Filter.h"
#include "jet/transfer/TextInput.h"

namespace jet {

enum class TextFormat { Csv, JsonLines };

using TextSink = std::function<void(std::string_view)>;

// Writes the fields and rows of a filter, in pieces of about 64 KB. Cost: no memory is allocated per row.
// Returns the number of rows.
std::uint32_t ExportRows(const Filter& filter, TextFormat format, const TextSink& sink);

// Adds rows to a table: columns by name, in any order; missing ones
// become null (an autonumber gets the next number). All rows or none: an
// error names the line, and nothing is added. Returns the number of rows.
std::uint32_t ImportRows(Table& table, TextFormat format, TextInput& input);

} // namespace jet
