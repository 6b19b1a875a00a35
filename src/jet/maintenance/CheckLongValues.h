// Checks the integrity of the long values of one Memo or OLE column.
#pragma once

#include "jet/maintenance/CheckContext.h"
#include "jet/record/Row.h"

namespace jet {

class LongValueCheck {
public:
    // Claims the column's pages and checks their structure.
    LongValueCheck(CheckContext& context, const TableDefinition& definition, const Column& column);

    const Column& column() const { return *column_; }
    // Checks a row's value: its definition, where its pieces lie, its length, and that nothing else uses
    // them. Each piece is read once, however many rows name it. Throws the errors of reading it.
    void check(const RowView& row);
    // Reports pieces that no row uses.
    void finish();

private:
    CheckContext& context_;
    const Column* column_;
    std::string name_;
    CheckContext::Owned pages_;
    RowSet used_;
};

} // namespace jet
