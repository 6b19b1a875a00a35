// Edits the settings of one automation database: opens and loads it, and stores all of it as one transaction.
// The window and the shell both use it.
#pragma once

#include "automation/AutomationFields.h"
#include "automation/AutomationStore.h"
#include "databases/store/SuiteDatabase.h"
#include "platform/files/FileCache.h"

#include <QDateTime>
#include <QSet>

#include <memory>

namespace tolvex {

struct UsersState;

// An entry of the users' history: somebody stored settings of an automation database. The history does not
// say of which one.
struct AutomationSave {
    QDateTime time; // unique in the history
    QString login;
    QString computer;
};
// All of them, newest first; none without a users database. Cost: one pass over the history.
QList<AutomationSave> AutomationSaves(UsersState& users);

class AutomationEditing {
public:
    // All three outlive the object. open() loads into `record`.
    AutomationEditing(KOVADatabaseSettings& record, const Settings& settings, UsersState& users);
    ~AutomationEditing();
    AutomationEditing(const AutomationEditing&) = delete;
    AutomationEditing& operator=(const AutomationEditing&) = delete;

    // Closes what was open, opens a database (a file by its full name, or with `connect` one on a server) and
    // loads its record. False when the database is not there, or, reported, when it cannot be opened or read.
    bool open(const QString& databaseName, const QString& connect = {});
    bool isOpen() const { return database_ != nullptr; }
    // Empty: it can be changed. Otherwise why not.
    QString readOnlyReason() const { return database_ ? database_->readOnlyReason() : QString(); }
    void close();

    // Stores the record, marks the database as configured and enters that in the history. If others have
    // stored something else since the record was loaded, the user sees what, who and when, and decides. False
    // when nothing was stored: the user said No, or, reported, it failed. It also fails when the file is no
    // longer the one that was opened.
    bool store();

private:
    bool isStillThere() const;
    QString whoStored();
    bool mayOverwrite(const QList<AutomationChange>& changes);

    KOVADatabaseSettings& record_;
    const Settings& settings_;
    UsersState& users_;
    std::unique_ptr<SuiteDatabase> database_;
    KOVADatabaseSettings loaded_;
    std::optional<platform::FileStamp> file_; // none on a server; as it was when it was opened
    QSet<QDateTime> knownSaves_; // in the history: before the record was loaded, told, or our own
};

} // namespace tolvex
