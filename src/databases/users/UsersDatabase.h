// The users database: the suite's accounts, groups, preferences and history. Opened once, kept open for the
// whole run and shared by all workstations of the station.
#pragma once

#include "core/settings/Settings.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"

#include <memory>

namespace tolvex {

// What is known of it while the program runs.
struct UsersState {
    explicit UsersState(const Settings& workstation)
        : settings(workstation) {}
    ~UsersState() { closeTables(); }
    UsersState(const UsersState&) = delete;
    UsersState& operator=(const UsersState&) = delete;

    const Settings& settings; // they outlive it

    std::unique_ptr<SuiteDatabase> database; // null: none is open
    std::unique_ptr<SuiteRecordset> users;   // the Users table in the order of its index
    DatabaseInformation information;
    bool InhibitUserHistory = false;
    QString currentLogin;
    // Its private settings.
    qint32 AllowEmptyPasswords = 1;
    qint32 MustLoginToQuit = 1;
    qint32 PasswordExpiryDays = 0;
    qint32 UserHistoryPurgeDays = 30; // 0 or less keeps the history for ever
    qint32 FirstRun = 0;
    double LastAccountProcess = 36526; // serial date of the last daily processing

    // Recordsets go before their database.
    void closeTables();
};

// Its file in the data location, as a full path.
QString UsersDatabaseFile(const Settings& settings);

// Makes or upgrades the file, opens it for the run, offers once to import the accounts of an older users
// file, and does the daily processing of accounts when it is due. Result: 0; -1 when the file could not be
// made or opened; else an error number.
qint16 OpenUsersDatabase(UsersState& state, const QString& fileName);
// Opens the station's users database for its history alone, as a shell does: nothing is made, upgraded,
// imported or processed. False when there is none, or it cannot be opened; that is not reported.
bool OpenUserHistory(UsersState& state);
void CloseUsersDatabase(UsersState& state);

// Enters an event at the next second that has none. A failure is never reported, since what is being logged
// goes on. Result: the time under which it was entered, none when it was not. Cost: one commit.
std::optional<QDateTime> AddEventToUserHistory(UsersState& state, const QString& loginName, qint32 action,
                                               qint32 status, const QString& notes);

// Actions and outcomes in the history.
enum UserHistoryAction : qint32 { AccountDisabled = 21, AccountDeleted = 22, AutomationSettingsSaved = 129 };
enum UserHistoryStatus : qint32 { EventSucceeded = 1, EventFailed = 2 };

// Removes old history, disables accounts that have expired and deletes those that are due. `by`: the login
// that the history names. Result: 0 or the last error number.
qint16 ProcessUserAccounts(UsersState& state, const QString& by);

// Deletes an account with its preferences and its folder beside the database. True when it is gone, or never
// was; a failure is reported.
bool DeleteUser(UsersState& state, const QString& loginName);

} // namespace tolvex
