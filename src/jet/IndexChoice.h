// Which index serves a WHERE: the comparisons with literals that every chosen row must fulfil, matched with
// the leading columns of the indexes.
#pragma once

#include "jet/Sql.h"
#include "jet/Table.h"

#include <optional>

namespace jet {

// A stretch of an index. It holds every row that the criterion can choose and perhaps others: the criterion
// is still to be asked.
struct IndexRange {
    int realIndex = 0;
    Bytes lower;          // the first key is not below
    Bytes upper;          // no key is above, unless it begins with these bytes
    int equalColumns = 0; // leading columns with one value
    bool bounded = false; // the column behind those has bounds
};

// The range with the most columns that are given; nothing if no index serves. Only comparisons that are
// joined by AND at the top count; a literal that its column cannot hold exactly does not.
std::optional<IndexRange> ChooseIndex(const Table& table, const sql::Expression& where);

} // namespace jet
