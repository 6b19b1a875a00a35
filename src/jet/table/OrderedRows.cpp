#include "jet/table/OrderedRows.h"

#include "jet/base/Error.h"
#include "jet/base/Prefetch.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t Ahead = 8; // rows prefetched

} // namespace

OrderedRows::OrderedRows(const Table& table, ExternalSort& entries, std::size_t memory)
    : table_(table)
    , entries_(entries)
    , memory_(memory) {
    std::size_t pages = 0;
    try {
        pages = table.pages().size();
    } catch (const Error&) {
        // It is only used for an estimate.
    }
    const std::size_t rows = std::max<std::size_t>(table.rowCount(), 1);
    rowLength_ = std::min<std::size_t>(pages * PageSize / rows, MaximumRowLength);
}

bool OrderedRows::next() {
    for (;;) {
        if (taken_ == items_.size() && !fill())
            return false;
        if (taken_ + Ahead < items_.size()) {
            const Item& later = items_[taken_ + Ahead];
            Prefetch(bytes_.data() + later.key);
            Prefetch(bytes_.data() + later.row);
            Prefetch(bytes_.data() + later.row + later.length);
        }
        const Item& item = items_[taken_++];
        if (item.length == 0) {
            if (table_.fetch(item.at, row_))
                return true;
            continue;
        }
        row_.moveTo({bytes_.data() + item.row, item.length}, item.page,
                    table_.definition().variableColumns > 0);
        return true;
    }
}

bool OrderedRows::fill() {
    items_.clear();
    byPage_.clear();
    bytes_.clear();
    taken_ = 0;
    const std::size_t each = sizeof(Item) + sizeof(byPage_[0]) + rowLength_;
    while ((items_.empty() || items_.size() * each + bytes_.size() < memory_) && entries_.next()) {
        Item& item = items_.emplace_back();
        const KeyView key = entries_.key();
        item.at = entries_.row();
        item.key = static_cast<std::uint32_t>(bytes_.size());
        item.keyLength = static_cast<std::uint16_t>(key.size());
        bytes_.insert(bytes_.end(), key.begin(), key.end());
        byPage_.push_back(std::uint64_t{item.at.page << 8 | item.at.row} << 32 | (items_.size() - 1));
    }
    std::sort(byPage_.begin(), byPage_.end());
    for (std::size_t i = 0; i < byPage_.size(); ++i) {
        if (i + Ahead < byPage_.size())
            Prefetch(&items_[static_cast<std::uint32_t>(byPage_[i + Ahead])]);
        if (bytes_.size() > memory_)
            break; // rows are longer than expected
        Item& item = items_[static_cast<std::uint32_t>(byPage_[i])];
        RowView row;
        if (!table_.fetch(item.at, row))
            continue; // next() will find the same
        item.row = static_cast<std::uint32_t>(bytes_.size());
        item.length = static_cast<std::uint16_t>(row.all().size());
        item.page = row.page();
        bytes_.insert(bytes_.end(), row.all().begin(), row.all().end());
    }
    return !items_.empty();
}

} // namespace jet
