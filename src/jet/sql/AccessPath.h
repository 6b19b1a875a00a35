// Chooses the index for a WHERE: matches the comparisons with literals that every selected row must satisfy
// with the leading columns of the indexes.
#pragma once

#include "jet/sql/Sql.h"
#include "jet/table/Table.h"

#include <optional>

namespace jet {

// Ranges of an index. They contain every row that the predicate can select and perhaps others: the predicate
// must still be evaluated.
struct IndexRange {
    struct Stretch {
        Bytes lower; // the first key is not below this
        Bytes upper; // no key is above this, unless it begins with these bytes
        bool operator==(const Stretch&) const = default;
    };
    int realIndex = 0;
    std::vector<Stretch> stretches; // ascending and disjoint
    int equalColumns = 0;           // leading columns with one or several known values
    bool bounded = false;           // the column after those has bounds, or a known prefix
};

// The range with the most known columns; nothing if no index helps. Only
// comparisons with literals, IN and LIKE that are joined by AND at the
// top are used; a literal that its column cannot hold exactly is not.
std::optional<IndexRange> ChooseAccessPath(const Table& table, const sql::Expression& where);

// One term of ORDER BY.
struct SortTerm {
    int column = 0; // position in TableDefinition::columns
    bool descending = false;
};

// An index with all rows in this order, or completely reversed.
struct IndexWalk {
    int realIndex = 0;
    bool backward = false;
};
std::optional<IndexWalk> ChooseWalk(const Table& table, std::span<const SortTerm> order);

} // namespace jet
