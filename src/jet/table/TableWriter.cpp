#include "jet/table/TableWriter.h"

#include "jet/base/Convert.h"
#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"
#include "jet/text/TextCompression.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::size_t PointerLength = 4;
constexpr std::uint32_t CountedExactly = 1024;
constexpr std::uint32_t SampleEvery = 16;
// The parts of a definition page that a design change alters: the definition's length, and its head from
// after the counters up to the maps.
constexpr std::size_t LengthField = 0x08;
constexpr std::size_t HeadBegin = 0x18;
constexpr std::size_t HeadEnd = 0x3F;

Bytes designOf(const std::uint8_t* page) {
    Bytes design(4 + HeadEnd - HeadBegin);
    std::copy_n(page + LengthField, 4, design.begin());
    std::copy(page + HeadBegin, page + HeadEnd, design.begin() + 4);
    return design;
}

} // namespace

TableWriter::TableWriter(Pager& pager, const TableDefinition& definition, std::vector<FieldRule> rules)
    : pager_(pager)
    , definition_(definition)
    , rules_(std::move(rules))
    , design_(designOf(pager.read(definition.page)))
    , encoder_(definition)
    , space_(pager, definition.page, definition.ownedMap, definition.freeMap)
    , stores_(definition.columns.size())
    , values_(definition.columns.size())
    , texts_(definition.columns.size()) {
    for (const RealIndex& index : definition.realIndexes)
        indexes_.push_back({KeyEncoder(definition, index),
                            IndexTree(pager, index.root, definition.page, UsageMap(pager, index.pages)),
                            &index,
                            {},
                            {}});
    for (std::size_t i = 0; i < definition.columns.size(); ++i)
        if (definition.columns[i].isAutonumber())
            autonumber_ = static_cast<int>(i);
}

// Throws if another program, or another part of this one, changed the table's design since it was opened.
void TableWriter::checkDesign() {
    const std::uint8_t* page = pager_.read(definition_.page);
    if (std::memcmp(page + LengthField, design_.data(), 4) != 0 ||
        std::memcmp(page + HeadBegin, design_.data() + 4, HeadEnd - HeadBegin) != 0)
        throw Error(ErrorNumber::RecordChanged, "the design of the table was changed");
}

void TableWriter::checkRule(std::size_t column, const Value& value) const {
    const FieldRule& rule = rules_[column];
    if (IsNull(value)) {
        if (rule.required && definition_.columns[column].type != ColumnType::Boolean)
            throw Error(ErrorNumber::RequiredFieldEmpty, ToUtf8(definition_.columns[column].name));
        return;
    }
    const auto* text = std::get_if<std::u16string>(&value);
    if (!rule.zeroLength && text != nullptr && text->empty())
        throw Error(ErrorNumber::ZeroLengthNotAllowed, ToUtf8(definition_.columns[column].name));
}

// The number of distinct keys of an index helps query planners. In a large table one row in SampleEvery is
// examined and represents all of them, unless the index must be searched anyway.
void TableWriter::chooseSample() {
    const std::uint32_t rows = TableCounters::rowCount(pager_, definition_.page);
    sample_ = rows < CountedExactly ? 1 : rows % SampleEvery == 0 ? SampleEvery : 0;
}

void TableWriter::countKeys(std::size_t index) {
    if (indexes_[index].newKeys > 0)
        TableCounters::addDistinctKeys(pager_, definition_.page, static_cast<int>(index),
                                       indexes_[index].newKeys);
}

// Builds the key of a row, and refuses a null or a duplicate that the index does not allow.
void TableWriter::prepareKey(Index& index, std::span<const Value> values) {
    const RealIndex& real = *index.definition;
    const KeyKind kind = index.encoder.encodeRow(values, index.key);
    index.present = !(real.ignoresNulls() && kind == KeyKind::AllNull);
    index.newKeys = 0;
    index.searched = false;
    if (real.isRequired() && kind != KeyKind::Plain)
        throw Error(ErrorNumber::NullNotAllowed);
    if (!index.present || (index.oldPresent && index.key == index.oldKey))
        return;
    const bool mustDiffer = real.isUnique() && kind != KeyKind::AllNull;
    if (!mustDiffer && sample_ == 0)
        return;
    const bool isNew = !index.tree.find(index.key, index.place);
    index.searched = isNew;
    if (!isNew && mustDiffer)
        throw Error(ErrorNumber::DuplicateKey);
    if (isNew)
        index.newKeys = mustDiffer ? 1 : sample_;
}

// Builds the row; long values stored outside it have an empty definition for now.
void TableWriter::encode(bool allApart) {
    apart_.clear();
    const auto putLong = [&](int column, const Value& value, Bytes& into) {
        const auto at = static_cast<std::size_t>(column);
        std::span<const std::uint8_t> data;
        if (const auto* text = std::get_if<std::u16string>(&value)) {
            texts_[at].clear();
            EncodeText(*text, (definition_.columns[at].extended & Column::Compressed) != 0, texts_[at]);
            data = texts_[at];
        } else {
            data = std::get<Bytes>(value);
        }
        if (data.empty() || (data.size() <= MaximumInlineLength && !allApart))
            return AppendInlineValue(data, into);
        apart_.push_back({at, into.size(), data});
        into.resize(into.size() + LongValueDefinitionLength);
    };
    encoder_.encode(fields_, putLong, row_);
}

void TableWriter::buildRow() {
    try {
        encode(false);
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::RecordTooLarge)
            throw;
        encode(true);
    }
}

LongValueStore& TableWriter::store(std::size_t column) {
    if (stores_[column] == nullptr) {
        const Column& definition = definition_.columns[column];
        stores_[column] = std::make_unique<LongValueStore>(pager_, definition.ownedMap, definition.freeMap);
    }
    return *stores_[column];
}

void TableWriter::storeApart() {
    for (const Apart& value : apart_)
        store(value.column).write(value.data, row_.data() + value.at);
}

void TableWriter::prepareInsert(std::span<Value> values) {
    checkDesign();
    if (values.size() != definition_.columns.size())
        throw Error(ErrorNumber::InvalidArgument, "a row of another number of fields");
    fields_.clear();
    newAutonumber_ = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        ConvertValue(definition_.columns[i].type, values[i]);
        if (static_cast<int>(i) == autonumber_) {
            const auto last =
                static_cast<std::int32_t>(TableCounters::lastAutonumber(pager_, definition_.page));
            if (IsNull(values[i]))
                values[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(last) + 1);
            if (std::get<std::int32_t>(values[i]) > last)
                newAutonumber_ = static_cast<std::uint32_t>(std::get<std::int32_t>(values[i]));
        }
        checkRule(i, values[i]);
        fields_.push_back({&values[i], nullptr});
    }
    chooseSample();
    for (Index& index : indexes_) {
        index.oldPresent = false;
        prepareKey(index, values);
    }
    buildRow();
}

RowPointer TableWriter::insert() {
    storeApart();
    const RowPointer at = space_.put(row_, 0);
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        Index& index = indexes_[i];
        if (!index.present)
            continue;
        if (index.searched)
            index.tree.insertAt(index.place, index.key, at);
        else
            index.tree.insert(index.key, at);
        countKeys(i);
    }
    TableCounters::addRows(pager_, definition_.page, 1);
    if (newAutonumber_ != 0)
        TableCounters::setLastAutonumber(pager_, definition_.page, newAutonumber_);
    return at;
}

void TableWriter::keepOld(const RowView& row) {
    oldRow_.assign(row.all().begin(), row.all().end());
    old_ = RowView(oldRow_, row.page(), definition_.variableColumns > 0);
}

// Extracts the values of an index from the old row.
void TableWriter::decodeKeyColumns(const Index& index) {
    for (const KeyEncoder::Part& part : index.encoder.parts()) {
        const auto column = static_cast<std::size_t>(part.column);
        DecodeColumn(pager_, old_, definition_.columns[column], values_[column]);
    }
}

void TableWriter::prepareUpdate(const RowView& row, std::span<const FieldChange> changes) {
    checkDesign();
    keepOld(row);
    fields_.assign(definition_.columns.size(), {nullptr, &old_});
    changed_.clear();
    changed_.reserve(changes.size()); // fields point into it
    for (const FieldChange& field : changes) {
        const auto column = static_cast<std::size_t>(field.column);
        ConvertValue(definition_.columns.at(column).type, changed_.emplace_back(field.value));
        checkRule(column, changed_.back());
        fields_[column] = {&changed_.back(), nullptr};
    }
    chooseSample();
    const auto newValue = [&](const KeyEncoder::Part& part) {
        return fields_[static_cast<std::size_t>(part.column)].value;
    };
    for (Index& index : indexes_) {
        index.present = index.oldPresent = false;
        const auto parts = index.encoder.parts();
        if (std::none_of(parts.begin(), parts.end(), newValue))
            continue;
        decodeKeyColumns(index);
        const KeyKind oldKind = index.encoder.encodeRow(values_, index.oldKey);
        index.oldPresent = !(index.definition->ignoresNulls() && oldKind == KeyKind::AllNull);
        for (const KeyEncoder::Part& part : parts)
            if (newValue(part) != nullptr)
                values_[static_cast<std::size_t>(part.column)] = *newValue(part);
        prepareKey(index, values_);
    }
    buildRow();
}

void TableWriter::update(RowPointer at) {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].value != nullptr)
            removeLongValue(i);
    storeApart();
    place(at);
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        Index& index = indexes_[i];
        if (index.present == index.oldPresent && (!index.present || index.key == index.oldKey))
            continue;
        if (index.oldPresent && !index.tree.remove(index.oldKey, at))
            Damaged(index.tree.root(), "an index lacks the entry of a row");
        if (index.present)
            index.tree.insert(index.key, at);
        countKeys(i);
    }
}

// Frees the external parts of a Memo or OLE field of the old row.
void TableWriter::removeLongValue(std::size_t column) {
    const Column& definition = definition_.columns[column];
    if (definition.isLong() && !old_.isNull(definition))
        store(column).remove(old_.bytes(definition), old_.page());
}

// Where a row was moved to; no page if it was not.
RowPointer TableWriter::movedTo(RowPointer at) {
    const std::uint8_t* page = pager_.read(at.page);
    const datapage::Slot slot = datapage::Find(page, at.page, at.row);
    return slot.pointer ? LoadRowPointer(page + slot.offset) : RowPointer{};
}

// Replaces the row at `at` by the built one: there, or at its moved place, or elsewhere.
void TableWriter::place(RowPointer at) {
    const int length = static_cast<int>(row_.size());
    const auto canReplace = [&](RowPointer where, int size) {
        return datapage::CanReplace(pager_.read(where.page), where.page, where.row, size);
    };
    const auto replace = [&](RowPointer where, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
        datapage::Replace(pager_.edit(where.page), where.page, where.row, bytes, flags);
        space_.noteRoom(where.page);
    };
    const RowPointer moved = movedTo(at);
    if (moved.page != 0 && canReplace(moved, length))
        return replace(moved, row_, datapage::HiddenFlag);
    if (canReplace(at, length)) {
        replace(at, row_, 0);
    } else {
        if (!canReplace(at, PointerLength))
            throw Error(ErrorNumber::RecordTooLarge);
        std::uint8_t pointer[PointerLength];
        StoreRowPointer(pointer, space_.put(row_, datapage::HiddenFlag));
        replace(at, pointer, datapage::PointerFlag);
    }
    if (moved.page != 0)
        space_.remove(moved);
}

void TableWriter::prepareRemove(const RowView& row) {
    checkDesign();
    keepOld(row);
    for (Index& index : indexes_) {
        decodeKeyColumns(index);
        const KeyKind kind = index.encoder.encodeRow(values_, index.oldKey);
        index.oldPresent = !(index.definition->ignoresNulls() && kind == KeyKind::AllNull);
    }
}

void TableWriter::remove(RowPointer at) {
    for (Index& index : indexes_)
        if (index.oldPresent && !index.tree.remove(index.oldKey, at))
            Damaged(index.tree.root(), "an index lacks the entry of a row");
    for (std::size_t i = 0; i < definition_.columns.size(); ++i)
        removeLongValue(i);
    if (const RowPointer moved = movedTo(at); moved.page != 0)
        space_.remove(moved);
    space_.remove(at);
    TableCounters::addRows(pager_, definition_.page, -1);
}

} // namespace jet
