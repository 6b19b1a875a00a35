// The rows of one table that a SELECT selects, in the requested order.
#pragma once

#include "jet/sql/AccessPath.h"
#include "jet/sql/Predicate.h"
#include "jet/table/Table.h"

#include <functional>
#include <optional>

namespace jet {

// A row of a table, as a predicate sees it: columns are extracted on request.
class TableRow final : public RowValues {
public:
    explicit TableRow(const Table& table);
    void moveTo(const RowView& row);
    const Value& value(int column) override;

private:
    const Table& table_;
    RowView row_;
    std::vector<Value> values_;
    std::vector<std::uint32_t> readAt_; // the turn in which a column was read
    std::uint32_t turn_ = 0;
};

class Filter {
public:
    // The table outlives the filter. Throws the errors of Predicate, and UnknownField for a field to show or
    // to sort by.
    Filter(const Table& table, const sql::Select& select);
    // All fields of the rows that satisfy `where`; without one, all rows.
    Filter(const Table& table, const std::optional<sql::Expression>& where);

    const Table& table() const { return table_; }
    // Positions of the fields to show.
    const std::vector<int>& fields() const { return fields_; }
    // The index that finds the rows; nothing: the table is scanned.
    const std::optional<IndexRange>& index() const { return range_; }

    // Whether the rows must be sorted: no index has them in the requested order, or another one finds them
    // faster.
    bool sorts() const { return !order_.empty() && !walk_; }

    // Passes every selected row to `visit`, until it returns false. Without ORDER BY in the order of the
    // index used or of the table. Only sorting needs memory: for the rows' pointers and sort keys. `visit`
    // must not change the table.
    using Visit = std::function<bool(RowPointer, const RowView&)>;
    void forEach(const Visit& visit) const;

    // The pointers of the selected rows.
    std::vector<RowPointer> rows() const;

private:
    using Offer = std::function<bool(RowPointer)>;
    void forEachFound(const Visit& visit) const;
    void walkForward(const Offer& offer) const;
    void walkBackward(const Offer& offer) const;
    std::vector<RowPointer> sorted() const;

    const Table& table_;
    std::vector<int> fields_;
    std::vector<SortTerm> order_;
    std::optional<Predicate> predicate_;
    std::optional<IndexRange> range_;
    std::optional<IndexWalk> walk_; // delivers the rows of range_ in order_
};

} // namespace jet
