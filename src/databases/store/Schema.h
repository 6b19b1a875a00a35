// Schemas as data: the structure of tables in the suite's databases. A schema is a list of tables, a table a
// list of fields and indexes; the checker adds what is missing and never changes what exists.
#pragma once

#include <QString>

#include <span>
#include <vector>

namespace tolvex {

class SuiteDatabase;

// The engine's numbers for the kinds of fields.
enum class FieldKind : int {
    Boolean = 1,
    Integer = 3, // 16-bit
    Long = 4,    // 32-bit
    Single = 6,
    Double = 7,
    DateTime = 8,
    Text = 10,
    Memo = 12
};

struct Field {
    const char* name;
    FieldKind kind;
    int size = 0; // characters of a Text; 0: the engine's default and maximum (255)
};

struct Index {
    const char* name;
    std::vector<const char*> fields; // in the order of the key
    bool unique = false;
    bool primary = false;
};

struct Table {
    const char* name;
    std::vector<Field> fields;  // at least one
    std::vector<Index> indexes; // the first is "Main"
};

// The table of private settings, which all schemas have.
const Table& SettingsTableSchema();

// Makes sure that a table has every declared field and index: missing ones are added after existing ones;
// whatever else the table holds stays. An index that cannot be added is reported and skipped. Result: 0 or,
// reported, the error number of the step that failed; earlier additions stay.
int CheckTable(SuiteDatabase& database, const Table& table);

// Adds the missing ones of these fields to an existing table. Result as CheckTable.
int CheckFields(SuiteDatabase& database, const QString& table, std::span<const Field> fields,
                bool allowZeroLength);

// Checks only the table of private settings.
int ValidateSettingsTable(SuiteDatabase& database);

using TableList = std::span<const Table* const>;

// Checks tables in order. Stops at the first failure and returns its error number; tables before it are up to
// date.
int CheckTables(SuiteDatabase& database, TableList tables);

// The same for a file or, with `connect`, a database on a server, which is opened and closed for it.
int ValidateDatabaseTables(const QString& databaseName, TableList tables, const QString& connect = {});

} // namespace tolvex
