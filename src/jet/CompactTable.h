// One table on its way into a new file.
#pragma once

#include "jet/Compact.h"
#include "jet/EntrySorter.h"
#include "jet/Error.h"
#include "jet/IndexBuilder.h"
#include "jet/KeyEncoding.h"
#include "jet/LongValue.h"
#include "jet/Table.h"

#include <map>
#include <set>

namespace jet {

// Rows for usage maps, on pages that all tables share.
class MapPages {
public:
    explicit MapPages(Pager& pager)
        : pager_(pager) {}
    // Takes a page for the maps to come.
    void reserve();
    // An empty map.
    RowPointer add();

private:
    Pager& pager_;
    PageNumber page_ = 0;
};

// Tables have new definition pages in the new file, and by these the catalogue knows them.
struct NewIds {
    std::map<std::int32_t, std::int32_t> moved;
    std::set<std::int32_t> lost; // objects that could not be read
};

// A column of a system table that holds Ids: rows of lost objects are left out.
struct IdColumn {
    std::u16string_view name; // empty: none
    const NewIds* ids = nullptr;
};

class TableCompaction {
public:
    // Bytes of memory that the keys of one table take while they are sorted.
    static constexpr std::size_t SortMemory = std::size_t{64} << 20;

    // `to`: the page that the definition gets. `lost` gets what could not be saved.
    TableCompaction(Pager& source, const Table& from, Pager& target, PageNumber to, MapPages& maps,
                    const OnLoss& lost);

    // Copies everything. Gives the number of rows.
    std::uint64_t run(const NewIds& ids, const IdColumn& idColumn);

private:
    // A page of rows being filled.
    struct Page {
        PageNumber number = 0;
        std::uint8_t bytes[PageSize];
    };
    struct Index {
        KeyEncoder encoder;
        EntrySorter entries; // of the new rows
        std::unique_ptr<IndexBuilder> builder;
    };

    void makeDefinition(const NewIds& ids);
    bool copy();
    void begin();
    void discard();
    KeyKind makeKey(Pager& pager, const RowView& row, const KeyEncoder& encoder);
    KeyKind makeKeyOfValues(Pager& pager, const RowView& row, const KeyEncoder& encoder);
    bool makeNewKey(const RowView& row, std::size_t index);
    void sortRows(std::size_t index, EntrySorter& entries);
    void findDuplicates();
    template<typename Visit>
    void walk(Visit visit);
    bool liesInOrder();
    bool copyWhileInOrder();
    void copyInOrder();
    void copyAsTheyLie();
    void takeCopy(const RowView& row);
    bool copyRow(RowPointer at, const RowView& row, RowPointer& stored);
    bool copyColumns(RowPointer at);
    void checkColumn(const Column& column);
    void moveLongValue(LongValueStore& values, const Column& column);
    bool moveId();
    RowPointer store(std::span<const std::uint8_t> row);
    void flushPage();
    void addKeys(std::span<const std::uint8_t> bytes, RowPointer stored);
    void addEntry(std::size_t index, KeyView entry);
    bool buildIndexes();
    void reportDamage(PageNumber page, const std::string& what, const Error& error);
    void report(PageNumber page, const std::string& reason);

    Pager& source_;
    const Table& from_;
    Pager& target_;
    MapPages& maps_;
    const OnLoss& report_;
    const OnLoss* lost_;         // what is reported goes there
    TableDefinition definition_; // of the new table
    RowEncoder encoder_;
    const NewIds* ids_ = nullptr;
    int idColumn_ = -1;
    bool hasGaps_ = false; // columns were dropped: their data stays behind

    std::vector<Index> indexes_;
    int order_ = -1;            // the index whose order the rows get; -1: none
    std::set<RowPointer> left_; // rows that do not go over
    bool distinct_ = true;      // no unique index got the same key twice
    bool told_ = false;         // what is damaged was reported
    // Columns whose bytes are looked at one by one: all but the fixed ones of rows that are long enough.
    struct Variable {
        std::size_t column;
        std::unique_ptr<LongValueStore> store; // of a long one
    };
    std::vector<Variable> variables_;
    int fixedLength_ = 0;
    Page page_;
    std::uint64_t rows_ = 0;

    Bytes key_;
    std::vector<Value> values_;
    // Of the row that is being copied.
    Bytes row_;
    RowView copy_;                          // of row_
    std::vector<RowEncoder::Field> fields_; // what row_ has of each column: all, as a rule
    Bytes encoded_;
    Bytes longValue_;
    Value value_;
};

} // namespace jet
