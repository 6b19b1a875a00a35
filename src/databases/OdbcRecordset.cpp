#include "databases/OdbcRecordset.h"

#include "databases/JetDatabase.h"
#include "jet/Convert.h"
#include "jet/Criterion.h"

#include <algorithm>

namespace tolvex {

namespace {

using jet::ErrorNumber;

[[noreturn]] void refuse(ErrorNumber number, const QString& detail = {}) {
    throw FromEngine(jet::Error(number, detail.toStdString()));
}

// A row in memory as a criterion sees it.
class MemoryRow final : public jet::RowValues {
public:
    explicit MemoryRow(const std::vector<jet::Value>& row)
        : row_(row) {}
    const jet::Value& value(int column) override { return row_[static_cast<std::size_t>(column)]; }

private:
    const std::vector<jet::Value>& row_;
};

} // namespace

OdbcRecordset::OdbcRecordset(OdbcConnection& connection, const OdbcTable& table)
    : connection_(connection)
    , name_(table.name) {
    load(QStringLiteral("SELECT * FROM ") + BracketedTable(name_));
    for (const QString& field : table.key())
        key_.push_back(columnOf(field));
}

OdbcRecordset::OdbcRecordset(OdbcConnection& connection, const QString& statement)
    : connection_(connection)
    , name_(statement) {
    load(statement);
}

// ---- Reading

void OdbcRecordset::load(const QString& text) {
    OdbcStatement statement(connection_);
    statement.execute(text);
    columns_ = statement.columns();
    while (statement.fetch())
        rows_.push_back(readRow(statement));
    place_ = rows_.empty() ? Place::Empty : Place::On;
}

OdbcRecordset::Row OdbcRecordset::readRow(OdbcStatement& statement) const {
    Row row;
    for (qsizetype i = 0; i < columns_.size(); ++i)
        row.push_back(statement.value(static_cast<int>(i) + 1, columns_[i].type));
    return row;
}

// A row as it is now, by its key. Throws RecordDeleted. `hint`: stands behind the table's name.
OdbcRecordset::Row OdbcRecordset::readAgain(const Row& known, const char* hint) {
    QStringList fields;
    for (const OdbcColumn& column : columns_)
        fields += column.name;
    OdbcStatement statement(connection_);
    statement.prepare(
        QStringLiteral("SELECT %1 FROM %2%3 WHERE %4")
            .arg(BracketedList(fields), BracketedTable(name_), QLatin1String(hint), keyCriterion(known)));
    bindKey(statement, known);
    statement.execute();
    if (!statement.fetch())
        refuse(ErrorNumber::RecordDeleted);
    return readRow(statement);
}

std::size_t OdbcRecordset::columnOf(const QString& field) const {
    for (qsizetype i = 0; i < columns_.size(); ++i)
        if (columns_[i].name.compare(field, Qt::CaseInsensitive) == 0)
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
        for (const OdbcColumn& column : columns_) {
            definition.columns.emplace_back().name = column.name.toStdU16String();
            definition.columns.back().type = column.type;
        }
        const jet::Criterion wanted(definition, name_.toStdU16String(),
                                    jet::sql::ParseCriterion(criterion.toStdU16String()));
        const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) {
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
        refuse(ErrorNumber::CannotUpdateReadOnly, name_);
}

void OdbcRecordset::begin(Editing editing) {
    editing_ = editing;
    set_.assign(static_cast<std::size_t>(columns_.size()), false);
}

void OdbcRecordset::addNew() {
    checkUpdatable();
    values_.assign(static_cast<std::size_t>(columns_.size()), jet::Value());
    begin(Editing::Adding);
}

void OdbcRecordset::edit() {
    editing_ = Editing::No;
    checkUpdatable();
    checkCurrent();
    rows_[at_] = readAgain(rows_[at_], "");
    values_ = rows_[at_];
    begin(Editing::Changing);
}

void OdbcRecordset::set(const QString& field, const QVariant& value) {
    if (editing_ == Editing::No)
        refuse(ErrorNumber::NoEdit);
    const std::size_t column = columnOf(field);
    jet::Value held = ToEngineValue(value);
    try {
        jet::ConvertValue(columns_[column].type, held);
    } catch (const jet::Error& error) {
        throw FromEngine(error);
    }
    values_[column] = std::move(held);
    set_[column] = true;
}

// The names stand in brackets, the values are bound.
QString OdbcRecordset::keyCriterion(const Row& row) const {
    QStringList terms;
    for (const std::size_t column : key_)
        terms += BracketedName(columns_[column].name) +
                 (jet::IsNull(row[column]) ? QStringLiteral(" IS NULL") : QStringLiteral(" = ?"));
    return terms.join(QStringLiteral(" AND "));
}

void OdbcRecordset::bindKey(OdbcStatement& statement, const Row& row) const {
    for (const std::size_t column : key_)
        if (!jet::IsNull(row[column]))
            statement.bind(row[column], columns_[column].type);
}

QStringList OdbcRecordset::changedFields() const {
    QStringList fields;
    for (std::size_t i = 0; i < set_.size(); ++i)
        if (set_[i])
            fields += columns_[i].name;
    return fields;
}

void OdbcRecordset::bindChanges(OdbcStatement& statement) const {
    for (std::size_t i = 0; i < set_.size(); ++i)
        if (set_[i])
            statement.bind(values_[i], columns_[i].type);
}

// When it throws, the values set so far are kept for another try.
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
    const QStringList fields = changedFields();
    OdbcStatement statement(connection_);
    if (fields.isEmpty()) {
        statement.execute(QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(BracketedTable(name_)));
    } else {
        const QString marks = QStringList(fields.size(), QStringLiteral("?")).join(QStringLiteral(", "));
        statement.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                              .arg(BracketedTable(name_), BracketedList(fields), marks));
        bindChanges(statement);
        statement.execute();
    }
    // A flag that was not set is false.
    for (std::size_t i = 0; i < values_.size(); ++i)
        if (columns_[i].type == jet::ColumnType::Boolean && jet::IsNull(values_[i]))
            values_[i] = false;
    rows_.push_back(values_);
    if (place_ != Place::Empty)
        return;
    at_ = 0;
    place_ = Place::On;
}

void OdbcRecordset::saveChanged() {
    const QStringList fields = changedFields();
    if (fields.isEmpty())
        return;
    // The row is held against others from the look at it to the change.
    OdbcTransaction transaction(connection_);
    if (readAgain(rows_[at_], " WITH (UPDLOCK)") != rows_[at_])
        refuse(ErrorNumber::RecordChanged);
    OdbcStatement statement(connection_);
    QStringList assignments;
    for (const QString& field : fields)
        assignments += BracketedName(field) + QStringLiteral(" = ?");
    statement.prepare(
        QStringLiteral("UPDATE %1 SET %2 WHERE %3")
            .arg(BracketedTable(name_), assignments.join(QStringLiteral(", ")), keyCriterion(rows_[at_])));
    bindChanges(statement);
    bindKey(statement, rows_[at_]);
    statement.execute();
    transaction.commit();
    rows_[at_] = values_;
}

void OdbcRecordset::remove() {
    checkUpdatable();
    checkCurrent();
    editing_ = Editing::No;
    OdbcStatement statement(connection_);
    statement.prepare(
        QStringLiteral("DELETE FROM %1 WHERE %2").arg(BracketedTable(name_), keyCriterion(rows_[at_])));
    bindKey(statement, rows_[at_]);
    if (statement.execute() == 0)
        refuse(ErrorNumber::RecordDeleted);
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at_));
    place_ = Place::Removed;
}

} // namespace tolvex
