// The tables of an automation database: the running log, the song and jingle libraries, the schedule of the
// hours. The player programs of the suite rely on every field.
#pragma once

#include "databases/store/Schema.h"

namespace tolvex {

const Table& KOVALogSchema();
const Table& KOVASongsSchema();
const Table& KOVAJinglesSchema();
const Table& KOVAScheduleSchema();

// All tables but that of the description, in the order in which they are checked.
TableList KOVADatabaseTables();

// Brings all tables of an automation database (a file, or with `connect` one on a server) up to date. Result:
// 0 or, reported, the error number of the first failure.
qint16 ValidateKOVADatabaseTables(const QString& databaseName, const QString& connect = {});

// True when all tables, that of the description too, have all their indexes. (The routine above passes over
// an index that it cannot add.)
bool HasKOVADatabaseIndexes(SuiteDatabase& database);

} // namespace tolvex
