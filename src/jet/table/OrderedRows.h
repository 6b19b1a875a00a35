// Rows in the order of their sorted keys. Fetching them one by one would look up a page for each; instead a
// batch is fetched in page order, and returned in key order.
#pragma once

#include "jet/index/ExternalSort.h"
#include "jet/table/Table.h"

namespace jet {

class OrderedRows {
public:
    static constexpr std::size_t DefaultMemory = std::size_t{32} << 20;

    // `entries`: sorted, none read yet. Both outlive this. `memory`: approximate bytes for keys and rows. Use
    // inside a Reading.
    OrderedRows(const Table& table, ExternalSort& entries, std::size_t memory = DefaultMemory);

    // Moves to the first row, then to the next one; false:
    // there is none. Missing rows are skipped.
    bool next();
    // Of the row; valid until the next call of next().
    KeyView key() const { return {bytes_.data() + item().key, item().keyLength}; }
    RowPointer at() const { return item().at; }
    const RowView& row() const { return row_; }

private:
    struct Item {
        RowPointer at;
        std::uint16_t keyLength = 0;
        std::uint16_t length = 0; // of the row; 0: it must be fetched separately
        std::uint32_t key = 0;    // where they begin in bytes_
        std::uint32_t row = 0;
        PageNumber page = 0; // of the row's actual data
    };
    const Item& item() const { return items_[taken_ - 1]; }
    bool fill();

    const Table& table_;
    ExternalSort& entries_;
    std::size_t memory_;
    std::size_t rowLength_; // estimated from the numbers of pages and rows
    std::vector<Item> items_;
    std::size_t taken_ = 0;
    std::vector<std::uint64_t> byPage_; // a row's pointer, and the number of its item
    Bytes bytes_;
    RowView row_;
};

} // namespace jet
