// Rows of a table on a server, or of a query's result: reads them, and makes the statements that add, change
// and remove one. Names are in brackets, values are bound. Each object owns everything it needs, so that it
// can run in the thread of a ServerSession. Everything throws DatabaseError.
#pragma once

#include "databases/odbc/OdbcCatalog.h"

#include <vector>

namespace tolvex {

using OdbcRow = std::vector<jet::Value>;

// Where rows are, and what identifies them.
struct OdbcRowSource {
    QString table;
    QList<OdbcColumn> columns;
    std::vector<std::size_t> key; // positions of its columns; empty: rows cannot be identified
};

struct OdbcRows {
    QList<OdbcColumn> columns;
    std::vector<OdbcRow> rows;
};

// All rows that a statement returns.
OdbcRows ReadRows(OdbcConnection& connection, const QString& statement);

// A row as it is now, by its key. Throws RecordDeleted.
OdbcRow ReadRowAgain(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& known);

// These change a row. `again`: they were begun before on a
// connection that was lost, and may already be done.

// `values` has the columns in `set`; the server fills the others.
void InsertRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& values,
               const std::vector<bool>& set, bool again);
// Never overwrites changes of others: throws RecordChanged if the row no longer equals `before`.
void ChangeRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& before,
               const OdbcRow& values, const std::vector<bool>& set, bool again);
// Throws RecordDeleted.
void DeleteRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& row, bool again);

} // namespace tolvex
