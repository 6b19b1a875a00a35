// One automation database while its settings are being edited: opened and loaded, then stored as one
// transaction. The window and the shell use it alike.
#pragma once

#include "automation/AutomationFields.h"
#include "automation/AutomationStore.h"
#include "platform/files/FileCache.h"

#include <QDateTime>

#include <memory>

namespace tolvex {

struct UsersState;

// Who stored settings of an automation database last, by the history of the users database.
struct AutomationSave {
    QDateTime time;
    QString login;
    QString computer;
};
std::optional<AutomationSave> LastAutomationSave(UsersState& users);

class AutomationEditing {
public:
    // They outlive it. `record` gets what is loaded.
    AutomationEditing(KOVADatabaseSettings& record, const Settings& settings, UsersState& users);
    ~AutomationEditing();
    AutomationEditing(const AutomationEditing&) = delete;
    AutomationEditing& operator=(const AutomationEditing&) = delete;

    // Opens a database, a file by its full name or with `connect` one on a server, and loads its record. What
    // was open is closed before. False when it is not there or, reported, cannot be opened.
    bool open(const QString& databaseName, const QString& connect = {});
    bool isOpen() const { return database_ != nullptr; }
    void close();

    // Stores the record, marks the database as configured and enters that in the history. What others have
    // stored meanwhile is shown to the user, who decides. False when nothing was stored: the user did not
    // want to, or, reported, it failed, also because the file is no longer the one that was opened.
    bool store();

private:
    bool isStillThere() const;
    bool mayOverwrite(const QList<AutomationChange>& changes);

    KOVADatabaseSettings& record_;
    const Settings& settings_;
    UsersState& users_;
    std::unique_ptr<SuiteDatabase> database_;
    KOVADatabaseSettings loaded_;
    std::optional<platform::FileStamp> file_; // of a file, as it was opened
};

} // namespace tolvex
