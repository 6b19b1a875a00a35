// Which index serves a WHERE: the comparisons with literals that every chosen row must fulfil, matched with
// the leading columns of the indexes.
#pragma once

#include "jet/sql/Sql.h"
#include "jet/table/Table.h"

#include <optional>

namespace jet {

// Stretches of an index. They hold every row that the predicate can choose and perhaps others: the predicate
// is still to be asked.
struct IndexRange {
    struct Stretch {
        Bytes lower; // the first key is not below
        Bytes upper; // no key is above, unless it begins with these bytes
        bool operator==(const Stretch&) const = default;
    };
    int realIndex = 0;
    std::vector<Stretch> stretches; // ascending, none within another
    int equalColumns = 0;           // leading columns with one value, or with some
    bool bounded = false;           // the column after those has bounds, or a text that it begins with
};

// The range with the most columns that are given; nothing if no index serves. Only comparisons with literals,
// IN and LIKE that are joined by AND at the top count; a literal that its column cannot hold exactly does
// not.
std::optional<IndexRange> ChooseAccessPath(const Table& table, const sql::Expression& where);

// One term of ORDER BY.
struct SortTerm {
    int column = 0; // position in TableDefinition::columns
    bool descending = false;
};

// An index that has all rows in this order, or wholly reversed.
struct IndexWalk {
    int realIndex = 0;
    bool backward = false;
};
std::optional<IndexWalk> ChooseWalk(const Table& table, std::span<const SortTerm> order);

} // namespace jet
