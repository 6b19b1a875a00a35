// Named values in the Settings table of a database. The table is sparse: an item whose value is its default
// has no row.
#pragma once

#include <QVariant>

namespace tolvex {

class SuiteRecordset;

// Whether two values are the same to the store. Numbers and flags compare with each other (true is -1),
// texts with texts and dates with dates; a number never equals a text, even one of its digits.
bool SameStoredValue(const QVariant& first, const QVariant& second);

// The value of an item as it is stored, a text; `fallback` when it has no row. `recordset`: on a Settings
// table, in any mode; without one or without a name the result is an invalid variant. Names are cut to the
// size of their field. Nothing is raised or reported: an item that cannot be read gives the fallback.
QVariant GetDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& fallback);

// Stores the value of an item, or takes its row away when it is the same as `fallback`. Result: 0 or,
// reported with the item's name, the engine's error number. Without recordset or name, and on a recordset
// that cannot be written, nothing happens and the result is 0. `errorContext` goes in front of a report.
qint32 PutDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& value,
                          const QVariant& fallback, const QString& errorContext = {});

} // namespace tolvex
