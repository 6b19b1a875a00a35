// Transfers the rows of one table to a new file: the readable part of each, with its long values stored
// again.
#pragma once

#include "jet/base/RowSet.h"
#include "jet/maintenance/TableLosses.h"
#include "jet/record/LongValue.h"
#include "jet/table/Table.h"

#include <functional>

namespace jet {

// Decides on a row of a system table: false leaves it out. `fields` holds the new row's value for each
// column; it may be redirected to other values, which must live until the table is copied.
using RowChange = std::function<bool(RowPointer at, const RowView& row, std::span<RowEncoder::Field> fields)>;

class RowCopier {
public:
    // `definition`: of the new table, with its maps. All arguments outlive this. `change` may be empty.
    RowCopier(Pager& source, Pager& target, TableDefinition& definition, const RowChange& change,
              TableLosses& losses);

    // Before each pass: discards the state of an earlier one.
    void begin();
    // The final row except for the places of its long values, valid until the next call; null: it is left
    // out.
    const RowView* preview(RowPointer at, const RowView& row);
    // The bytes of the new row, with stored long values; nothing: left out. Valid until the next call.
    std::optional<std::span<const std::uint8_t>> copy(RowPointer at, const RowView& row);
    // After the last pass: lengthens columns that are shorter than their texts.
    void fitColumns();

private:
    // Columns whose bytes are checked one by one: all except the fixed numbers of rows that are long enough.
    struct Watched {
        std::size_t column;
        std::unique_ptr<LongValueStore> store; // of a long one
        RowSet pieces;                         // of the old table's long values
    };

    bool take(RowPointer at, const RowView& row);
    bool encode();
    void checkColumns(RowPointer at);
    void checkColumn(std::size_t index);
    void moveLongValue(Watched& watched);
    void readLongValue(Watched& watched, std::span<const std::uint8_t> definition);
    void takeBack();

    Pager& source_;
    Pager& target_;
    TableDefinition& definition_;
    const RowChange& change_;
    TableLosses& losses_;
    RowEncoder encoder_;
    int fixedLength_;
    bool hasGaps_; // columns were dropped: their data is left out
    std::vector<Watched> watched_;
    std::vector<std::size_t> longest_; // bytes of the longest text or binary value, by column

    // Of the row that is being copied.
    Bytes row_;
    RowView copy_;                          // of row_
    std::vector<RowEncoder::Field> fields_; // the new row's value for each column: usually all of copy_
    bool altered_ = false;                  // not all of it
    std::vector<const Watched*> moved_;     // those whose long values are already stored
    Bytes encoded_;
    RowView changed_; // of encoded_
    Bytes longValue_;
    Value value_;
};

} // namespace jet
