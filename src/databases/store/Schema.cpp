#include "databases/store/Schema.h"

#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"

namespace tolvex {

namespace {

// The changes to one table become visible together, and none is lost if a later one fails.
class TableChange {
public:
    explicit TableChange(SuiteDatabase& database)
        : database_(database) {}
    ~TableChange() {
        try {
            if (begun_)
                database_.rollback();
        } catch (const DatabaseError&) {
            // The earlier failure was reported.
        }
    }
    TableChange(const TableChange&) = delete;
    TableChange& operator=(const TableChange&) = delete;

    // Called before the first change only, so that a complete table is not written to.
    void begin() {
        if (!begun_)
            database_.begin();
        begun_ = true;
    }
    void commit() {
        if (begun_)
            database_.commit();
        begun_ = false;
    }

private:
    SuiteDatabase& database_;
    bool begun_ = false;
};

bool has(const QStringList& names, const char* name) {
    return names.contains(QLatin1String(name), Qt::CaseInsensitive);
}

int addFields(SuiteDatabase& database, TableChange& change, const QString& table, SuiteDatabase::Shape& shape,
              std::span<const Field> fields, bool allowZeroLength) {
    for (const Field& field : fields) {
        if (has(shape.fields, field.name))
            continue;
        try {
            change.begin();
            database.appendField(table, field, allowZeroLength);
            shape.fields += QLatin1String(field.name);
        } catch (const DatabaseError& error) {
            if (error.number == FieldExistsError)
                continue; // another workstation was faster
            return Report(QStringLiteral("adding the %1 field").arg(QLatin1String(field.name)), error);
        }
    }
    return 0;
}

void addIndexes(SuiteDatabase& database, TableChange& change, const Table& table,
                const SuiteDatabase::Shape& shape) {
    for (const Index& index : table.indexes) {
        if (shape.has(index))
            continue;
        try {
            change.begin();
            database.appendIndex(QLatin1String(table.name), index);
        } catch (const DatabaseError& error) {
            if (error.number == IndexExistsError)
                continue;
            Report(QStringLiteral("adding the index '%1' to the %2 table")
                       .arg(QLatin1String(index.name), QLatin1String(table.name)),
                   error);
        }
    }
}

// A table with only its first field, or the one that another workstation has made meanwhile.
SuiteDatabase::Shape createOrFind(SuiteDatabase& database, const QString& name, const Field& first) {
    try {
        database.createTable(name, first, true);
        return {{QLatin1String(first.name)}, {}};
    } catch (const DatabaseError& error) {
        auto shape = error.number == TableExistsError ? database.table(name) : std::nullopt;
        if (!shape)
            throw;
        return *std::move(shape);
    }
}

int checkTable(SuiteDatabase& database, TableChange& change, const Table& table) {
    const QString name = QLatin1String(table.name);
    const Field& first = table.fields.front();
    std::optional<SuiteDatabase::Shape> shape;
    try {
        shape = database.table(name);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("checking the %1 field").arg(QLatin1String(first.name)), error);
    }
    if (!shape) {
        try {
            change.begin();
            shape = createOrFind(database, name, first);
        } catch (const DatabaseError& error) {
            return Report(QStringLiteral("creating the %1 Table").arg(name), error);
        }
    }
    if (const int error = addFields(database, change, name, *shape, table.fields, true))
        return error;
    addIndexes(database, change, table, *shape);
    return 0;
}

} // namespace

const Table& SettingsTableSchema() {
    static const Table table{
        "Settings", {{"Item", FieldKind::Text, 250}, {"Value", FieldKind::Memo}}, {{"Main", {"Item"}, true}}};
    return table;
}

int CheckTable(SuiteDatabase& database, const Table& table) {
    const HeldReports reports;
    TableChange change(database);
    const int result = checkTable(database, change, table);
    try {
        change.commit();
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("creating the %1 Table").arg(QLatin1String(table.name)), error);
    }
    return result;
}

int CheckFields(SuiteDatabase& database, const QString& table, std::span<const Field> fields,
                bool allowZeroLength) {
    const HeldReports reports;
    TableChange change(database);
    try {
        auto shape = database.table(table);
        if (!shape)
            throw DatabaseError{ItemNotFoundError, QStringLiteral("Item not found in this collection.")};
        const int result = addFields(database, change, table, *shape, fields, allowZeroLength);
        change.commit();
        return result;
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("checking the %1 field").arg(QLatin1String(fields.front().name)), error);
    }
}

int ValidateSettingsTable(SuiteDatabase& database) {
    return CheckTable(database, SettingsTableSchema());
}

int CheckTables(SuiteDatabase& database, TableList tables) {
    for (const Table* table : tables)
        if (const int error = CheckTable(database, *table))
            return error;
    return 0;
}

int ValidateDatabaseTables(const QString& databaseName, TableList tables, const QString& connect) {
    std::unique_ptr<SuiteDatabase> database;
    try {
        database = OpenSuiteDatabase(databaseName, connect);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the database"), error);
    }
    if (const int error = CheckTables(*database, tables))
        return error;
    try {
        database->close();
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the database"), error);
    }
    return 0;
}

} // namespace tolvex
