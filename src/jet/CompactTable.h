// One table on its way into a new file.
#pragma once

#include "jet/Compact.h"
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
        IndexEntries entries;
    };

    void makeDefinition(const NewIds& ids);
    void collectKeys();
    void dropDuplicates();
    void copyRows();
    void copyRow(RowPointer at, const RowView& row);
    void checkColumn(const Column& column, const RowView& row);
    void moveLongValue(LongValueStore& values, const Column& column, const RowView& copy);
    bool moveId(const RowView& copy);
    bool mapId(std::int32_t& id) const;
    RowPointer store(std::span<const std::uint8_t> row);
    void flushPage();
    void buildIndexes();
    std::uint32_t& place(RowPointer at);
    void report(PageNumber page, const std::string& reason);

    Pager& source_;
    const Table& from_;
    Pager& target_;
    MapPages& maps_;
    const OnLoss& lost_;
    TableDefinition definition_; // of the new table
    RowEncoder encoder_;
    const NewIds* ids_ = nullptr;
    int idColumn_ = -1;
    bool hasGaps_ = false; // columns were dropped: their data stays behind

    std::vector<Index> indexes_;
    std::vector<std::uint32_t> firstPlace_; // by source page: where its slots begin in places_
    std::vector<std::uint32_t> places_;     // where rows went, as stored pointers; 0: nowhere
    std::vector<LongValueStore> stores_;    // by long column
    Page page_;
    std::uint64_t rows_ = 0;

    Bytes row_;
    Bytes encoded_;
    Bytes longValue_;
    std::vector<RowEncoder::Field> fields_;
    Value value_;
};

} // namespace jet
