#include "databases/odbc/OdbcRecordset.h"

#include "databases/jet/JetDatabase.h"
#include "jet/Query.h"
#include "jet/Value.h"

#include <algorithm>

namespace tolvex {

namespace {

using jet::ErrorNumber;

[[noreturn]] void refuse(ErrorNumber number, const QString& detail = {}) {
    throw FromEngine(jet::Error(number, detail.toStdString()));
}

// A row in memory, as a predicate sees it.
class MemoryRow final : public jet::RowValues {
public:
    explicit MemoryRow(const std::vector<jet::Value>& row)
        : row_(row) {}
    const jet::Value& value(int column) override { return row_[static_cast<std::size_t>(column)]; }

private:
    const std::vector<jet::Value>& row_;
};

} // namespace

OdbcRecordset::OdbcRecordset(std::shared_ptr<ServerSession> session, const OdbcTable& table)
    : session_(std::move(session))
    , source_{table.name, {}, {}} {
    load(QStringLiteral("SELECT * FROM ") + BracketedTable(table.name));
    for (const QString& field : table.key())
        source_.key.push_back(columnOf(field));
}

OdbcRecordset::OdbcRecordset(std::shared_ptr<ServerSession> session, const QString& statement)
    : session_(std::move(session))
    , source_{statement, {}, {}} {
    load(statement);
}

// ---- Reading

void OdbcRecordset::load(const QString& statement) {
    OdbcRows read = session_->run(
        [statement](OdbcConnection& connection, bool) { return ReadRows(connection, statement); });
    source_.columns = std::move(read.columns);
    rows_ = std::move(read.rows);
    place_ = rows_.empty() ? Place::Empty : Place::On;
}

std::size_t OdbcRecordset::columnOf(const QString& field) const {
    for (qsizetype i = 0; i < source_.columns.size(); ++i)
        if (source_.columns[i].name.compare(field, Qt::CaseInsensitive) == 0)
            return static_cast<std::size_t>(i);
    refuse(ErrorNumber::ItemNotFound, field);
}

QVariant OdbcRecordset::value(const QString& field) {
    const std::size_t column = columnOf(field);
    if (editing_ != Editing::No)
        return ToVariant(values_[column]);
    checkCurrent();
    return ToVariant(rows_[at_][column]);
}

// ---- Moving and finding

void OdbcRecordset::setIndex(const QString& index) {
    refuse(ErrorNumber::InvalidArgument, index);
}

void OdbcRecordset::seek(const QVariant&) {
    refuse(ErrorNumber::NoIndexSet);
}

void OdbcRecordset::findFirst(const QString& criterion) {
    editing_ = Editing::No;
    try {
        jet::TableDefinition definition;
        for (const OdbcColumn& each : source_.columns) {
            definition.columns.emplace_back().name = each.name.toStdU16String();
            definition.columns.back().type = each.type;
        }
        const jet::Predicate wanted(definition, source_.table.toStdU16String(),
                                    jet::sql::ParsePredicate(criterion.toStdU16String()));
        const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const OdbcRow& row) {
            MemoryRow seen(row);
            return wanted.chooses(seen);
        });
        noMatch_ = found == rows_.end();
        if (noMatch_)
            return;
        at_ = static_cast<std::size_t>(found - rows_.begin());
        place_ = Place::On;
    } catch (const jet::Error& error) {
        throw FromEngine(error);
    }
}

void OdbcRecordset::moveFirst() {
    editing_ = Editing::No;
    at_ = 0;
    place_ = rows_.empty() ? Place::Empty : Place::On;
    if (rows_.empty())
        refuse(ErrorNumber::NoCurrentRecord);
}

// From a removed row this leads to the one that took its place.
void OdbcRecordset::moveNext() {
    editing_ = Editing::No;
    if (eof())
        refuse(ErrorNumber::NoCurrentRecord);
    if (place_ == Place::On)
        ++at_;
    place_ = at_ < rows_.size() ? Place::On : rows_.empty() ? Place::Empty : Place::Behind;
}

// ---- Changing

void OdbcRecordset::checkCurrent() const {
    if (place_ != Place::On)
        refuse(place_ == Place::Removed ? ErrorNumber::RecordDeleted : ErrorNumber::NoCurrentRecord);
}

void OdbcRecordset::checkUpdatable() const {
    if (!updatable())
        refuse(ErrorNumber::CannotUpdateReadOnly, source_.table);
}

void OdbcRecordset::begin(Editing editing) {
    editing_ = editing;
    set_.assign(static_cast<std::size_t>(source_.columns.size()), false);
}

void OdbcRecordset::addNew() {
    checkUpdatable();
    values_.assign(static_cast<std::size_t>(source_.columns.size()), jet::Value());
    begin(Editing::Adding);
}

void OdbcRecordset::edit() {
    editing_ = Editing::No;
    checkUpdatable();
    checkCurrent();
    rows_[at_] = session_->run([source = source_, row = rows_[at_]](OdbcConnection& connection, bool) {
        return ReadRowAgain(connection, source, row);
    });
    values_ = rows_[at_];
    begin(Editing::Changing);
}

void OdbcRecordset::set(const QString& field, const QVariant& value) {
    if (editing_ == Editing::No)
        refuse(ErrorNumber::NoEdit);
    const std::size_t number = columnOf(field);
    jet::Value held = ToEngineValue(value);
    try {
        jet::ConvertValue(this->column(number).type, held);
    } catch (const jet::Error& error) {
        throw FromEngine(error);
    }
    values_[number] = std::move(held);
    set_[number] = true;
}

// If it throws, the values set so far are kept for another try.
void OdbcRecordset::update() {
    if (editing_ == Editing::Adding)
        saveNew();
    else if (editing_ == Editing::Changing)
        saveChanged();
    else
        refuse(ErrorNumber::NoEdit);
    editing_ = Editing::No;
}

void OdbcRecordset::saveNew() {
    session_->run([source = source_, values = values_, set = set_](OdbcConnection& connection, bool again) {
        InsertRow(connection, source, values, set, again);
    });
    // A flag that was not set is false.
    for (std::size_t i = 0; i < values_.size(); ++i)
        if (column(i).type == jet::ColumnType::Boolean && jet::IsNull(values_[i]))
            values_[i] = false;
    rows_.push_back(values_);
    if (place_ != Place::Empty)
        return;
    at_ = 0;
    place_ = Place::On;
}

void OdbcRecordset::saveChanged() {
    if (std::find(set_.begin(), set_.end(), true) == set_.end())
        return;
    session_->run([source = source_, before = rows_[at_], values = values_,
                   set = set_](OdbcConnection& connection, bool again) {
        ChangeRow(connection, source, before, values, set, again);
    });
    rows_[at_] = values_;
}

void OdbcRecordset::remove() {
    checkUpdatable();
    checkCurrent();
    editing_ = Editing::No;
    session_->run([source = source_, row = rows_[at_]](OdbcConnection& connection, bool again) {
        DeleteRow(connection, source, row, again);
    });
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at_));
    place_ = Place::Removed;
}

} // namespace tolvex
