// The integrity of the long values of one Memo or OLE column.
#pragma once

#include "jet/maintenance/CheckContext.h"
#include "jet/record/Row.h"

namespace jet {

class LongValueCheck {
public:
    // Claims the column's pages and checks them as pages.
    LongValueCheck(CheckContext& context, const TableDefinition& definition, const Column& column);

    const Column& column() const { return *column_; }
    // A row's value: its definition, where its pieces lie, its length, and that nobody else uses them. Each
    // piece is read once, however many rows name it. Throws what reading it throws.
    void check(const RowView& row);
    // Pieces that no row uses.
    void finish();

private:
    CheckContext& context_;
    const Column* column_;
    std::string name_;
    CheckContext::Owned pages_;
    RowSet used_;
};

} // namespace jet
