// Named values in the Settings table of a database. The table is sparse: an item with its default value has
// no row.
#pragma once

#include <QVariant>

namespace tolvex {

class SuiteRecordset;

// Whether the store considers two values equal. Numbers and flags compare with each other (true is -1), texts
// with texts and dates with dates; a number never equals a text, not even of its digits.
bool SameStoredValue(const QVariant& first, const QVariant& second);

// The value of an item as stored, a text; `fallback` if it has no row. `recordset`: on a Settings table, in
// any mode; without one or without a name the result is an invalid variant. Names are cut to the size of
// their field. Nothing is thrown or reported: an item that cannot be read gives the fallback.
QVariant GetDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& fallback);

// Stores the value of an item, or removes its row if it equals `fallback`. Result: 0 or, reported with the
// item's name, the engine's error number. Without recordset or name, and on a read-only recordset, nothing
// happens and the result is 0. `errorContext` is put in front of a report.
qint32 PutDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& value,
                          const QVariant& fallback, const QString& errorContext = {});

} // namespace tolvex
