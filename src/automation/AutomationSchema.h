// The tables of an automation database: the running log, the song and jingle libraries, the schedule of the
// hours. The player programs of the suite rely on every field.
#pragma once

#include "databases/Schema.h"

namespace tolvex {

const Table& KOVALogSchema();
const Table& KOVASongsSchema();
const Table& KOVAJinglesSchema();
const Table& KOVAScheduleSchema();

// Brings all tables of an automation database up to date. Result: 0 or, reported, the error number of the
// first failure.
qint16 ValidateKOVADatabaseTables(const QString& databaseName);

} // namespace tolvex
