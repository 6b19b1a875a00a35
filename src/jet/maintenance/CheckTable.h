// Checks the integrity of one table: its maps, rows, long values and indexes.
#pragma once

#include "jet/maintenance/CheckIndexes.h"
#include "jet/maintenance/CheckLongValues.h"

namespace jet {

class TableCheck {
public:
    TableCheck(CheckContext& context, const Table& table);

    // Checks everything and claims all pages of the table; its definition pages are the caller's.
    void run();
    std::uint64_t rows() const { return rows_; }

private:
    void checkPage(PageNumber page);
    void checkSlot(const std::uint8_t* page, RowPointer at);
    void checkRow(RowPointer at, RowView row);
    void checkValue(RowPointer at, const Column& column, const RowView& row);

    CheckContext& context_;
    const Table& table_;
    CheckContext::Owned pages_;
    std::vector<LongValueCheck> longValues_;
    IndexesCheck indexes_;
    RowSet moved_;   // rows reached only through a pointer
    RowSet targets_; // rows that a pointer refers to
    std::uint64_t rows_ = 0;
    Bytes copy_;
    Value value_;
};

} // namespace jet
