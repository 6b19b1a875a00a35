// Rows of a table on a server, or of what a statement selects: reading them, and the statements that add,
// change and remove one. Names stand in brackets, values are bound. Each owns all that it needs, so that it
// can run in the thread of a ServerSession. Everything throws DatabaseError.
#pragma once

#include "databases/odbc/OdbcCatalog.h"

#include <vector>

namespace tolvex {

using OdbcRow = std::vector<jet::Value>;

// Where rows are, and what tells them apart.
struct OdbcRowSource {
    QString table;
    QList<OdbcColumn> columns;
    std::vector<std::size_t> key; // positions of its columns; empty: rows cannot be told apart
};

struct OdbcRows {
    QList<OdbcColumn> columns;
    std::vector<OdbcRow> rows;
};

// All rows that a statement gives.
OdbcRows ReadRows(OdbcConnection& connection, const QString& statement);

// A row as it is now, by its key. Throws RecordDeleted.
OdbcRow ReadRowAgain(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& known);

// The following change a row. `again`: they were begun before on a connection that was lost, and may have
// been done.

// `values` with the columns in `set` given, the others left to the server.
void InsertRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& values,
               const std::vector<bool>& set, bool again);
// Nothing that others did is overwritten: throws RecordChanged when the row is not `before` any more.
void ChangeRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& before,
               const OdbcRow& values, const std::vector<bool>& set, bool again);
// Throws RecordDeleted.
void DeleteRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& row, bool again);

} // namespace tolvex
