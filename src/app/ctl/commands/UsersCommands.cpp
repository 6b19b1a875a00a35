// The users database of the station.
#include "app/ctl/Commands.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "databases/users/UsersDatabase.h"

namespace tolvex::ctl {

namespace {

// A field of a table and its key in a record.
struct Shown {
    const char* field;
    const char* key;
    const char* heading;
};

const Shown accountFields[] = {
    {"LoginName", "loginName", "Login"},           {"FullName", "fullName", "Name"},
    {"GroupNumber", "groupNumber", "Group"},       {"AccountStatus", "accountStatus", "Status"},
    {"LastLogin", "lastLogin", "Last login"},      {"ExpirationDate", "expirationDate", "Expires"},
    {"DeletionDate", "deletionDate", "Deleted on"}};
const Shown groupFields[] = {{"GroupNumber", "groupNumber", "Group"},
                             {"Name", "name", "Name"},
                             {"AllowMultipleUsers", "allowMultipleUsers", "Many at once"},
                             {"AccessRight1", "accessRight1", "1"},
                             {"AccessRight2", "accessRight2", "2"},
                             {"AccessRight3", "accessRight3", "3"},
                             {"AccessRight4", "accessRight4", "4"},
                             {"AccessRight5", "accessRight5", "5"},
                             {"AccessRight6", "accessRight6", "6"}};
const Shown historyFields[] = {{"EventTime", "eventTime", "Time"},
                               {"LoginName", "loginName", "Login"},
                               {"ComputerName", "computerName", "Computer"},
                               {"Action", "action", "Action"},
                               {"Status", "status", "Status"},
                               {"Notes", "notes", "Notes"}};

QJsonValue jsonOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().toString(Qt::ISODate);
    return QJsonValue::fromVariant(value);
}

// The rows of a table in index order, the last `last` of them.
int show(Call& call, const QString& table, std::span<const Shown> fields, int last = INT_MAX) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    const QString file = UsersDatabaseFile(call.station.settings);
    if (FileLength(file) <= 0)
        return call.no(QStringLiteral("There is no users database %1.").arg(file));
    QJsonArray records;
    try {
        const auto database = OpenSuiteDatabase(file);
        const auto rows = database->open(table, RecordsetMode::Table);
        rows->setIndex(QStringLiteral("Main"));
        int before = rows->recordCount() - last;
        for (; !rows->eof(); rows->moveNext()) {
            if (before-- > 0)
                continue;
            QJsonObject record;
            for (const Shown& field : fields)
                record[QLatin1String(field.key)] = jsonOf(rows->value(QLatin1String(field.field)));
            records += record;
        }
    } catch (const DatabaseError& error) {
        return call.fail(QStringLiteral("%1: %2 (error %3)").arg(file, error.text).arg(error.number),
                         error.number);
    }
    Columns columns;
    for (const Shown& field : fields)
        columns.push_back({field.key, field.heading});
    call.output.records(records, columns);
    return Done;
}

int list(Call& call) {
    return show(call, QStringLiteral("Users"), accountFields);
}

int groups(Call& call) {
    return show(call, QStringLiteral("UserGroups"), groupFields);
}

int history(Call& call) {
    int last = INT_MAX;
    if (call.has("--last")) {
        bool good = false;
        last = call.option("--last").toInt(&good);
        if (!good || last < 1)
            return call.wrong(QStringLiteral("--last takes a number above 0."));
    }
    return show(call, QStringLiteral("UserHistory"), historyFields, last);
}

int process(Call& call) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    if (call.station.settings.DataLocation.isEmpty())
        return call.no(QStringLiteral("This workstation has no data location."));
    const QString file = UsersDatabaseFile(call.station.settings);
    if (OpenUsersDatabase(call.station.users, file) != 0)
        return call.fail(QStringLiteral("%1 could not be opened.").arg(file));
    const int error = ProcessUserAccounts(call.station.users, QStringLiteral("SYSTEM"));
    CloseUsersDatabase(call.station.users);
    return error == 0
               ? Done
               : call.fail(QStringLiteral("Not all accounts were processed (error %1).").arg(error), error);
}

} // namespace

CommandRows UsersCommands() {
    return {
        {"users list", "", "List the accounts", list},
        {"users groups", "", "List the groups of users and their rights", groups},
        {"users history",
         "",
         "List what users did, oldest first",
         history,
         {{"--last", "N", "only the newest N events"}}},
        Changing({"users process", "",
                  "Purge old history, disable expired accounts, delete those that are due", process}),
    };
}

} // namespace tolvex::ctl
