#include "databases/users/UsersDatabase.h"

#include "core/report/DebugLog.h"
#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "core/system/Registry.h"
#include "core/text/Numbers.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "databases/store/Report.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/suite/ValidateDatabase.h"
#include "databases/users/UserImport.h"
#include "databases/users/UsersSchema.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QDir>

#include <cmath>

namespace tolvex {

namespace {

constexpr int LogLevel = 5;
constexpr float CurrentVersion = 2.51F;
const QString MainIndex = QStringLiteral("Main");
const QString SettingsTable = QStringLiteral("Settings");
const QString LastProcess = QStringLiteral("LastAccountProcess");

double today() {
    return std::floor(SerialDate(platform::clock().now()));
}

std::unique_ptr<SuiteRecordset> openTable(SuiteDatabase& database, const QString& table) {
    auto rows = database.open(table, RecordsetMode::Table);
    rows->setIndex(MainIndex);
    return rows;
}

// The private settings that are read before the first run is dealt with.
constexpr struct {
    const char* item;
    qint32 UsersState::*member;
    qint32 fallback;
} items[] = {
    {"AllowEmptyPasswords", &UsersState::AllowEmptyPasswords, 1},
    {"MustLoginToQuit", &UsersState::MustLoginToQuit, 1},
    {"PasswordExpiryDays", &UsersState::PasswordExpiryDays, 0},
    {"UserHistoryPurgeDays", &UsersState::UserHistoryPurgeDays, 30},
    {"FirstRun", &UsersState::FirstRun, 0},
};

void readItems(SuiteRecordset& rows, UsersState& state) {
    for (const auto& item : items)
        state.*item.member = ToLong(
            LeadingNumber(GetDatabaseSetting(&rows, QLatin1String(item.item), item.fallback).toString()));
}

void doFirstRun(SuiteRecordset& rows, UsersState& state) {
    if (FileLength(OlderUsersFile(state.settings)) > 0)
        MakeDefaultGroupsAndImport(state, false);
    state.FirstRun = 1;
    PutDatabaseSetting(&rows, QStringLiteral("FirstRun"), 1, 0);
}

void stampVersion(SuiteDatabase& database) {
    DatabaseTransaction transaction(database); // other workstations may start at the same time
    auto row = database.open(QStringLiteral("Description"), RecordsetMode::Table);
    if (row->eof())
        row->addNew();
    else
        row->edit();
    row->set(QStringLiteral("Version"), CurrentVersion);
    row->update();
    transaction.commit();
}

// Opens and reads; the daily processing comes after it.
void openForTheRun(const QString& fileName, UsersState& state) {
    state.database = OpenSuiteDatabase(WithDatabaseExtension(fileName));
    state.users = openTable(*state.database, QStringLiteral("Users"));
    const auto rows = openTable(*state.database, SettingsTable);
    readItems(*rows, state);
    if (state.FirstRun == 0)
        doFirstRun(*rows, state);
    state.LastAccountProcess = LeadingNumber(GetDatabaseSetting(rows.get(), LastProcess, 36526).toString());
    if (state.information.Version < CurrentVersion) {
        stampVersion(*state.database);
        state.information.Version = CurrentVersion;
    }
}

// Adds the event at the first free second from `time` on. Result: that second.
QDateTime addEvent(SuiteRecordset& history, QDateTime time, const QString& loginName, qint32 action,
                   qint32 status, const QString& notes) {
    const QString eventTime = QStringLiteral("EventTime");
    for (history.seek(time); !history.noMatch(); history.seek(time))
        time = time.addSecs(1);
    history.addNew();
    history.set(QStringLiteral("LoginName"), loginName);
    history.set(QStringLiteral("ComputerName"), platform::ComputerName());
    history.set(QStringLiteral("Action"), action);
    history.set(QStringLiteral("Status"), status);
    history.set(QStringLiteral("Notes"), notes);
    for (;; time = time.addSecs(1)) {
        history.set(eventTime, time);
        try {
            history.update();
            return time;
        } catch (const DatabaseError& error) {
            // Another workstation was quicker.
            if (error.number != DuplicateKeyError)
                throw;
        }
    }
}

int purgeHistory(UsersState& state) {
    if (state.UserHistoryPurgeDays <= 0)
        return 0;
    try {
        state.database->execute(QStringLiteral("DELETE * FROM [UserHistory] WHERE [EventTime] <=%1")
                                    .arg(today() - (state.UserHistoryPurgeDays - 1), 0, 'f', 0));
        state.database->refresh();
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("removing old entries from the User History"), error);
    }
    return 0;
}

// As KeepSilent; what others change meanwhile is no failure.
int keepFailure(const DatabaseError& error) {
    return IsOthersChange(error.number) ? error.number : KeepSilent(error);
}

// Disables the account of the current row.
int disableAccount(SuiteRecordset& accounts) {
    try {
        accounts.edit();
        accounts.set(QStringLiteral("AccountStatus"), 0);
        accounts.set(QStringLiteral("ExpirationDate"), QVariant());
        accounts.update();
    } catch (const DatabaseError& error) {
        return keepFailure(error);
    }
    return 0;
}

bool isDue(const QVariant& date) {
    return date.isValid() && SerialDate(date.toDateTime()) <= today();
}

// Deletes or disables the account of the current row. Result: 0 or the error number.
int processAccount(UsersState& state, SuiteRecordset& accounts, const QString& by) {
    const QString login = accounts.value(QStringLiteral("LoginName")).toString();
    if (isDue(accounts.value(QStringLiteral("DeletionDate")))) {
        AddEventToUserHistory(state, by, AccountDeleted,
                              DeleteUser(state, login) ? EventSucceeded : EventFailed, login);
        return 0;
    }
    const int error = disableAccount(accounts);
    if (!IsOthersChange(error))
        AddEventToUserHistory(state, by, AccountDisabled, error == 0 ? EventSucceeded : EventFailed, login);
    return error;
}

// Result: the last error number. Accounts that another workstation deals with at the same time are passed
// over.
int processAccounts(UsersState& state, const QString& by) {
    const auto accounts = state.database->open(
        QStringLiteral("SELECT * FROM [users] WHERE ([ExpirationDate]<=%1 OR [DeletionDate]<=%1)")
            .arg(today(), 0, 'f', 0),
        RecordsetMode::Dynaset);
    int result = 0;
    for (; !accounts->eof(); accounts->moveNext()) {
        int error = 0;
        try {
            error = processAccount(state, *accounts, by);
        } catch (const DatabaseError& thrown) {
            error = keepFailure(thrown);
        }
        if (error != 0 && !IsOthersChange(error))
            result = error;
    }
    return result;
}

// A login is the name of a folder only when it cannot lead elsewhere.
bool namesAFolder(const QString& login) {
    return !login.trimmed().isEmpty() && !login.contains(u'\\') && !login.contains(u'/') &&
           !login.contains(u':') && login.trimmed() != QStringLiteral(".") &&
           login.trimmed() != QStringLiteral("..");
}

void removeFolderOf(const UsersState& state, const QString& login) {
    const QString folder = state.information.Path + u'\\' + login;
    if (namesAFolder(login) && platform::FolderExists(folder))
        QDir(platform::HostPath(folder)).removeRecursively();
}

void deletePreferences(SuiteDatabase& database, const QString& login) {
    const auto rows = database.open(QStringLiteral("SELECT * FROM [UserPreferences] WHERE [LoginName]=") +
                                        QuotedText(login),
                                    RecordsetMode::Dynaset);
    for (; !rows->eof(); rows->moveNext())
        rows->remove();
}

void readHistorySwitch(UsersState& state) {
    state.InhibitUserHistory =
        ReadRegistryLong(LocalMachineHive, TolvexKey, QStringLiteral("InhibitUserHistory"), 0) != 0;
}

} // namespace

void UsersState::closeTables() {
    users.reset();
    database.reset();
}

QString UsersDatabaseFile(const Settings& settings) {
    return settings.DataLocation + QStringLiteral("\\USERS\\USERS25.MDB");
}

qint16 OpenUsersDatabase(UsersState& state, const QString& fileName) {
    QString title = QStringLiteral("Users Database");
    const auto tables = [](SuiteDatabase& database) { return CheckTables(database, UsersDatabaseTables()); };
    if (ValidateDatabase(fileName, UsersDatabaseType, true, &title, {}, tables) != 0)
        return -1;
    if (state.database)
        CloseUsersDatabase(state);
    if (const qint16 error = GetDatabaseInformation(fileName, &state.information, true))
        return error;
    if (const qint16 error = ValidateUsersDatabaseTables(state.information.FullName))
        return error;
    try {
        openForTheRun(state.information.FullName, state);
    } catch (const DatabaseError& error) {
        state.closeTables();
        return static_cast<qint16>(Report(QStringLiteral("opening the database"), error));
    }
    if (today() > state.LastAccountProcess)
        ProcessUserAccounts(state, QStringLiteral("SYSTEM"));
    readHistorySwitch(state);
    try {
        state.database->refresh();
    } catch (const DatabaseError& error) {
        KeepSilent(error); // it is open
    }
    return 0;
}

bool OpenUserHistory(UsersState& state) {
    const QString file = UsersDatabaseFile(state.settings);
    if (FileLength(file) <= 0)
        return false;
    CloseUsersDatabase(state);
    try {
        state.database = OpenSuiteDatabase(file);
    } catch (const DatabaseError& error) {
        KeepSilent(error, file);
        return false;
    }
    readHistorySwitch(state);
    return true;
}

void CloseUsersDatabase(UsersState& state) {
    state.closeTables();
    state.information.FullName.clear();
    state.information.FileName.clear();
    state.information.Path.clear();
}

std::optional<QDateTime> AddEventToUserHistory(UsersState& state, const QString& loginName, qint32 action,
                                               qint32 status, const QString& notes) {
    DebugLog(QStringLiteral("Started AddEventToUserHistory %1, %2, %3,%4")
                 .arg(loginName, QString::number(action), QString::number(status), notes),
             LogLevel);
    if (state.InhibitUserHistory || !state.database)
        return std::nullopt;
    // The suite counts events in whole seconds.
    QDateTime time = platform::clock().now();
    time.setTime(time.time().addMSecs(-time.time().msec()));
    try {
        time = addEvent(*openTable(*state.database, QStringLiteral("UserHistory")), time, loginName, action,
                        status, notes);
        state.database->refresh();
    } catch (const DatabaseError& error) {
        KeepSilent(error); // whatever is being logged goes on
        return std::nullopt;
    }
    return time;
}

qint16 ProcessUserAccounts(UsersState& state, const QString& by) {
    if (!state.database)
        return 0;
    int result = purgeHistory(state);
    try {
        if (const int error = processAccounts(state, by))
            result = error;
        const auto rows = openTable(*state.database, SettingsTable);
        state.LastAccountProcess = today();
        PutDatabaseSetting(rows.get(), LastProcess, ToLong(today()), QString());
        state.database->refresh();
    } catch (const DatabaseError& error) {
        result = KeepSilent(error);
    }
    return static_cast<qint16>(result);
}

bool DeleteUser(UsersState& state, const QString& loginName) {
    if (loginName.isEmpty() || !state.users)
        return true;
    try {
        state.users->seek(loginName);
        if (state.users->noMatch())
            return true;
        state.users->remove();
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("deleting %1 from the users database.").arg(loginName), error);
        return false;
    }
    removeFolderOf(state, loginName);
    try {
        if (state.users->recordCount() > 0)
            state.users->moveFirst();
        deletePreferences(*state.database, loginName);
        state.database->refresh();
    } catch (const DatabaseError& error) {
        KeepSilent(error);
        return false;
    }
    return true;
}

} // namespace tolvex
