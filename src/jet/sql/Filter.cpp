#include "jet/sql/Filter.h"

#include "jet/base/Error.h"
#include "jet/index/IndexTree.h"
#include "jet/index/KeyEncoding.h"
#include "jet/text/Collation.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

// A sort key. Texts with characters of unknown order come after all others, by code.
void appendSortKey(const Column& column, bool ascending, const Value& value, Bytes& into) {
    const auto* text = std::get_if<std::u16string>(&value);
    if (text == nullptr || !FindUnorderable(*text)) {
        AppendKey(column.type, ascending, value, into);
        return;
    }
    const std::uint8_t flip = ascending ? 0 : 0xFF;
    const auto add = [&](int byte) { into.push_back(static_cast<std::uint8_t>(byte) ^ flip); };
    add(0x7F);
    add(0xFF);
    for (const char16_t unit : *text) {
        add(unit >> 8);
        add(unit & 0xFF);
    }
    add(0);
    add(0);
}

// The order of a key and a bound; 0 if one is a prefix of the other.
int compareStart(KeyView key, const Bytes& bound) {
    const std::size_t length = std::min(key.size(), bound.size());
    return length == 0 ? 0 : std::memcmp(key.data(), bound.data(), length);
}

} // namespace

TableRow::TableRow(const Table& table)
    : table_(table)
    , values_(table.definition().columns.size())
    , readAt_(values_.size(), 0) {}

void TableRow::moveTo(const RowView& row) {
    row_ = row;
    ++turn_;
}

const Value& TableRow::value(int column) {
    const auto at = static_cast<std::size_t>(column);
    if (readAt_[at] != turn_) {
        table_.value(row_, column, values_[at]);
        readAt_[at] = turn_;
    }
    return values_[at];
}

Filter::Filter(const Table& table, const sql::Select& select)
    : Filter(table, select.where) {
    const TableDefinition& definition = table.definition();
    const auto find = [&](const std::u16string& name) {
        return FindField(definition, table.name(), {}, name);
    };
    if (!select.fields.empty())
        fields_.clear();
    for (const std::u16string& name : select.fields)
        fields_.push_back(find(name));
    for (const sql::OrderTerm& term : select.order) {
        order_.push_back({find(term.field), term.descending});
        if (ClassOf(definition.columns[static_cast<std::size_t>(order_.back().column)].type) ==
            ValueClass::Binary)
            throw Error(ErrorNumber::DataTypeMismatch, "ORDER BY " + ToUtf8(term.field));
    }
    const auto walk = ChooseWalk(table, order_);
    if (walk && !range_)
        range_ = IndexRange{walk->realIndex, {IndexRange::Stretch{}}, 0, false};
    if (walk && range_->realIndex == walk->realIndex)
        walk_ = walk;
}

Filter::Filter(const Table& table, const std::optional<sql::Expression>& where)
    : table_(table)
    , fields_(table.definition().displayOrder()) {
    if (where) {
        predicate_.emplace(table.definition(), table.name(), *where);
        range_ = ChooseAccessPath(table, *where);
    }
}

void Filter::forEach(const Visit& visit) const {
    const Reading reading(table_.pager());
    if (!sorts()) {
        forEachFound(visit);
        return;
    }
    for (const RowPointer at : sorted()) {
        RowView row;
        if (table_.fetch(at, row) && !visit(at, row))
            return;
    }
}

std::vector<RowPointer> Filter::rows() const {
    const Reading reading(table_.pager());
    if (sorts())
        return sorted();
    std::vector<RowPointer> pointers;
    if (range_ && !predicate_) { // the rows need not be read
        const auto take = [&](RowPointer at) {
            pointers.push_back(at);
            return true;
        };
        walk_->backward ? walkBackward(take) : walkForward(take);
        return pointers;
    }
    forEachFound([&](RowPointer at, const RowView&) {
        pointers.push_back(at);
        return true;
    });
    return pointers;
}

void Filter::forEachFound(const Visit& visit) const {
    TableRow values(table_);
    const auto give = [&](RowPointer at, const RowView& row) {
        if (predicate_) {
            values.moveTo(row);
            if (!predicate_->chooses(values))
                return true;
        }
        return visit(at, row);
    };
    RowView row;
    if (!range_) {
        RowPointer at;
        while (table_.next(at, row) && give(at, row)) {
        }
        return;
    }
    const auto offer = [&](RowPointer at) { return !table_.fetch(at, row) || give(at, row); };
    walk_ && walk_->backward ? walkBackward(offer) : walkForward(offer);
}

void Filter::walkForward(const Offer& offer) const {
    IndexCursor cursor(table_.index(range_->realIndex));
    for (const IndexRange::Stretch& stretch : range_->stretches) {
        bool more = cursor.seekFrom(stretch.lower);
        for (; more && compareStart(cursor.key(), stretch.upper) <= 0; more = cursor.next()) {
            if (!offer(cursor.row()))
                return;
        }
    }
}

// Rows with equal keys come in table order, as they do after sorting.
void Filter::walkBackward(const Offer& offer) const {
    IndexCursor cursor(table_.index(range_->realIndex));
    Bytes key;
    std::vector<RowPointer> equal;
    const auto give = [&] {
        const bool go = std::all_of(equal.rbegin(), equal.rend(), offer);
        equal.clear();
        return go;
    };
    for (auto stretch = range_->stretches.rbegin(); stretch != range_->stretches.rend(); ++stretch) {
        bool more = cursor.seekUpTo(stretch->upper);
        for (; more && compareStart(cursor.key(), stretch->lower) >= 0; more = cursor.previous()) {
            const KeyView found = cursor.key();
            if (!std::equal(found.begin(), found.end(), key.begin(), key.end())) {
                if (!give())
                    return;
                key.assign(found.begin(), found.end());
            }
            equal.push_back(cursor.row());
        }
    }
    give();
}

std::vector<RowPointer> Filter::sorted() const {
    struct Place {
        std::size_t key = 0; // start of its key, which ends where the next one starts
        std::size_t end = 0;
        RowPointer at;
    };
    Bytes keys;
    std::vector<Place> places;
    Value value;
    forEachFound([&](RowPointer at, const RowView& row) {
        const std::size_t begin = keys.size();
        for (const SortTerm& term : order_) {
            table_.value(row, term.column, value);
            appendSortKey(table_.definition().columns[static_cast<std::size_t>(term.column)],
                          !term.descending, value, keys);
        }
        places.push_back({begin, keys.size(), at});
        return true;
    });
    std::sort(places.begin(), places.end(), [&keys](const Place& a, const Place& b) {
        const std::size_t lengths[] = {a.end - a.key, b.end - b.key};
        const int order =
            std::memcmp(keys.data() + a.key, keys.data() + b.key, std::min(lengths[0], lengths[1]));
        if (order != 0 || lengths[0] != lengths[1])
            return order != 0 ? order < 0 : lengths[0] < lengths[1];
        return a.at < b.at;
    });
    std::vector<RowPointer> pointers;
    pointers.reserve(places.size());
    for (const Place& place : places)
        pointers.push_back(place.at);
    return pointers;
}

} // namespace jet
