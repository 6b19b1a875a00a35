#include "databases/suite/DatabaseInformation.h"

#include "core/report/DebugLog.h"
#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/odbc/OdbcConnectString.h"
#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"
#include "platform/Prompts.h"
#include "platform/host/LookOnly.h"

namespace tolvex {

namespace {

constexpr qint16 Missing = -1;
constexpr int LogLevel = 5;
constexpr int LongestDescription = 255; // if the field does not say

void log(const QString& text) {
    DebugLog(text, LogLevel);
}

QString trueOrFalse(bool flag) {
    return flag ? QStringLiteral("True") : QStringLiteral("False");
}

// Whether the server has the database; failures are reported.
bool isOnServer(const QString& name, const QString& connect) {
    std::unique_ptr<DatabaseServer> server;
    try {
        server = ConnectToServer(connect);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("connecting to '%1'").arg(ShownConnect(connect)), error);
        log(QStringLiteral("Exit: connection not opened"));
        return false;
    }
    try {
        if (!server->databases(DatabasesStatement(name)).isEmpty())
            return true;
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("retrieving the list of databases"), error);
    }
    log(QStringLiteral("Exit: database not found"));
    return false;
}

// Opens the database; an unrecognised file is repaired first, if files may be changed. Null with *error set;
// -1 in its number if the repair failed.
std::unique_ptr<SuiteDatabase> openRepairing(const QString& name, const QString& connect, bool silent,
                                             DatabaseError* error) {
    for (bool repaired = false;; repaired = true) {
        try {
            return OpenSuiteDatabase(name, connect);
        } catch (const DatabaseError& thrown) {
            *error = thrown;
        }
        if (error->number != UnrecognisedDatabase || !connect.isEmpty() || repaired ||
            platform::LookingOnly())
            return nullptr;
        if (!CompactRepairDatabase(name, false, {}, silent)) {
            error->number = Missing;
            return nullptr;
        }
    }
}

// The text of a field of the current row, nothing if it is null. A field that the table lacks reads as null,
// unless it is one that every database has.
QVariant optionalField(SuiteRecordset& row, const char* field) {
    try {
        return row.value(QLatin1String(field));
    } catch (const DatabaseError& error) {
        if (error.number != ItemNotFoundError)
            throw;
        return {};
    }
}

void readRow(SuiteRecordset& row, DatabaseInformation& information) {
    information.Description = row.value(QStringLiteral("Description")).toString();
    information.Type = row.value(QStringLiteral("Type")).toInt();
    information.Version = optionalField(row, "Version").toFloat();
    information.LastAccessed = ParseDate(optionalField(row, "LastAccessed").toString()).value_or(0);
    information.LastAccessedSoftware = optionalField(row, "LastAccessedSoftware").toString();
    information.LastBackup = optionalField(row, "LastBackup").toString();
}

// Reads everything that the database says about itself. Result: 0 or the error number.
int readDatabase(SuiteDatabase& database, const QString& name, DatabaseInformation& information,
                 bool reportErrors) {
    std::unique_ptr<SuiteRecordset> row;
    try {
        row = database.open(QStringLiteral("Description"), RecordsetMode::Table);
    } catch (const DatabaseError& error) {
        return reportErrors
                   ? Report(name + QStringLiteral("\n\nopening the description information in the database"),
                            error)
                   : KeepSilent(error, name);
    }
    information.EngineVersion = database.engineVersion();
    if (row->eof()) {
        if (reportErrors)
            platform::prompts().ask(
                {name + QStringLiteral("\n\nThere was no Description information in the database.\n\n"
                                       "Please contact Norvane Ltd."),
                 platform::Icon::Stop});
        return 0;
    }
    try {
        readRow(*row, information);
    } catch (const DatabaseError& error) {
        return KeepSilent(error, name);
    }
    return 0;
}

int readInformation(const QString& name, DatabaseInformation* information, bool reportErrors,
                    const QString& connect) {
    DatabaseError error;
    const auto database = openRepairing(name, connect, !reportErrors, &error);
    if (error.number == Missing) {
        log(QStringLiteral("Exit: DB Could not be compact/repaired"));
        return Missing;
    }
    *information = {};
    if (!database) {
        return reportErrors
                   ? Report(name + QStringLiteral("\n\nopening the database to read it's information"), error)
                   : KeepSilent(error, name);
    }
    if (const int failed = readDatabase(*database, name, *information, reportErrors))
        return failed;
    information->FullName = name;
    information->FileName = FileNameOf(name);
    information->Connect = connect;
    information->IsServer = !connect.isEmpty();
    information->Path = information->IsServer ? name : FolderOf(name);
    return 0;
}

} // namespace

qint16 GetDatabaseInformation(const QString& databaseName, DatabaseInformation* information,
                              bool reportErrors, const QString& connect) {
    log(QStringLiteral("Started GetDatabaseInformation: DBName='%1', ReportErrors=%2, Connect='%3'")
            .arg(databaseName, trueOrFalse(reportErrors), ShownConnect(connect)));
    QString name = databaseName;
    if (!connect.isEmpty()) {
        if (!isOnServer(name, connect))
            return Missing;
    } else {
        name = WithDatabaseExtension(name);
        if (FileLength(name) <= 0) {
            log(QStringLiteral("Exit: File not found"));
            return Missing;
        }
    }
    const int result = readInformation(name, information, reportErrors, connect);
    if (result != Missing)
        log(QStringLiteral("Finished GetDatabaseInformation"));
    return static_cast<qint16>(result);
}

qint16 ChangeDatabaseDescription(const QString& databaseName, const QString& newDescription,
                                 const QString& connect) {
    const QString name = connect.isEmpty() ? WithDatabaseExtension(databaseName) : databaseName;
    if (databaseName.isEmpty() || newDescription.isEmpty() || (connect.isEmpty() && FileLength(name) <= 0))
        return 0;
    std::unique_ptr<SuiteDatabase> database;
    std::unique_ptr<SuiteRecordset> row;
    const QString field = QStringLiteral("Description");
    try {
        database = OpenSuiteDatabase(name, connect);
        row = database->open(field, RecordsetMode::Table);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("opening the database"), error);
        return 0;
    }
    try {
        row->edit();
        const int size = row->size(field);
        row->set(field, newDescription.left(size < 1 ? LongestDescription : size));
        row->update();
        row.reset();
        database->close();
    } catch (const DatabaseError& error) {
        Report(QStringLiteral(" editing the details"), error);
        return 0;
    }
    return -1;
}

} // namespace tolvex
