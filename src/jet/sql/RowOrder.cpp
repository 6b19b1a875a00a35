#include "jet/sql/RowOrder.h"

#include "jet/base/Convert.h"
#include "jet/base/Error.h"

#include <algorithm>

namespace jet {

bool PageOrder::first() {
    at_ = {};
    return next();
}

bool PageOrder::last() {
    at_ = {};
    return previous();
}

bool PageOrder::next() {
    RowView row;
    return table_.next(at_, row);
}

bool PageOrder::previous() {
    RowView row;
    return table_.previous(at_, row);
}

bool PageOrder::moveTo(RowPointer at) {
    RowView row;
    if (!table_.fetch(at, row))
        return false;
    at_ = at;
    return true;
}

IndexOrder::IndexOrder(const Table& table, int realIndex)
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

bool IndexOrder::moveTo(RowPointer at) {
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

void IndexOrder::encode(std::span<const Value> values, Bytes& key) const {
    std::vector<Value> converted(values.begin(), values.end());
    for (std::size_t i = 0; i < std::min(converted.size(), encoder_.parts().size()); ++i)
        ConvertValue(encoder_.parts()[i].type, converted[i]);
    encoder_.encodeLeading(converted, key);
}

bool ListOrder::isThere(RowPointer at) const {
    RowView row;
    return table_ == nullptr || table_->fetch(at, row);
}

// To the first row there is from a position on; to the last one before a position.
bool ListOrder::forward(std::size_t from) {
    gap_ = false;
    for (position_ = from; position_ < rows_.size(); ++position_)
        if (isThere(at()))
            return true;
    return false;
}

bool ListOrder::backward(std::size_t end) {
    gap_ = false;
    for (position_ = end; position_-- > 0;)
        if (isThere(at()))
            return true;
    return false;
}

bool ListOrder::first() {
    return forward(0);
}

bool ListOrder::last() {
    return backward(rows_.size());
}

bool ListOrder::next() {
    return forward(position_ + (gap_ ? 0 : 1));
}

bool ListOrder::previous() {
    return backward(position_);
}

bool ListOrder::moveTo(RowPointer at) {
    // The place itself, most of the time.
    const bool here = !gap_ && position_ < rows_.size() && rows_[position_] == at;
    const auto found = here ? rows_.begin() + static_cast<std::ptrdiff_t>(position_)
                            : std::find(rows_.begin(), rows_.end(), at);
    if (found == rows_.end() || !isThere(at))
        return false;
    position_ = static_cast<std::size_t>(found - rows_.begin());
    gap_ = false;
    return true;
}

void ListOrder::removed() {
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position_));
    gap_ = true;
}

} // namespace jet
