// The writing half of a Table: made with the first change, it keeps what many changes need.
#pragma once

#include "jet/index/IndexPath.h"
#include "jet/index/KeyEncoding.h"
#include "jet/record/LongValue.h"
#include "jet/table/Table.h"

namespace jet {

class TableWriter {
public:
    // The table's definition must not move.
    TableWriter(Pager& pager, const TableDefinition& definition, std::vector<FieldRule> rules);

    // Each change has two halves. The first checks everything and throws
    // the caller's errors; it changes no page. The second, which must
    // follow immediately, changes pages; its errors are faults of the file.
    void prepareInsert(std::span<Value> values);
    RowPointer insert();
    // `row`: the view of the row at `at`.
    void prepareUpdate(const RowView& row, std::span<const FieldChange> changes);
    void update(RowPointer at);
    void prepareRemove(const RowView& row);
    void remove(RowPointer at);

private:
    struct Index {
        KeyEncoder encoder;
        IndexTree tree;
        const RealIndex* definition;
        Bytes key; // of the new row
        Bytes oldKey;
        bool present = false; // the row has an entry
        bool oldPresent = false;
        std::uint32_t newKeys = 0; // what the row adds to the number of distinct keys
        bool searched = false;     // the new key does not exist yet, and would go to `place`
        IndexPath place = {};
    };
    // A long value of the row being built that is stored on pages of its own.
    struct Apart {
        std::size_t column = 0;
        std::size_t at = 0; // of its definition in the row
        std::span<const std::uint8_t> data;
    };

    void checkDesign();
    void keepOld(const RowView& row);
    void decodeKeyColumns(const Index& index);
    void removeLongValue(std::size_t column);
    RowPointer movedTo(RowPointer at);
    void checkRule(std::size_t column, const Value& value) const;
    void prepareKey(Index& index, std::span<const Value> values);
    void chooseSample();
    void countKeys(std::size_t index);
    void buildRow();
    void encode(bool allApart);
    void storeApart();
    LongValueStore& store(std::size_t column);
    void place(RowPointer at);

    Pager& pager_;
    const TableDefinition& definition_;
    std::vector<FieldRule> rules_;
    Bytes design_; // the original head of the definition page
    RowEncoder encoder_;
    RowSpace space_;
    std::vector<Index> indexes_;
    std::vector<std::unique_ptr<LongValueStore>> stores_; // by column
    int autonumber_ = -1;

    // Reused from row to row.
    Bytes row_;
    Bytes oldRow_;
    RowView old_;                     // of oldRow_
    std::uint32_t newAutonumber_ = 0; // 0: none
    std::uint32_t sample_ = 1;        // how many rows this one represents
    std::vector<RowEncoder::Field> fields_;
    std::vector<Value> values_;
    std::vector<Value> changed_;
    std::vector<Apart> apart_;
    std::vector<Bytes> texts_; // encoded memos, by column
};

} // namespace jet
