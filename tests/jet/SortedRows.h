// All rows of a table as text, for comparison with those of another file.
#pragma once

#include "jet/transfer/Transfer.h"

#include <algorithm>
#include <string>
#include <vector>

namespace jet::tests {

// One line per row, as in an export, sorted as text.
inline std::vector<std::string> SortedRows(const Table& table) {
    std::string text;
    ExportRows(Filter(table, std::nullopt), TextFormat::JsonLines,
               [&](std::string_view piece) { text += piece; });
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
        lines.push_back(text.substr(at, text.find('\n', at) - at));
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace jet::tests
