// Loading and saving the automation settings, and the database that a workstation has from the start.
#pragma once

#include "automation/AutomationSettings.h"

#include <QList>

#include <functional>

namespace tolvex {

class SuiteDatabase;
struct Settings;

// Reads all items of an open automation database into a record. `showDialogIfNew`, if given,
// is called for a database that was never configured, to have the user do so. Result: 0; -1 when the database
// is still not configured; or an error number: those of the table are reported, an item that holds a number
// too large ends the reading with 6 and leaves the members behind it unchanged.
qint32 LoadKOVASettings(SuiteDatabase& database, KOVADatabaseSettings& record, const QString& dataLocation,
                        const std::function<void()>& showDialogIfNew = {});

// The first item that ends such a reading; empty: none does.
QString ItemOutOfRange(SuiteDatabase& database, const QString& dataLocation);

// Writes a record, all items or, when one cannot be written, none. Result: 0 or, reported, the
// error number.
qint16 SaveKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                        const QString& dataLocation);

// An item that another workstation has changed, in the words of the window.
struct AutomationChange {
    QString item;
    QString before;
    QString now;
};
using MayOverwrite = std::function<bool(const QList<AutomationChange>& changes)>;

constexpr qint32 NotStored = -1; // the user did not want to overwrite what another workstation stored

// Writes a record as SaveKOVASettings does and marks the database as configured, both as one transaction.
// `loaded`: the record as it was read; what others have stored since is told to `mayOverwrite` first, outside
// of the transaction, and becomes `loaded`; so does what was written in the end. Result: 0, NotStored, or,
// reported, the error number.
qint32 StoreKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                         KOVADatabaseSettings& loaded, const QString& dataLocation,
                         const MayOverwrite& mayOverwrite);

// Makes the automation database KOVA26.MDB of the data location, unless the workstation names a default one,
// even a missing one, or the folder for them holds one of the kind, which is left alone. The file appears
// whole, marked as configured, or not at all. `setAsDefault` names it in the local ini file then. Result: -1
// (true) when it made a database, else 0.
qint32 CreateDefaultKOVADatabase(Settings& settings, bool setAsDefault);

} // namespace tolvex
