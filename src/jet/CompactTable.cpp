#include "jet/CompactTable.h"

#include "jet/DataPage.h"
#include "jet/ErrorDetail.h"
#include "jet/Salvage.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint32_t leftOut = 0xFFFFFFFF; // place of a row that does not go over

std::string rowText(RowPointer at) {
    return "row " + std::to_string(at.row);
}

std::uint32_t packed(RowPointer at) {
    return at.page << 8 | at.row;
}

// How many entries from `first` on have the same key.
std::size_t runOf(const IndexEntries& entries, std::size_t first) {
    const KeyView key = entries.key(first);
    std::size_t end = first + 1;
    for (; end < entries.size(); ++end) {
        const KeyView other = entries.key(end);
        if (!std::equal(key.begin(), key.end(), other.begin(), other.end()))
            break;
    }
    return end - first;
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
    , lost_(lost)
    , definition_(from.definition())
    , encoder_(definition_)
    , fields_(definition_.columns.size()) {
    definition_.page = to;
}

void TableCompaction::report(PageNumber page, const std::string& reason) {
    lost_({page, from_.name(), reason, false});
}

std::uint64_t TableCompaction::run(const NewIds& ids, const IdColumn& idColumn) {
    makeDefinition(ids);
    ids_ = idColumn.ids;
    idColumn_ = ids_ == nullptr ? -1 : definition_.findColumn(idColumn.name);
    if (!indexes_.empty()) {
        collectKeys();
        dropDuplicates();
    }
    copyRows();
    buildIndexes();
    definition_.rowCount = static_cast<std::uint32_t>(rows_);
    WriteTableDefinition(target_, definition_);
    return rows_;
}

void TableCompaction::makeDefinition(const NewIds& ids) {
    definition_.ownedMap = maps_.add();
    definition_.freeMap = maps_.add();
    for (RealIndex& index : definition_.realIndexes) {
        index.pages = maps_.add();
        indexes_.push_back({KeyEncoder(definition_, index), {}});
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
        stores_.emplace_back(target_, column.ownedMap, column.freeMap);
    }
    for (LogicalIndex& index : definition_.logicalIndexes) {
        const auto other = ids.moved.find(static_cast<std::int32_t>(index.otherTable));
        index.otherTable = other == ids.moved.end() ? 0 : static_cast<PageNumber>(other->second);
    }
    hasGaps_ = definition_.columns.size() < definition_.columnNumbers;
}

// False: of an object that could not be read.
bool TableCompaction::mapId(std::int32_t& id) const {
    if (ids_->lost.count(id) != 0)
        return false;
    if (const auto moved = ids_->moved.find(id); moved != ids_->moved.end())
        id = moved->second;
    return true;
}

std::uint32_t& TableCompaction::place(RowPointer at) {
    return places_[firstPlace_[at.page] + at.row];
}

void TableCompaction::collectKeys() {
    firstPlace_.assign(source_.pageCount(), 0);
    std::vector<Value> values(definition_.columns.size());
    Bytes key;
    PageNumber page = 0;
    const auto visit = [&](RowPointer at, const RowView& row) {
        if (at.page != page) {
            page = at.page;
            firstPlace_[page] = static_cast<std::uint32_t>(places_.size());
            places_.resize(places_.size() +
                           static_cast<std::size_t>(datapage::SlotCount(source_.read(page))));
        }
        for (std::size_t i = 0; i < indexes_.size(); ++i) {
            for (const KeyEncoder::Part& part : indexes_[i].encoder.parts()) {
                Value& value = values[static_cast<std::size_t>(part.column)];
                try {
                    from_.value(row, part.column, value);
                } catch (const Error& error) {
                    if (!IsDamage(error))
                        throw;
                    value = Value{}; // as the row will be stored
                }
                auto* id = part.column == idColumn_ ? std::get_if<std::int32_t>(&value) : nullptr;
                if (id != nullptr && !mapId(*id))
                    place(at) = leftOut;
            }
            const KeyKind kind = indexes_[i].encoder.encodeRow(values, key);
            if (kind != KeyKind::AllNull || !definition_.realIndexes[i].ignoresNulls())
                indexes_[i].entries.add(key, at);
        }
    };
    WalkReadable(from_, visit, [this](PageNumber where, const Error& error) {
        report(where, "could not be read: " + ErrorDetail(error));
    });
    for (Index& index : indexes_)
        index.entries.sort();
}

// A damaged file can hold the same key twice; one row must go for the other to keep its unique index.
void TableCompaction::dropDuplicates() {
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (!definition_.realIndexes[i].isUnique())
            continue;
        const IndexEntries& entries = indexes_[i].entries;
        Bytes nulls;
        indexes_[i].encoder.encodeLeading(std::vector<Value>(indexes_[i].encoder.parts().size()), nulls);
        for (std::size_t first = 0; first < entries.size();) {
            const std::size_t run = runOf(entries, first);
            const KeyView key = entries.key(first);
            const bool null = std::equal(key.begin(), key.end(), nulls.begin(), nulls.end());
            bool kept = false;
            for (std::size_t at = first; at < first + run && run > 1 && !null; ++at) {
                std::uint32_t& where = place(entries.row(at));
                if (where == leftOut)
                    continue;
                if (kept) {
                    where = leftOut;
                    report(entries.row(at).page,
                           rowText(entries.row(at)) + " has the same key in a unique index as another row");
                }
                kept = true;
            }
            first += run;
        }
    }
}

void TableCompaction::copyRows() {
    const LogicalIndex* primary = definition_.primaryKey();
    if (primary != nullptr && !definition_.realIndexes[primary->real].ignoresNulls()) {
        const IndexEntries& order = indexes_[primary->real].entries;
        for (std::size_t i = 0; i < order.size(); ++i) {
            RowView row;
            if (from_.fetch(order.row(i), row))
                copyRow(order.row(i), row);
        }
    } else {
        const bool reported = !indexes_.empty();
        WalkReadable(
            from_, [this](RowPointer at, const RowView& row) { copyRow(at, row); },
            [&](PageNumber where, const Error& error) {
                if (!reported)
                    report(where, "could not be read: " + ErrorDetail(error));
            });
    }
    flushPage();
}

void TableCompaction::copyRow(RowPointer at, const RowView& row) {
    if (!indexes_.empty() && place(at) == leftOut)
        return;
    const bool hasVariables = definition_.variableColumns > 0;
    row_.assign(row.all().begin(), row.all().end());
    RowView copy(row_, row.page(), hasVariables);
    bool whole = !hasGaps_;
    std::size_t nextLong = 0;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const Column& column = definition_.columns[i];
        fields_[i] = {nullptr, &copy};
        try {
            if (column.isLong())
                moveLongValue(stores_[nextLong], column, copy);
            else
                checkColumn(column, copy);
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            report(at.page, rowText(at) + " lost its '" + ToUtf8(column.name) + "': " + ErrorDetail(error));
            fields_[i] = {};
            whole = false;
        }
        nextLong += column.isLong() ? 1 : 0;
    }
    if (idColumn_ >= 0 && !moveId(copy))
        return;
    RowPointer stored;
    if (whole) {
        stored = store(row_);
    } else {
        encoder_.encode(fields_, {}, encoded_);
        stored = store(encoded_);
    }
    if (!indexes_.empty())
        place(at) = packed(stored);
    ++rows_;
}

// The stored Id, in the copy of the row.
bool TableCompaction::moveId(const RowView& copy) {
    const auto bytes = copy.bytes(definition_.columns[static_cast<std::size_t>(idColumn_)]);
    if (bytes.size() != sizeof(std::int32_t))
        return true;
    auto id = static_cast<std::int32_t>(Load32(bytes.data()));
    const bool keep = mapId(id);
    Store32(row_.data() + (bytes.data() - row_.data()), static_cast<std::uint32_t>(id));
    return keep;
}

// Throws ReadVerification if the column's bytes are no value of its kind.
void TableCompaction::checkColumn(const Column& column, const RowView& row) {
    const auto bytes = row.bytes(column);
    const bool free = column.type == ColumnType::Binary || column.type == ColumnType::Private;
    const bool squeezed = bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
    const bool plain = column.isFixed() || free || row.isNull(column) ||
                       (column.type == ColumnType::Text && (squeezed || bytes.size() % 2 == 0));
    if (!plain)
        DecodeStored(column, bytes, row.page(), value_);
}

// Stores a long value in the new file and puts its new definition into the copy of the row, where it is as
// long as the old one was.
void TableCompaction::moveLongValue(LongValueStore& values, const Column& column, const RowView& copy) {
    if (copy.isNull(column))
        return;
    const auto definition = copy.bytes(column);
    LongValueReader reader(source_, definition, copy.page());
    if (reader.at().page == 0) {
        static_cast<void>(reader.next()); // throws if it is not all there
        return;
    }
    ReadLongValue(source_, definition, copy.page(), longValue_);
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

void TableCompaction::buildIndexes() {
    std::vector<std::uint32_t> rows;
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        RealIndex& definition = definition_.realIndexes[i];
        definition.root = target_.allocate();
        IndexTree tree(target_, definition.root, definition_.page, UsageMap(target_, definition.pages));
        tree.create();
        IndexBuilder builder(tree);
        const IndexEntries& entries = indexes_[i].entries;
        for (std::size_t first = 0; first < entries.size();) {
            // Equal keys are ordered by where the rows lie now.
            const std::size_t run = runOf(entries, first);
            rows.clear();
            for (std::size_t at = first; at < first + run; ++at) {
                const std::uint32_t where = place(entries.row(at));
                if (where != leftOut && where != 0)
                    rows.push_back(where);
            }
            std::sort(rows.begin(), rows.end());
            for (const std::uint32_t where : rows)
                builder.add(entries.key(first), {where >> 8, static_cast<std::uint8_t>(where)});
            first += run;
        }
        builder.finish();
        definition.entriesWhenMade = builder.entryCount();
        definition.distinctKeys = builder.distinctKeys();
        indexes_[i].entries = {};
    }
}

} // namespace jet
