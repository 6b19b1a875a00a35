// Loads and saves the automation settings, and makes the database that a workstation begins with.
#pragma once

#include "automation/AutomationSettings.h"

#include <QList>

#include <functional>

namespace tolvex {

class SuiteDatabase;
struct Settings;

// Reads all items of an open automation database into a record. `showDialogIfNew`, if given, is called for a
// database that was never configured, so that the user can do so. Result: 0; -1 when the database is still
// not configured; or an error number. Errors of the table are reported. A number that is too large for its
// item ends the reading with 6, which is not reported; the members after it keep their values.
qint32 LoadKOVASettings(SuiteDatabase& database, KOVADatabaseSettings& record, const QString& dataLocation,
                        const std::function<void()>& showDialogIfNew = {});

// The first item whose number is too large for it; empty when there is none.
QString ItemOutOfRange(SuiteDatabase& database, const QString& dataLocation);

// Writes a record: all items, or none if one cannot be written. Result: 0 or, reported, the error number.
qint16 SaveKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                        const QString& dataLocation);

// An item that another workstation has changed, with its values in the words of the window.
struct AutomationChange {
    QString item;
    QString before;
    QString now;
};
using MayOverwrite = std::function<bool(const QList<AutomationChange>& changes)>;

constexpr qint32 NotStored = -1; // the user did not want to overwrite what another workstation stored

// Writes a record as SaveKOVASettings does and marks the database as configured, both in one transaction.
// `loaded` is the record as it was read. If others have changed the table since, `mayOverwrite` is asked
// first, outside of the transaction. `loaded` follows what the table holds. Result: 0, NotStored, or,
// reported, the error number.
qint32 StoreKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                         KOVADatabaseSettings& loaded, const QString& dataLocation,
                         const MayOverwrite& mayOverwrite);

// Makes the automation database KOVA26.MDB of the data location, unless the workstation already names one
// (even a missing one) or the folder has one. The file appears whole and marked as configured, or not at all.
// With `setAsDefault` the local ini file then names it. Result: -1 (true) when it made a database, else 0.
qint32 CreateDefaultKOVADatabase(Settings& settings, bool setAsDefault);

} // namespace tolvex
