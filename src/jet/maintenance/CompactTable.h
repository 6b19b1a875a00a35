// Transfers one table to a new file.
#pragma once

#include "jet/index/ExternalSort.h"
#include "jet/index/IndexBuilder.h"
#include "jet/maintenance/CompactKeys.h"
#include "jet/maintenance/CompactRow.h"

namespace jet {

// Rows for usage maps, on pages shared by all tables.
class MapPages {
public:
    explicit MapPages(Pager& pager)
        : pager_(pager) {}
    // Allocates a page for future maps.
    void reserve();
    // An empty map.
    RowPointer add();

private:
    Pager& pager_;
    PageNumber page_ = 0;
};

class TableCompaction {
public:
    // Bytes of memory for sorting the keys of one table.
    static constexpr std::size_t SortMemory = std::size_t{64} << 20;

    // `to`: the page for the definition. `lost` gets what could not be saved. `change`: for a system table,
    // else empty. All arguments outlive this.
    TableCompaction(Pager& source, const Table& from, Pager& target, PageNumber to, MapPages& maps,
                    const RowChange& change, const OnLoss& lost);

    // Copies everything. Returns the number of rows.
    std::uint64_t run();
    // Removes everything except the definition's page and the maps.
    void discard();
    // Of the new table, after copying.
    const TableDefinition& definition() const { return definition_; }

private:
    // A page being filled with rows.
    struct Page {
        PageNumber number = 0;
        std::uint8_t bytes[PageSize];
    };
    // An index being made.
    struct Tree {
        ExternalSort entries; // of the new rows
        std::unique_ptr<IndexBuilder> builder;
    };

    void makeMaps();
    void chooseOrder();
    bool copy();
    void begin();
    bool makeNewKey(RowPointer at, const RowView& row, std::size_t index);
    void sortRows(std::size_t index, ExternalSort& entries);
    bool findDuplicates();
    void giveUpUniqueness();
    template<typename Visit>
    void walk(Visit visit);
    bool liesInOrder();
    bool copyWhileInOrder();
    void copyInOrder();
    void copyAsTheyLie();
    bool copyRow(RowPointer at, const RowView& row, RowPointer& stored);
    RowPointer store(std::span<const std::uint8_t> row);
    void flushPage();
    void addKeys(RowPointer at, std::span<const std::uint8_t> bytes, RowPointer stored);
    void addEntry(std::size_t index, KeyView entry);
    bool buildIndexes();

    Pager& source_;
    const Table& from_;
    Pager& target_;
    MapPages& maps_;
    TableLosses losses_;
    TableDefinition definition_; // of the new table
    CompactKeys keys_;
    RowCopier rows_;

    std::vector<Tree> trees_;   // of each index
    int order_ = -1;            // the index that orders the rows; -1: none
    std::set<RowPointer> left_; // rows that are left out
    bool distinct_ = true;      // no unique index got the same key twice
    std::size_t repeated_ = 0;  // otherwise: the last one that did
    Page page_;
    std::uint64_t count_ = 0; // of rows stored
    Bytes key_;
};

} // namespace jet
