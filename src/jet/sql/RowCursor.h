// The orders in which a recordset visits rows: that of the table's pages, that of an index, and that of a
// list of rows selected by a query. Each is a place among the rows and continues correctly when rows around
// it, including its own, are added or removed.
#pragma once

#include "jet/index/IndexTree.h"
#include "jet/index/KeyEncoding.h"
#include "jet/table/Table.h"

namespace jet {

class RowCursor {
public:
    RowCursor() = default;
    RowCursor(const RowCursor&) = delete;
    RowCursor& operator=(const RowCursor&) = delete;
    virtual ~RowCursor() = default;

    // Each returns true after moving to a row. After false only first(), last() and moveTo() may follow.
    virtual bool first() = 0;
    virtual bool last() = 0;
    virtual bool next() = 0;
    virtual bool previous() = 0;
    virtual RowPointer at() const = 0;
    // Moves to this row, or to its new place if it was changed; false if it does not exist.
    virtual bool moveTo(RowPointer at) = 0;

    // The row at the place was removed; next() and previous() go to its neighbours.
    virtual void removed() {}
    // A row was added to the table.
    virtual void added(RowPointer at) { static_cast<void>(at); }
};

// All rows, in the order of the table's pages.
class PageCursor final : public RowCursor {
public:
    // The table outlives the order.
    explicit PageCursor(const Table& table)
        : table_(table) {}

    bool first() override;
    bool last() override;
    bool next() override;
    bool previous() override;
    RowPointer at() const override { return at_; }
    bool moveTo(RowPointer at) override;

private:
    const Table& table_;
    RowPointer at_;
};

// The rows of an index.
class IndexRowCursor final : public RowCursor {
public:
    // Throws InvalidArgument if the order of one of its columns is not known here.
    IndexRowCursor(const Table& table, int realIndex);

    bool first() override { return cursor_.first(); }
    bool last() override { return cursor_.last(); }
    bool next() override { return cursor_.next(); }
    bool previous() override { return cursor_.previous(); }
    RowPointer at() const override { return cursor_.row(); }
    bool moveTo(RowPointer at) override;

    // The key of leading values, which are converted to the columns' kinds. Throws TypeConversion,
    // InvalidArgument.
    void encode(std::span<const Value> values, Bytes& key) const;
    IndexCursor& cursor() { return cursor_; }

private:
    const Table& table_;
    KeyEncoder encoder_;
    IndexCursor cursor_;
    std::vector<Value> values_; // of a row, as far as the index has them
    Bytes key_;
};

// Selected rows. Those that others have removed meanwhile are skipped.
class ListCursor final : public RowCursor {
public:
    // Without a table all rows exist for ever.
    ListCursor(const Table* table, std::vector<RowPointer> rows)
        : table_(table)
        , rows_(std::move(rows)) {}

    std::size_t size() const { return rows_.size(); }
    // Position of the row of the place.
    std::size_t position() const { return position_; }

    bool first() override;
    bool last() override;
    bool next() override;
    bool previous() override;
    RowPointer at() const override { return rows_[position_]; }
    bool moveTo(RowPointer at) override;
    void removed() override;
    void added(RowPointer at) override { rows_.push_back(at); }

private:
    bool isThere(RowPointer at) const;
    bool forward(std::size_t from);
    bool backward(std::size_t end);

    const Table* table_;
    std::vector<RowPointer> rows_;
    std::size_t position_ = 0;
    bool gap_ = false; // the place is before rows_[position_]
};

} // namespace jet
