#include "jet/CompactTable.h"

#include "jet/Damage.h"
#include "jet/DataPage.h"
#include "jet/OrderedRows.h"
#include "jet/Salvage.h"
#include "jet/TextCompression.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint8_t LastSlot = 254; // a walk from there goes to the next page

std::string rowText(RowPointer at) {
    return "row " + std::to_string(at.row);
}

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
                                 MapPages& maps, const OnLoss& lost)
    : source_(source)
    , from_(from)
    , target_(target)
    , maps_(maps)
    , report_(lost)
    , lost_(&lost)
    , definition_(from.definition())
    , encoder_(definition_)
    , values_(definition_.columns.size())
    , fields_(definition_.columns.size(), {nullptr, &copy_}) {
    definition_.page = to;
}

void TableCompaction::report(PageNumber page, const std::string& reason) {
    (*lost_)({page, from_.name(), reason, false});
}

// What damage is met while rows are read is told once.
void TableCompaction::reportDamage(PageNumber page, const std::string& what, const Error& error) {
    if (!told_)
        report(page, what + ": " + error.detail());
}

std::uint64_t TableCompaction::run(const NewIds& ids, const IdColumn& idColumn) {
    makeDefinition(ids);
    ids_ = idColumn.ids;
    idColumn_ = ids_ == nullptr ? -1 : definition_.findColumn(idColumn.name);
    if (!copy()) {
        findDuplicates();
        discard();
        if (!copy())
            Damaged(from_.definition().page, "cannot be freed of rows with equal keys in a unique index");
    }
    definition_.rowCount = static_cast<std::uint32_t>(rows_);
    WriteTableDefinition(target_, definition_);
    return rows_;
}

// Copies the rows and makes the indexes. False: a damaged file holds the same key twice in a unique index.
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
    told_ = true;
    return distinct_ && buildIndexes();
}

void TableCompaction::begin() {
    rows_ = 0;
    page_.number = 0;
    distinct_ = true;
    variables_.clear();
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (column.isLong())
            variables_.push_back(
                {i, std::make_unique<LongValueStore>(target_, column.ownedMap, column.freeMap)});
        else if (!column.isFixed())
            variables_.push_back({i, nullptr});
    }
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        RealIndex& definition = definition_.realIndexes[i];
        definition.root = target_.allocate();
        IndexTree tree(target_, definition.root, definition_.page, UsageMap(target_, definition.pages));
        tree.create();
        indexes_[i].builder = std::make_unique<IndexBuilder>(tree);
        indexes_[i].entries = EntrySorter(SortMemory / indexes_.size());
        if (static_cast<int>(i) != order_)
            indexes_[i].entries.expect(from_.rowCount());
    }
}

// Takes back everything but the definition and the maps.
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

void TableCompaction::makeDefinition(const NewIds& ids) {
    definition_.ownedMap = maps_.add();
    definition_.freeMap = maps_.add();
    for (RealIndex& index : definition_.realIndexes) {
        index.pages = maps_.add();
        indexes_.push_back({KeyEncoder(definition_, index), EntrySorter(), nullptr});
        for (const KeyEncoder::Part& part : indexes_.back().encoder.parts()) {
            const Column& column = definition_.columns[static_cast<std::size_t>(part.column)];
            if (!IsOrderKnown(column))
                throw Error(ErrorNumber::CannotUpdateReadOnly,
                            "table '" + ToUtf8(from_.name()) + "' has an index on '" + ToUtf8(column.name) +
                                "' in an order that is not known");
        }
    }
    for (Column& column : definition_.columns) {
        if (!column.isLong())
            continue;
        column.ownedMap = maps_.add();
        column.freeMap = maps_.add();
    }
    for (LogicalIndex& index : definition_.logicalIndexes) {
        const auto other = ids.moved.find(static_cast<std::int32_t>(index.otherTable));
        index.otherTable = other == ids.moved.end() ? 0 : static_cast<PageNumber>(other->second);
    }
    hasGaps_ = definition_.columns.size() < definition_.columnNumbers;
    fixedLength_ = definition_.fixedLength();
    const LogicalIndex* primary = definition_.primaryKey();
    if (primary != nullptr && !definition_.realIndexes[primary->real].ignoresNulls())
        order_ = static_cast<int>(primary->real);
}

// Makes the key of a row; what is damaged is null, as the row will be stored.
KeyKind TableCompaction::makeKey(Pager& pager, const RowView& row, const KeyEncoder& encoder) {
    try {
        return encoder.encodeStored(pager, row, definition_.columns, key_);
    } catch (const Error& error) {
        if (!IsDamage(error))
            throw;
    }
    return makeKeyOfValues(pager, row, encoder);
}

KeyKind TableCompaction::makeKeyOfValues(Pager& pager, const RowView& row, const KeyEncoder& encoder) {
    for (const KeyEncoder::Part& part : encoder.parts()) {
        Value& value = values_[static_cast<std::size_t>(part.column)];
        try {
            DecodeColumn(pager, row, definition_.columns[static_cast<std::size_t>(part.column)], value);
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            value = Value{};
        }
    }
    return encoder.encodeRow(values_, key_);
}

// Makes the key that a row of the source will have in an index. False: none, as the row stays behind.
bool TableCompaction::makeNewKey(const RowView& row, std::size_t index) {
    const KeyEncoder& encoder = indexes_[index].encoder;
    const bool hasId = std::any_of(encoder.parts().begin(), encoder.parts().end(),
                                   [this](const KeyEncoder::Part& part) { return part.column == idColumn_; });
    if (hasId) {
        takeCopy(row);
        if (!moveId())
            return false;
    }
    return makeKey(source_, hasId ? copy_ : row, encoder) != KeyKind::AllNull ||
           !definition_.realIndexes[index].ignoresNulls();
}

// Puts the keys that the rows of the source will have, with their places there, into order.
void TableCompaction::sortRows(std::size_t index, EntrySorter& entries) {
    walk([&](RowPointer at, const RowView& row) {
        if ((left_.empty() || left_.count(at) == 0) && makeNewKey(row, index))
            entries.add(key_, at);
    });
    entries.sort();
}

template<typename Visit>
void TableCompaction::walk(Visit visit) {
    WalkReadable(from_, visit, [this](PageNumber where, const Error& error) {
        reportDamage(where, "could not be read", error);
    });
}

// One of the rows with equal keys must go for the other to keep its unique index: the first one stays.
void TableCompaction::findDuplicates() {
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (!definition_.realIndexes[i].isUnique())
            continue;
        EntrySorter entries(SortMemory);
        sortRows(i, entries);
        Bytes before;
        while (entries.next()) {
            const KeyView key = entries.key();
            if (!std::equal(key.begin(), key.end(), before.begin(), before.end())) {
                before.assign(key.begin(), key.end());
            } else if (!indexes_[i].encoder.isAllNull(key)) {
                left_.insert(entries.row());
                report(entries.row().page,
                       rowText(entries.row()) + " has the same key in a unique index as another row");
            }
        }
    }
}

// Whether the rows seem to lie in their order already, as far as some of them tell.
bool TableCompaction::liesInOrder() {
    constexpr PageNumber Samples = 64;
    Bytes before;
    RowView row;
    for (PageNumber i = 0; i < Samples && from_.rowCount() > Samples; ++i) {
        try {
            RowPointer at{static_cast<PageNumber>(std::uint64_t{source_.pageCount()} * i / Samples),
                          LastSlot};
            if (!from_.next(at, row))
                break;
            if (!makeNewKey(row, static_cast<std::size_t>(order_)) || key_ < before)
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

// Copies the rows in one walk, without sorting their keys. False: one did not lie in its order, and all is to
// be done again.
bool TableCompaction::copyWhileInOrder() {
    constexpr std::size_t MostHeld = 1000;
    const auto order = static_cast<std::size_t>(order_);
    std::vector<Fault> held; // reports, until it is known that these stay the only ones
    const OnLoss hold = [&](const Fault& fault) { held.push_back(fault); };
    lost_ = &hold;
    bool inOrder = true;
    Bytes before;
    walk([&](RowPointer at, const RowView& row) {
        inOrder = inOrder && held.size() < MostHeld;
        if (!inOrder || !makeNewKey(row, order))
            return;
        inOrder = before <= key_;
        before.swap(key_);
        RowPointer stored;
        if (inOrder && copyRow(at, row, stored))
            addEntry(order, indexpage::EntryBuffer(before, stored).view());
    });
    lost_ = &report_;
    if (inOrder)
        std::for_each(held.begin(), held.end(), report_);
    return inOrder;
}

void TableCompaction::copyInOrder() {
    const auto order = static_cast<std::size_t>(order_);
    EntrySorter& entries = indexes_[order].entries;
    sortRows(order, entries);
    OrderedRows rows(from_, entries);
    while (rows.next()) {
        RowPointer stored;
        if (copyRow(rows.at(), rows.row(), stored))
            addEntry(order, indexpage::EntryBuffer(rows.key(), stored).view());
    }
    entries = EntrySorter(0);
}

void TableCompaction::copyAsTheyLie() {
    walk([this](RowPointer at, const RowView& row) {
        RowPointer stored;
        if (left_.empty() || left_.count(at) == 0)
            copyRow(at, row, stored);
    });
}

void TableCompaction::takeCopy(const RowView& row) {
    row_.assign(row.all().begin(), row.all().end());
    copy_.moveTo(row_, row.page(), definition_.variableColumns > 0);
}

// False: the row stays behind.
bool TableCompaction::copyRow(RowPointer at, const RowView& row, RowPointer& stored) {
    takeCopy(row);
    const bool whole = copyColumns(at) && !hasGaps_;
    if (idColumn_ >= 0 && !moveId())
        return false;
    if (!whole) {
        encoder_.encode(fields_, {}, encoded_);
        std::fill(fields_.begin(), fields_.end(), RowEncoder::Field{nullptr, &copy_});
    }
    const Bytes& bytes = whole ? row_ : encoded_;
    stored = store(bytes);
    addKeys(bytes, stored);
    ++rows_;
    return true;
}

// Checks the columns and moves the long values. False: some are damaged, and not of the row any more.
bool TableCompaction::copyColumns(RowPointer at) {
    bool whole = true;
    const auto guard = [&](std::size_t column, auto step) {
        try {
            step(definition_.columns[column]);
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            reportDamage(at.page,
                         rowText(at) + " lost its '" + ToUtf8(definition_.columns[column].name) + '\'',
                         error);
            fields_[column] = {};
            whole = false;
        }
    };
    if (!copy_.holdsFixed(fixedLength_)) {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            if (definition_.columns[i].isFixed())
                guard(i, [this](const Column& column) { static_cast<void>(copy_.bytes(column)); });
    }
    for (const Variable& one : variables_) {
        guard(one.column, [&](const Column& column) {
            one.store != nullptr ? moveLongValue(*one.store, column) : checkColumn(column);
        });
    }
    return whole;
}

// Keeps the keys of a new row for the indexes that are made when all rows are there.
void TableCompaction::addKeys(std::span<const std::uint8_t> bytes, RowPointer stored) {
    if (indexes_.size() == (order_ < 0 ? 0 : 1))
        return;
    const RowView row(bytes, stored.page, definition_.variableColumns > 0);
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (static_cast<int>(i) == order_)
            continue;
        const KeyKind kind = makeKey(target_, row, indexes_[i].encoder);
        if (kind != KeyKind::AllNull || !definition_.realIndexes[i].ignoresNulls())
            indexes_[i].entries.add(key_, stored);
    }
}

// The stored Id, in the copy of the row. False: of an object that could not be read.
bool TableCompaction::moveId() {
    const Column& column = definition_.columns[static_cast<std::size_t>(idColumn_)];
    if (!copy_.holdsFixed(fixedLength_) || copy_.bytes(column).size() != sizeof(std::int32_t))
        return true;
    std::uint8_t* at = row_.data() + (copy_.bytes(column).data() - row_.data());
    const auto id = static_cast<std::int32_t>(Load32(at));
    if (const auto moved = ids_->moved.find(id); moved != ids_->moved.end())
        Store32(at, static_cast<std::uint32_t>(moved->second));
    return ids_->lost.count(id) == 0;
}

// Throws ReadVerification if the column's bytes are no value of its kind.
void TableCompaction::checkColumn(const Column& column) {
    const auto bytes = copy_.bytes(column);
    if (column.type == ColumnType::Text && !PlainText(bytes))
        DecodeStored(column, bytes, copy_.page(), value_);
}

// Stores a long value in the new file and puts its new definition into the copy of the row, where it is as
// long as the old one was.
void TableCompaction::moveLongValue(LongValueStore& values, const Column& column) {
    const auto definition = copy_.bytes(column);
    if (copy_.isNull(column) || InlineValue(definition))
        return;
    LongValueReader reader(source_, definition, copy_.page());
    if (reader.at().page == 0) {
        static_cast<void>(reader.next()); // throws if it is not all there
        return;
    }
    ReadLongValue(source_, definition, copy_.page(), longValue_);
    values.write(longValue_, row_.data() + (definition.data() - row_.data()));
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
        free.remove(before); // it was full when this one was begun
    free.add(page_.number);
}

// Adds an entry of a new row to an index.
void TableCompaction::addEntry(std::size_t index, KeyView entry) {
    const Index& one = indexes_[index];
    if (!one.builder->add(entry) && definition_.realIndexes[index].isUnique() &&
        !one.encoder.isAllNull(entry.first(entry.size() - indexpage::RowLength)))
        distinct_ = false;
}

bool TableCompaction::buildIndexes() {
    for (std::size_t i = 0; i < indexes_.size() && distinct_; ++i) {
        Index& index = indexes_[i];
        index.entries.sort();
        while (index.entries.next())
            addEntry(i, index.entries.entry());
        index.entries = EntrySorter(0);
        index.builder->finish();
        RealIndex& definition = definition_.realIndexes[i];
        definition.entriesWhenMade = index.builder->entryCount();
        definition.distinctKeys = index.builder->distinctKeys();
    }
    return distinct_;
}

} // namespace jet
