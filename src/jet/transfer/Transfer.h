// Rows out of a database as text and back in.
//
// CSV: a heading line of column names, then a line for each row (Csv.h). JSON: a line for each row, an object
// keyed by the column names; null, true and false, numbers; everything else as text. Values are written as
// ValueText.h says; in JSON dates have a T between day and time.
#pragma once

#include "jet/sql/Filter.h"
#include "jet/transfer/TextInput.h"

namespace jet {

enum class TextFormat { Csv, JsonLines };

using TextSink = std::function<void(std::string_view)>;

// Writes the fields and rows of a filter, in pieces of some 64 KB. Cost: no memory is taken per row.
// Gives the number of rows.
std::uint32_t ExportRows(const Filter& filter, TextFormat format, const TextSink& sink);

// Adds rows to a table: columns by name, in any order; those that are missing become null (an autonumber
// gets the next number). All rows or none: an error says the line, and nothing is added. Gives the number of
// rows.
std::uint32_t ImportRows(Table& table, TextFormat format, TextInput& input);

} // namespace jet
