// The server's answer: rows, errors, the ends of statements.
#pragma once

#include "databases/server/Server.h"
#include "databases/tds/Values.h"

#include <vector>

namespace testserver::tds {

enum class End : int { Statement = 0xFD, Procedure = 0xFE, InProcedure = 0xFF };
enum EndFlag : int { More = 1, Failed = 2, Counted = 0x10, Cancelled = 0x20 };
void WriteEnd(Writer& to, End what, int flags, std::uint64_t rows = 0);

void WriteError(Writer& to, const Fault& fault);

enum class Change : int { Database = 1, Collation = 7, Begun = 8, Committed = 9, RolledBack = 10 };
// A change of the connection. `now` and `before` with their lengths before them.
void WriteChange(Writer& to, Change what, std::string_view now, std::string_view before);
void WriteLoginDone(Writer& to);

// The end of a procedure: its status, and its returned number if there is one.
void WriteProcedureEnd(Writer& to, int flags, int givenBack = 0);

// Columns of an answer: their names and types.
using Columns = std::vector<std::pair<std::string, Type>>;
Columns ColumnsOf(sqlite3_stmt* rows);
// Those of the catalogue's procedures. Session returns the same in the same order, except the last ones.
const Columns& ColumnsOfTables();
const Columns& ColumnsOfIndexes();
// Writes all rows; returns their number.
std::uint64_t WriteRows(Writer& to, const Columns& columns, Session& session, const Rows& rows);

} // namespace testserver::tds
