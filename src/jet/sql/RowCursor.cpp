#include "jet/sql/RowCursor.h"

#include "jet/base/Convert.h"
#include "jet/base/Error.h"

#include <algorithm>

namespace jet {

bool PageCursor::first() {
    at_ = {};
    return next();
}

bool PageCursor::last() {
    at_ = {};
    return previous();
}

bool PageCursor::next() {
    RowView row;
    return table_.next(at_, row);
}

bool PageCursor::previous() {
    RowView row;
    return table_.previous(at_, row);
}

bool PageCursor::moveTo(RowPointer at) {
    RowView row;
    if (!table_.fetch(at, row))
        return false;
    at_ = at;
    return true;
}

IndexRowCursor::IndexRowCursor(const Table& table, int realIndex)
    : table_(table)
    , encoder_(table.definition(), table.definition().realIndexes.at(static_cast<std::size_t>(realIndex)))
    , cursor_(table.index(realIndex))
    , values_(table.definition().columns.size()) {
    for (const KeyEncoder::Part& part : encoder_.parts()) {
        const Column& column = table.definition().columns[static_cast<std::size_t>(part.column)];
        if (!IsOrderKnown(column))
            throw Error(ErrorNumber::InvalidArgument,
                        "the order of the index on '" + ToUtf8(column.name) + "' is not known here");
    }
}

bool IndexRowCursor::moveTo(RowPointer at) {
    const Reading reading(table_.pager());
    RowView row;
    if (!table_.fetch(at, row))
        return false;
    for (const KeyEncoder::Part& part : encoder_.parts())
        table_.value(row, part.column, values_[static_cast<std::size_t>(part.column)]);
    encoder_.encodeRow(values_, key_);
    cursor_.seekEntry(key_, at);
    return true;
}

void IndexRowCursor::encode(std::span<const Value> values, Bytes& key) const {
    std::vector<Value> converted(values.begin(), values.end());
    for (std::size_t i = 0; i < std::min(converted.size(), encoder_.parts().size()); ++i)
        ConvertValue(encoder_.parts()[i].type, converted[i]);
    encoder_.encodeLeading(converted, key);
}

bool ListCursor::isThere(RowPointer at) const {
    RowView row;
    return table_ == nullptr || table_->fetch(at, row);
}

// Moves to the first existing row from a position on; to the last one before a position.
bool ListCursor::forward(std::size_t from) {
    gap_ = false;
    for (position_ = from; position_ < rows_.size(); ++position_)
        if (isThere(at()))
            return true;
    return false;
}

bool ListCursor::backward(std::size_t end) {
    gap_ = false;
    for (position_ = end; position_-- > 0;)
        if (isThere(at()))
            return true;
    return false;
}

bool ListCursor::first() {
    return forward(0);
}

bool ListCursor::last() {
    return backward(rows_.size());
}

bool ListCursor::next() {
    return forward(position_ + (gap_ ? 0 : 1));
}

bool ListCursor::previous() {
    return backward(position_);
}

bool ListCursor::moveTo(RowPointer at) {
    // Usually at the place itself.
    const bool here = !gap_ && position_ < rows_.size() && rows_[position_] == at;
    const auto found = here ? rows_.begin() + static_cast<std::ptrdiff_t>(position_)
                            : std::find(rows_.begin(), rows_.end(), at);
    if (found == rows_.end() || !isThere(at))
        return false;
    position_ = static_cast<std::size_t>(found - rows_.begin());
    gap_ = false;
    return true;
}

void ListCursor::removed() {
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position_));
    gap_ = true;
}

} // namespace jet
