// Schemas as data: what tables of the suite's databases are made of. A schema is a list of tables, a table a
// list of fields and indexes; the checker adds what is absent and never changes what is there.
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
    int size = 0; // characters of a Text; 0: the engine's own default, the most it can hold (255)
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

// Makes sure that a table has every declared field and index: missing ones are added, behind those that are
// there; whatever else the table holds stays. An index that cannot be added is reported and passed over.
// Result: 0 or, reported, the error number of the step that failed; what was added before it stays.
int CheckTable(SuiteDatabase& database, const Table& table);

// Adds the missing ones of these fields to a table that is there. Result as CheckTable.
int CheckFields(SuiteDatabase& database, const QString& table, std::span<const Field> fields,
                bool allowZeroLength);

// The check of the table of private settings alone.
int ValidateSettingsTable(SuiteDatabase& database);

using TableList = std::span<const Table* const>;

// Checks tables in their order. Stops at the first failure and gives its error number; tables before it are
// up to date.
int CheckTables(SuiteDatabase& database, TableList tables);

// The same for a database that is opened for it, a file or with `connect` one on a server, and closed again.
int ValidateDatabaseTables(const QString& databaseName, TableList tables, const QString& connect = {});

} // namespace tolvex
