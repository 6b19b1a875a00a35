#include "jet/Recordset.h"

#include "jet/Database.h"
#include "jet/base/Convert.h"
#include "jet/base/Error.h"
#include "jet/sql/Execute.h"
#include "jet/sql/Filter.h"
#include "jet/text/Collation.h"

#include <algorithm>

namespace jet {

namespace {

// A row of a snapshot, as a predicate sees it.
class StoredRow final : public RowValues {
public:
    StoredRow(const Table& table, const std::vector<int>& fields)
        : table_(table)
        , fields_(fields) {}
    void moveTo(const std::vector<Value>& row) { row_ = &row; }
    const Value& value(int column) override {
        const auto found = std::find(fields_.begin(), fields_.end(), column);
        if (found == fields_.end())
            throw Error(ErrorNumber::UnknownField,
                        ToUtf8(table_.definition().columns[static_cast<std::size_t>(column)].name));
        return (*row_)[static_cast<std::size_t>(found - fields_.begin())];
    }

private:
    const Table& table_;
    const std::vector<int>& fields_;
    const std::vector<Value>* row_ = nullptr;
};

bool isSelect(std::u16string_view source) {
    const std::size_t first = source.find_first_not_of(u" \t\r\n");
    if (first == std::u16string_view::npos)
        return false;
    source.remove_prefix(first);
    constexpr std::u16string_view word = u"select";
    return source.size() > word.size() && SameName(source.substr(0, word.size()), word) &&
           std::u16string_view(u" \t\r\n*[").find(source[word.size()]) != std::u16string_view::npos;
}

bool isWritable(const Table& table) {
    try {
        table.checkWritable();
        return true;
    } catch (const Error&) {
        return false;
    }
}

} // namespace

SeekComparison ParseSeekComparison(std::string_view text) {
    constexpr std::pair<std::string_view, SeekComparison> comparisons[] = {
        {"=", SeekComparison::Equal},
        {">", SeekComparison::Greater},
        {">=", SeekComparison::GreaterOrEqual},
        {"<", SeekComparison::Less},
        {"<=", SeekComparison::LessOrEqual}};
    for (const auto& [word, comparison] : comparisons)
        if (text == word)
            return comparison;
    throw Error(ErrorNumber::InvalidArgument, "'" + std::string(text) + "' is no comparison");
}

// ---- Opening

Recordset::Recordset(Table table)
    : table_(std::make_unique<Table>(std::move(table)))
    , fields_(table_->definition().displayOrder()) {}

Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

Recordset Recordset::open(Database& database, std::u16string_view source, Kind kind) {
    return open(database.catalog(), source, kind, database.readOnlyReason().empty());
}

Recordset Recordset::open(const Catalog& catalog, std::u16string_view source, Kind kind, bool updatable) {
    const Reading reading(catalog.pager());
    sql::Select select;
    if (kind != Kind::Table && isSelect(source))
        select = std::get<sql::Select>(sql::ParseStatement(source));
    else
        select.table = source;
    Recordset opened(FindTable(catalog, select.table));
    opened.kind_ = kind;
    opened.updatable_ = updatable && kind != Kind::Snapshot && isWritable(*opened.table_);
    if (kind == Kind::Table) {
        opened.setIndex({});
        return opened;
    }
    const Filter filter(*opened.table_, select);
    opened.fields_ = filter.fields();
    if (kind == Kind::Snapshot)
        opened.fillSnapshot(filter);
    else
        opened.setOrder(std::make_unique<ListCursor>(opened.table_.get(), filter.rows()));
    return opened;
}

void Recordset::fillSnapshot(const Filter& filter) {
    std::vector<RowPointer> rows;
    filter.forEach([&](RowPointer, const RowView& row) {
        std::vector<Value>& values = snapshot_.emplace_back(fields_.size());
        for (std::size_t i = 0; i < fields_.size(); ++i)
            table_->value(row, fields_[i], values[i]);
        rows.push_back({static_cast<PageNumber>(snapshot_.size()), 0});
        return true;
    });
    setOrder(std::make_unique<ListCursor>(nullptr, std::move(rows)));
}

// Takes a cursor and goes to its first row.
void Recordset::setOrder(std::unique_ptr<RowCursor> order) {
    leave();
    order_ = std::move(order);
    indexOrder_ = dynamic_cast<IndexRowCursor*>(order_.get());
    listOrder_ = dynamic_cast<ListCursor*>(order_.get());
    place_ = order_->first() ? Place::On : Place::Empty;
}

// ---- Fields

const Column& Recordset::column(int field) const {
    return table_->definition().columns[columnOf(field)];
}

std::size_t Recordset::columnOf(int field) const {
    if (field < 0 || field >= fieldCount())
        throw Error(ErrorNumber::ItemNotFound, "field " + std::to_string(field));
    return static_cast<std::size_t>(fields_[static_cast<std::size_t>(field)]);
}

int Recordset::size(int field) const {
    const Column& definition = column(field);
    return definition.type == ColumnType::Text     ? definition.size / 2
           : definition.type == ColumnType::Binary ? definition.size
                                                   : 0;
}

int Recordset::field(std::u16string_view name) const {
    for (int i = 0; i < fieldCount(); ++i)
        if (SameName(column(i).name, name))
            return i;
    throw Error(ErrorNumber::ItemNotFound, ToUtf8(name));
}

// ---- Moving

void Recordset::setIndex(std::u16string_view name) {
    if (kind_ != Kind::Table)
        throw Error(ErrorNumber::InvalidArgument, "only a table has an index");
    const Reading reading(table_->pager());
    if (name.empty()) {
        setOrder(std::make_unique<PageCursor>(*table_));
    } else {
        const LogicalIndex* index = table_->definition().findIndex(name);
        if (index == nullptr)
            throw Error(ErrorNumber::IndexNotFound, ToUtf8(name));
        setOrder(std::make_unique<IndexRowCursor>(*table_, static_cast<int>(index->real)));
    }
    indexName_ = name;
}

// The state that a move discards.
void Recordset::leave() {
    loaded_ = false;
    editing_ = Editing::No;
}

void Recordset::seek(SeekComparison comparison, std::span<const Value> values) {
    if (indexOrder_ == nullptr)
        throw Error(ErrorNumber::NoIndexSet);
    leave();
    place_ = place_ == Place::Empty ? Place::Empty : Place::Nowhere;
    noMatch_ = true;
    try {
        indexOrder_->encode(values, key_);
    } catch (const Error&) {
        // In the index, no row has a text that cannot be ordered.
        const bool text = std::any_of(values.begin(), values.end(), [](const Value& value) {
            const auto* held = std::get_if<std::u16string>(&value);
            return held != nullptr && FindUnorderable(*held);
        });
        if (comparison == SeekComparison::Equal && text)
            return;
        throw;
    }
    IndexCursor& cursor = indexOrder_->cursor();
    bool found = false;
    switch (comparison) {
    case SeekComparison::Equal:
        found = cursor.seekFrom(key_) && cursor.matches(key_);
        break;
    case SeekComparison::Greater:
        found = cursor.seekPast(key_);
        break;
    case SeekComparison::GreaterOrEqual:
        found = cursor.seekFrom(key_);
        break;
    case SeekComparison::Less:
        found = cursor.seekBefore(key_);
        break;
    case SeekComparison::LessOrEqual:
        found = cursor.seekUpTo(key_);
        break;
    }
    noMatch_ = !found;
    if (found)
        place_ = Place::On;
}

void Recordset::moveFirst() {
    leave();
    place_ = order_->first() ? Place::On : Place::Empty;
    if (place_ == Place::Empty)
        throw Error(ErrorNumber::NoCurrentRecord);
}

void Recordset::moveLast() {
    leave();
    place_ = order_->last() ? Place::On : Place::Empty;
    if (place_ == Place::Empty)
        throw Error(ErrorNumber::NoCurrentRecord);
}

void Recordset::moveNext() {
    move(&RowCursor::next, Place::Behind, Place::Before, &RowCursor::first);
}

void Recordset::movePrevious() {
    move(&RowCursor::previous, Place::Before, Place::Behind, &RowCursor::last);
}

// One step towards `end`; from beyond the other end it leads to the first row on the way.
void Recordset::move(Step step, Place end, Place otherEnd, Step enter) {
    leave();
    if (place_ == Place::Empty || place_ == Place::Nowhere || place_ == end)
        throw Error(ErrorNumber::NoCurrentRecord);
    const Reading reading(table_->pager());
    if ((order_.get()->*(place_ == otherEnd ? enter : step))())
        place_ = Place::On;
    else
        place_ = order_->first() ? end : Place::Empty;
    // In a shared file every operation checks for others' changes; a walk usually also reads the row.
    if (place_ == Place::On && kind_ != Kind::Snapshot) {
        try {
            loadRow();
        } catch (const Error&) {
            // Thrown when a value is requested: a walk can continue past a damaged row.
        }
    }
}

void Recordset::findFirst(std::u16string_view predicate) {
    find(predicate, &RowCursor::first, &RowCursor::next);
}

void Recordset::findLast(std::u16string_view predicate) {
    find(predicate, &RowCursor::last, &RowCursor::previous);
}

void Recordset::findNext(std::u16string_view predicate) {
    find(predicate, place_ == Place::Before ? &RowCursor::first : &RowCursor::next, &RowCursor::next);
}

void Recordset::findPrevious(std::u16string_view predicate) {
    find(predicate, place_ == Place::Behind ? &RowCursor::last : &RowCursor::previous, &RowCursor::previous);
}

void Recordset::find(std::u16string_view predicate, Step start, Step step) {
    const Predicate wanted(table_->definition(), table_->name(), sql::ParsePredicate(predicate));
    const Reading reading(table_->pager());
    leave();
    noMatch_ = true;
    const bool isStart = start == &RowCursor::first || start == &RowCursor::last;
    const bool hasPlace = place_ == Place::On || place_ == Place::Removed;
    if (place_ == Place::Empty || (!isStart && !hasPlace))
        return;
    TableRow tableRow(*table_);
    StoredRow storedRow(*table_, fields_);
    const auto chooses = [&] {
        if (kind_ == Kind::Snapshot) {
            storedRow.moveTo(snapshot_[listOrder_->position()]);
            return wanted.chooses(storedRow);
        }
        RowView row;
        if (!table_->fetch(order_->at(), row))
            return false;
        tableRow.moveTo(row);
        return wanted.chooses(tableRow);
    };
    const Place before = place_;
    const RowPointer from = hasPlace ? order_->at() : RowPointer{};
    for (bool more = (order_.get()->*start)(); more; more = (order_.get()->*step)())
        if (chooses()) {
            noMatch_ = false;
            place_ = Place::On;
            return;
        }
    if (hasPlace && order_->moveTo(from))
        place_ = Place::On;
    else
        place_ = hasPlace ? Place::Nowhere : before;
}

std::uint32_t Recordset::recordCount() const {
    return listOrder_ != nullptr ? static_cast<std::uint32_t>(listOrder_->size()) : table_->rowCount();
}

RowPointer Recordset::bookmark() const {
    if (place_ != Place::On)
        throw Error(ErrorNumber::NoCurrentRecord);
    return order_->at();
}

void Recordset::setBookmark(RowPointer at) {
    leave();
    place_ = order_->moveTo(at) ? Place::On : Place::Nowhere;
    if (place_ != Place::On)
        throw Error(ErrorNumber::NoCurrentRecord);
}

// ---- Reading

// Copies the current row; it is read from the copy until the recordset moves.
void Recordset::loadRow() {
    if (loaded_)
        return;
    if (place_ != Place::On)
        throw Error(place_ == Place::Removed ? ErrorNumber::RecordDeleted : ErrorNumber::NoCurrentRecord);
    const Reading reading(table_->pager());
    RowView row;
    if (!table_->fetch(order_->at(), row))
        throw Error(ErrorNumber::RecordDeleted);
    bytes_.assign(row.all().begin(), row.all().end());
    row_.moveTo(bytes_, row.page(), table_->definition().variableColumns > 0);
    loaded_ = true;
}

Value Recordset::value(int field) {
    const std::size_t column = columnOf(field);
    if (editing_ == Editing::Adding || (editing_ == Editing::Changing && set_[column]))
        return values_[column];
    if (kind_ == Kind::Snapshot) {
        if (place_ != Place::On)
            throw Error(ErrorNumber::NoCurrentRecord);
        return snapshot_[listOrder_->position()][static_cast<std::size_t>(field)];
    }
    loadRow();
    return storedValue(column);
}

// A column of the loaded row. Others may have freed its long values since it was loaded, so a long value is
// read from the current state of the row.
Value Recordset::storedValue(std::size_t column) {
    Value value;
    if (!table_->definition().columns[column].isLong()) {
        table_->value(row_, static_cast<int>(column), value);
        return value;
    }
    const Reading reading(table_->pager());
    RowView row;
    if (!table_->fetch(order_->at(), row))
        throw Error(ErrorNumber::RecordDeleted);
    table_->value(row, static_cast<int>(column), value);
    return value;
}

// ---- Changing

void Recordset::set(int field, Value value) {
    if (editing_ == Editing::No)
        throw Error(ErrorNumber::NoEdit);
    const std::size_t column = columnOf(field);
    ConvertValue(table_->definition().columns[column].type, value);
    values_[column] = std::move(value);
    set_[column] = true;
}

void Recordset::checkUpdatable() const {
    if (updatable_)
        return;
    table_->checkWritable();
    throw Error(ErrorNumber::CannotUpdateReadOnly, ToUtf8(name()));
}

void Recordset::begin(Editing editing) {
    checkUpdatable();
    const std::size_t columns = table_->definition().columns.size();
    values_.assign(columns, Value{});
    set_.assign(columns, false);
    editing_ = editing;
}

void Recordset::addNew() {
    begin(Editing::Adding);
}

void Recordset::edit() {
    const Reading reading(table_->pager());
    loaded_ = false;
    editing_ = Editing::No;
    loadRow();
    begin(Editing::Changing);
    for (std::size_t i = 0; i < values_.size(); ++i)
        if (table_->definition().columns[i].isLong())
            values_[i] = storedValue(i);
    longs_ = values_;
}

void Recordset::cancelUpdate() {
    leave();
}

void Recordset::update() {
    if (editing_ == Editing::Adding)
        saveNew();
    else if (editing_ == Editing::Changing)
        saveChanged();
    else
        throw Error(ErrorNumber::NoEdit);
    leave();
}

void Recordset::saveNew() {
    try {
        lastModified_ = table_->insert(values_);
    } catch (const Error&) {
        // An autonumber that the table filled in is assigned again at the next try.
        for (std::size_t i = 0; i < values_.size(); ++i)
            if (!set_[i])
                values_[i] = Value{};
        throw;
    }
    order_->added(lastModified_);
    if (place_ == Place::Empty && order_->moveTo(lastModified_))
        place_ = Place::On;
}

void Recordset::saveChanged() {
    changes_.clear();
    for (std::size_t i = 0; i < values_.size(); ++i)
        if (set_[i])
            changes_.push_back({static_cast<int>(i), values_[i]});
    const RowPointer at = order_->at();
    Changing change(table_->pager());
    checkUnchanged(at);
    table_->update(at, changes_);
    change.commit();
    lastModified_ = at;
    order_->moveTo(at);
}

// Throws if the row differs from what edit() read. A long value may have been replaced in place, so it is
// compared separately.
void Recordset::checkUnchanged(RowPointer at) {
    RowView row;
    if (!table_->fetch(at, row))
        throw Error(ErrorNumber::RecordDeleted);
    bool same = std::equal(row.all().begin(), row.all().end(), bytes_.begin(), bytes_.end());
    Value now;
    for (std::size_t i = 0; same && i < longs_.size(); ++i)
        if (table_->definition().columns[i].isLong()) {
            table_->value(row, static_cast<int>(i), now);
            same = now == longs_[i];
        }
    if (!same)
        throw Error(ErrorNumber::RecordChanged);
}

void Recordset::remove() {
    checkUpdatable();
    if (place_ != Place::On)
        throw Error(place_ == Place::Removed ? ErrorNumber::RecordDeleted : ErrorNumber::NoCurrentRecord);
    leave();
    table_->remove(order_->at());
    order_->removed();
    place_ = Place::Removed;
}

} // namespace jet
