#include "jet/maintenance/CompactRow.h"

#include "jet/base/Damage.h"
#include "jet/table/Salvage.h"
#include "jet/text/TextCompression.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t LongestValue = 510; // bytes of a Text or Binary column

} // namespace

RowCopier::RowCopier(Pager& source, Pager& target, TableDefinition& definition, const RowChange& change,
                     TableLosses& losses)
    : source_(source)
    , target_(target)
    , definition_(definition)
    , change_(change)
    , losses_(losses)
    , encoder_(definition)
    , fixedLength_(definition.fixedLength())
    , hasGaps_(definition.columns.size() < definition.columnNumbers)
    , longest_(definition.columns.size())
    , fields_(definition.columns.size(), {nullptr, &copy_}) {}

void RowCopier::begin() {
    watched_.clear();
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (column.isLong())
            watched_.push_back(
                {i, std::make_unique<LongValueStore>(target_, column.ownedMap, column.freeMap), {}});
        else if (!column.isFixed() || column.type == ColumnType::Text)
            watched_.push_back({i, nullptr, {}});
    }
}

// False: the row is left out.
bool RowCopier::take(RowPointer at, const RowView& row) {
    row_.assign(row.all().begin(), row.all().end());
    copy_.moveTo(row_, row.page(), definition_.variableColumns > 0);
    if (altered_)
        std::fill(fields_.begin(), fields_.end(), RowEncoder::Field{nullptr, &copy_});
    altered_ = static_cast<bool>(change_);
    return !change_ || change_(at, copy_, fields_);
}

const RowView* RowCopier::preview(RowPointer at, const RowView& row) {
    if (!change_)
        return &row;
    if (!take(at, row))
        return nullptr;
    // Damage stays as it is: building a key from it will detect it.
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const auto none = [&](PageNumber, const Error&) { fields_[i] = {}; };
        if (fields_[i].stored != nullptr)
            DespiteDamage(at.page, none, [&] { static_cast<void>(copy_.bytes(definition_.columns[i])); });
    }
    if (!encode())
        return nullptr;
    changed_.moveTo(encoded_, row.page(), definition_.variableColumns > 0);
    return &changed_;
}

std::optional<std::span<const std::uint8_t>> RowCopier::copy(RowPointer at, const RowView& row) {
    if (!take(at, row))
        return std::nullopt;
    moved_.clear();
    checkColumns(at);
    if (!hasGaps_ && !altered_ && Load16(row_.data()) <= definition_.columnNumbers)
        return row_;
    if (encode())
        return encoded_;
    losses_.ofPage(at.page, RowText(at) + " is too long for a row");
    takeBack();
    return std::nullopt;
}

// Builds the row from its fields. False: it is too long.
bool RowCopier::encode() {
    try {
        encoder_.encode(fields_, {}, encoded_);
        return true;
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::RecordTooLarge)
            throw;
        return false;
    }
}

// Checks the columns and moves the long values; drops damaged ones from the row.
void RowCopier::checkColumns(RowPointer at) {
    const auto guard = [&](std::size_t index, auto step) {
        const auto lost = [&](PageNumber, const Error& error) {
            losses_.ofPage(at.page, RowText(at) + " lost its '" + ToUtf8(definition_.columns[index].name) +
                                        "': " + error.detail());
            fields_[index] = {};
            altered_ = true;
        };
        if (fields_[index].stored != nullptr)
            DespiteDamage(at.page, lost, step);
    };
    if (!copy_.holdsFixed(fixedLength_)) {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            if (definition_.columns[i].isFixed())
                guard(i, [&] { static_cast<void>(copy_.bytes(definition_.columns[i])); });
    }
    for (Watched& one : watched_)
        guard(one.column, [&] { one.store != nullptr ? moveLongValue(one) : checkColumn(one.column); });
}

// Throws ReadVerification if the column's bytes are not a value of its kind.
void RowCopier::checkColumn(std::size_t index) {
    const Column& column = definition_.columns[index];
    const auto bytes = copy_.bytes(column);
    std::size_t length = bytes.size();
    if (column.type == ColumnType::Text) {
        const auto plain = PlainText(bytes);
        if (!plain)
            DecodeStored(column, bytes, copy_.page(), value_);
        length = 2 * (plain ? plain->size() : std::get<std::u16string>(value_).size());
    } else if (column.type != ColumnType::Binary) {
        if (!copy_.isNull(column))
            DecodeStored(column, bytes, copy_.page(), value_);
        return;
    }
    if (column.isFixed())
        return;
    if (length > LongestValue)
        Damaged(copy_.page(), "column '" + ToUtf8(column.name) + "' holds more than it can");
    longest_[index] = std::max(longest_[index], length);
}

// Reads a value none of whose pieces belongs to another one.
void RowCopier::readLongValue(Watched& watched, std::span<const std::uint8_t> definition) {
    LongValueReader reader(source_, definition, copy_.page());
    longValue_.clear();
    while (longValue_.size() < reader.size()) {
        const RowPointer at = reader.at();
        const auto piece = reader.next();
        if (at.page != 0 && !watched.pieces.add(at))
            Damaged(at.page, RowText(at) + " is part of two long values");
        longValue_.insert(longValue_.end(), piece.begin(), piece.end());
    }
}

// Stores a long value in the new file and puts its new definition, which has the old one's length, into the
// copy of the row.
void RowCopier::moveLongValue(Watched& watched) {
    const Column& column = definition_.columns[watched.column];
    const auto definition = copy_.bytes(column);
    if (copy_.isNull(column))
        return;
    const auto inlineValue = InlineValue(definition);
    if (!inlineValue)
        readLongValue(watched, definition);
    if (column.type == ColumnType::Memo && !IsText(inlineValue ? *inlineValue : longValue_))
        Damaged(copy_.page(), "column '" + ToUtf8(column.name) + "' holds no text");
    if (inlineValue)
        return;
    std::uint8_t* place = row_.data() + (definition.data() - row_.data());
    if (longValue_.empty()) {
        Bytes nothing;
        AppendInlineValue({}, nothing);
        std::copy(nothing.begin(), nothing.end(), place);
        return;
    }
    watched.store->write(longValue_, place);
    moved_.push_back(&watched);
}

// Removes the long values of a row that is finally not stored.
void RowCopier::takeBack() {
    for (const Watched* one : moved_)
        one->store->remove(copy_.bytes(definition_.columns[one->column]), copy_.page());
}

void RowCopier::fitColumns() {
    for (std::size_t i = 0; i < longest_.size(); ++i) {
        Column& column = definition_.columns[i];
        if (longest_[i] <= column.size || column.isLong())
            continue;
        losses_.ofTable("says that column '" + ToUtf8(column.name) + "' holds " +
                        std::to_string(column.size) + " bytes, but values have up to " +
                        std::to_string(longest_[i]));
        column.size = static_cast<std::uint16_t>(longest_[i]);
    }
}

} // namespace jet
