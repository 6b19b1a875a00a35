#include "jet/maintenance/CompactTable.h"

#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"
#include "jet/table/OrderedRows.h"
#include "jet/table/Salvage.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint8_t LastSlot = 254; // stepping on from there goes to the next page

} // namespace

void MapPages::reserve() {
    page_ = pager_.allocate();
    datapage::Format(pager_.edit(page_), 0);
}

RowPointer MapPages::add() {
    if (page_ == 0 || !datapage::Fits(pager_.read(page_), UsageMapRowLength))
        reserve();
    return {page_, datapage::Add(pager_.edit(page_), Bytes(UsageMapRowLength, 0))};
}

TableCompaction::TableCompaction(Pager& source, const Table& from, Pager& target, PageNumber to,
                                 MapPages& maps, const RowChange& change, const OnLoss& lost)
    : source_(source)
    , from_(from)
    , target_(target)
    , maps_(maps)
    , losses_(from.definition().page, from.name(), lost)
    , definition_(from.definition())
    , keys_(from, definition_, losses_)
    , rows_(source, target, definition_, change, losses_) {
    definition_.page = to;
    makeMaps();
}

void TableCompaction::makeMaps() {
    definition_.ownedMap = maps_.add();
    definition_.freeMap = maps_.add();
    for (RealIndex& index : definition_.realIndexes)
        index.pages = maps_.add();
    for (Column& column : definition_.columns) {
        if (!column.isLong())
            continue;
        column.ownedMap = maps_.add();
        column.freeMap = maps_.add();
    }
}

std::uint64_t TableCompaction::run() {
    while (!copy()) {
        discard();
        if (keys_.areMissing())
            keys_.lookUpMissing();
        else if (!findDuplicates())
            giveUpUniqueness();
    }
    keys_.relax();
    rows_.fitColumns();
    definition_.rowCount = static_cast<std::uint32_t>(count_);
    WriteTableDefinition(target_, definition_);
    return count_;
}

// Copies the rows and builds the indexes. False: keys must be looked up, or a damaged file has the same key
// twice in a unique index.
bool TableCompaction::copy() {
    begin();
    if (order_ < 0) {
        copyAsTheyLie();
    } else if (!left_.empty() || !liesInOrder() || !copyWhileInOrder()) {
        discard();
        begin();
        copyInOrder();
    }
    flushPage();
    return !keys_.areMissing() && distinct_ && buildIndexes();
}

// Rows are ordered by the primary key.
void TableCompaction::chooseOrder() {
    const LogicalIndex* primary = definition_.primaryKey();
    const bool ordered = primary != nullptr && !definition_.realIndexes[primary->real].ignoresNulls();
    order_ = ordered ? static_cast<int>(primary->real) : -1;
}

void TableCompaction::begin() {
    count_ = 0;
    page_.number = 0;
    distinct_ = true;
    chooseOrder();
    rows_.begin();
    keys_.begin();
    trees_.clear();
    for (std::size_t i = 0; i < keys_.count(); ++i) {
        RealIndex& definition = definition_.realIndexes[i];
        definition.root = target_.allocate();
        IndexTree tree(target_, definition.root, definition_.page, UsageMap(target_, definition.pages));
        tree.create();
        trees_.push_back({ExternalSort(SortMemory / keys_.count()), std::make_unique<IndexBuilder>(tree)});
        if (static_cast<int>(i) != order_)
            trees_.back().entries.expect(from_.definition().rowCount);
    }
}

void TableCompaction::discard() {
    UsageMap(target_, definition_.ownedMap).release();
    UsageMap(target_, definition_.freeMap).clear();
    for (const RealIndex& index : definition_.realIndexes)
        UsageMap(target_, index.pages).release();
    for (const Column& column : definition_.columns) {
        if (!column.isLong())
            continue;
        UsageMap(target_, column.ownedMap).release();
        UsageMap(target_, column.freeMap).clear();
    }
}

// Builds the key that a row of the source will have in an index. False: none.
bool TableCompaction::makeNewKey(RowPointer at, const RowView& row, std::size_t index) {
    const RowView* made = rows_.preview(at, row);
    return made != nullptr && keys_.make(source_, at, *made, index, key_);
}

// Sorts the keys that the rows of the source will have, with their places there.
void TableCompaction::sortRows(std::size_t index, ExternalSort& entries) {
    walk([&](RowPointer at, const RowView& row) {
        if ((left_.empty() || left_.count(at) == 0) && makeNewKey(at, row, index))
            entries.add(key_, at);
    });
    entries.sort();
}

template<typename Visit>
void TableCompaction::walk(Visit visit) {
    WalkReadable(from_, visit, [this](PageNumber where, const Error& error) {
        losses_.ofPage(where, "could not be read: " + error.detail());
    });
}

// Of two rows with equal keys one must go for the unique index to stay: the first one is kept. False: no such
// rows were found.
bool TableCompaction::findDuplicates() {
    const std::size_t before = left_.size();
    for (std::size_t i = 0; i < keys_.count(); ++i) {
        if (!definition_.realIndexes[i].isUnique())
            continue;
        ExternalSort entries(SortMemory);
        sortRows(i, entries);
        Bytes last;
        while (entries.next()) {
            const KeyView key = entries.key();
            if (!std::equal(key.begin(), key.end(), last.begin(), last.end())) {
                last.assign(key.begin(), key.end());
            } else if (!keys_.encoder(i).isAllNull(key) && left_.insert(entries.row()).second) {
                losses_.ofPage(entries.row().page,
                               RowText(entries.row()) + " has the same key in a unique index as another row");
            }
        }
    }
    return left_.size() > before;
}

// Rows that differ where they are stored, but not in the part that can be copied.
void TableCompaction::giveUpUniqueness() {
    RealIndex& index = definition_.realIndexes[repeated_];
    losses_.ofTable("has rows with the same key in " + definition_.nameOfIndex(repeated_) +
                    ", which is not unique any more");
    index.flags &= static_cast<std::uint8_t>(~RealIndex::Unique);
}

// Whether a sample suggests that the rows are already in order.
bool TableCompaction::liesInOrder() {
    constexpr PageNumber Samples = 64;
    Bytes before;
    RowView row;
    for (PageNumber i = 0; i < Samples && from_.definition().rowCount > Samples; ++i) {
        try {
            RowPointer at{static_cast<PageNumber>(std::uint64_t{source_.pageCount()} * i / Samples),
                          LastSlot};
            if (!from_.next(at, row))
                break;
            if (!makeNewKey(at, row, static_cast<std::size_t>(order_)) || key_ < before)
                return false;
            before = key_;
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            return false;
        }
    }
    return true;
}

// Copies the rows in one walk, without sorting their keys. False: one was out of order, and everything must
// be redone.
bool TableCompaction::copyWhileInOrder() {
    constexpr std::size_t MostHeld = 1000;
    const auto order = static_cast<std::size_t>(order_);
    losses_.hold();
    bool inOrder = true;
    Bytes before;
    walk([&](RowPointer at, const RowView& row) {
        inOrder = inOrder && losses_.held() < MostHeld;
        if (!inOrder || !makeNewKey(at, row, order))
            return;
        inOrder = before <= key_;
        before.swap(key_);
        RowPointer stored;
        if (inOrder && copyRow(at, row, stored))
            addEntry(order, indexpage::EntryBuffer(before, stored).view());
    });
    inOrder = inOrder && !keys_.areMissing();
    losses_.release(inOrder);
    return inOrder;
}

void TableCompaction::copyInOrder() {
    const auto order = static_cast<std::size_t>(order_);
    ExternalSort& entries = trees_[order].entries;
    sortRows(order, entries);
    if (keys_.areMissing())
        return;
    OrderedRows rows(from_, entries);
    while (rows.next()) {
        RowPointer stored;
        if (copyRow(rows.at(), rows.row(), stored))
            addEntry(order, indexpage::EntryBuffer(rows.key(), stored).view());
    }
    entries = ExternalSort(0);
}

void TableCompaction::copyAsTheyLie() {
    walk([this](RowPointer at, const RowView& row) {
        RowPointer stored;
        if (left_.empty() || left_.count(at) == 0)
            copyRow(at, row, stored);
    });
}

// False: the row is left out.
bool TableCompaction::copyRow(RowPointer at, const RowView& row, RowPointer& stored) {
    const auto bytes = rows_.copy(at, row);
    if (!bytes)
        return false;
    stored = store(*bytes);
    addKeys(at, *bytes, stored);
    ++count_;
    return true;
}

// Keeps the keys of a new row for the indexes that are built after all rows.
void TableCompaction::addKeys(RowPointer at, std::span<const std::uint8_t> bytes, RowPointer stored) {
    if (trees_.size() == (order_ < 0 ? 0 : 1))
        return;
    const RowView row(bytes, stored.page, definition_.variableColumns > 0);
    for (std::size_t i = 0; i < trees_.size(); ++i)
        if (static_cast<int>(i) != order_ && keys_.make(target_, at, row, i, key_))
            trees_[i].entries.add(key_, stored);
}

RowPointer TableCompaction::store(std::span<const std::uint8_t> row) {
    if (page_.number == 0 || !datapage::Fits(page_.bytes, static_cast<int>(row.size()))) {
        flushPage();
        page_.number = target_.allocate();
        datapage::Format(page_.bytes, definition_.page);
        UsageMap(target_, definition_.ownedMap).add(page_.number);
    }
    return {page_.number, datapage::Add(page_.bytes, row)};
}

void TableCompaction::flushPage() {
    if (page_.number == 0)
        return;
    std::memcpy(target_.edit(page_.number), page_.bytes, PageSize);
    UsageMap free(target_, definition_.freeMap);
    const PageNumber before = free.next(0);
    if (before != 0)
        free.remove(before); // it was full when this one began
    free.add(page_.number);
}

// Adds an entry of a new row to an index.
void TableCompaction::addEntry(std::size_t index, KeyView entry) {
    const KeyView key = entry.first(entry.size() - indexpage::RowLength);
    if (!trees_[index].builder->add(entry) && definition_.realIndexes[index].isUnique() &&
        !keys_.encoder(index).isAllNull(key)) {
        distinct_ = false;
        repeated_ = index;
    }
}

bool TableCompaction::buildIndexes() {
    for (std::size_t i = 0; i < trees_.size() && distinct_; ++i) {
        Tree& tree = trees_[i];
        tree.entries.sort();
        while (tree.entries.next())
            addEntry(i, tree.entries.entry());
        tree.entries = ExternalSort(0);
        tree.builder->finish();
        RealIndex& definition = definition_.realIndexes[i];
        definition.entriesWhenMade = tree.builder->entryCount();
        definition.distinctKeys = tree.builder->distinctKeys();
    }
    return distinct_;
}

} // namespace jet
