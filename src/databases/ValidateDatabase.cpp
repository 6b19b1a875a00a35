#include "databases/ValidateDatabase.h"

#include "core/DebugLog.h"
#include "core/Folders.h"
#include "core/PathNames.h"
#include "core/ProblemReport.h"
#include "databases/DatabaseInformation.h"
#include "databases/DatabaseKinds.h"
#include "databases/OdbcConnectString.h"
#include "databases/Report.h"
#include "databases/SuiteDatabase.h"
#include "platform/Files.h"
#include "platform/Prompts.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

constexpr int LogLevel = 5;
constexpr qint16 Declined = -1;
const QString DescriptionTable = QStringLiteral("Description");

// The fields that every database has; the other three of the table are left to the programs that write them.
constexpr Field descriptionFields[] = {
    {"Description", FieldKind::Text, 200}, {"Version", FieldKind::Single}, {"Type", FieldKind::Long}};

void log(const QString& text) {
    DebugLog(text, LogLevel);
}

int createOnServer(const QString& name, const QString& connect) {
    log(QStringLiteral("Couldn't get info, creating new database"));
    std::unique_ptr<DatabaseServer> server;
    try {
        server = ConnectToServer(connect);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening a new DB Workspace"), error);
    }
    try {
        server->execute(QStringLiteral("CREATE DATABASE ") + QuotedText(name, u'"'));
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("creating a new database '%1'").arg(name), error);
    }
    return 0;
}

int createFile(const QString& path, bool silentMode) {
    const qint64 length = FileLength(path);
    if (length > 0)
        return 0;
    if (!silentMode &&
        platform::prompts().ask({QStringLiteral("The database ") + path +
                                     QStringLiteral(" does not exist. Would you like to create it?"),
                                 Icon::Question, Buttons::YesNo}) != Answer::Yes)
        return Declined;
    CreatePath(FolderOf(path));
    if (length == 0) {
        if (const int error = platform::RemoveFile(path)) {
            ProblemReport(QStringLiteral("deleting the old file"), error);
            return error;
        }
    }
    try {
        CreateSuiteDatabase(path);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("creating the new database"), error);
    }
    return 0;
}

int checkDescriptionTable(SuiteDatabase& database) {
    log(QStringLiteral("Looking for 'Description' table"));
    bool missing = false;
    try {
        missing = !database.table(DescriptionTable);
    } catch (const DatabaseError&) {
        missing = true;
    }
    if (missing) {
        log(QStringLiteral("Can't find 'Description' table"));
        try {
            database.createTable(DescriptionTable, descriptionFields[0], false);
        } catch (const DatabaseError& error) {
            return Report(QStringLiteral("creating the Description Table"), error);
        }
    }
    if (const int error = CheckFields(database, DescriptionTable, descriptionFields, false))
        return error;
    try {
        if (!database.table(DescriptionTable)->indexes.contains(QStringLiteral("Main"), Qt::CaseInsensitive))
            database.appendIndex(DescriptionTable, {"Main", {"Description"}, true});
    } catch (const DatabaseError&) {
        // A database without this index serves as well.
    }
    return 0;
}

std::unique_ptr<SuiteRecordset> openDescription(SuiteDatabase& database, bool onServer) {
    log(QStringLiteral("Opening 'Description' table"));
    try {
        return database.open(DescriptionTable, RecordsetMode::Table);
    } catch (const DatabaseError& error) {
        if (error.number != NoPermissionOnServer || !onServer)
            throw;
    }
    log(QStringLiteral("Opening 'dbo.Description' table"));
    return database.open(QStringLiteral("dbo.Description"), RecordsetMode::Table);
}

void describe(SuiteRecordset& rows, qint32 type, bool silentMode, QString* title) {
    if (!silentMode && title->isEmpty())
        *title = platform::prompts()
                     .askText(QStringLiteral("Please enter a suitable description for this database"), {}, {})
                     .value_or(QString());
    if (title->isEmpty())
        *title = QStringLiteral("You have to have a title!");
    rows.addNew();
    rows.set(QStringLiteral("Description"), title->trimmed());
    rows.set(QStringLiteral("Type"), type);
    if (const DatabaseKind* kind = FindDatabaseKind(type); kind && kind->version > 0)
        rows.set(QStringLiteral("Version"), kind->version);
    rows.update();
}

int fillDescription(const QString& name, const QString& connect, qint32 type, bool silentMode,
                    QString* title) {
    std::unique_ptr<SuiteDatabase> database;
    log(QStringLiteral("Opening Database"));
    try {
        database = OpenSuiteDatabase(name, connect);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the database ") + name +
                          (connect.isEmpty() ? QString() : QStringLiteral(", ") + ShownConnect(connect)),
                      error);
    }
    if (const int error = checkDescriptionTable(*database))
        return error;
    try {
        auto rows = openDescription(*database, !connect.isEmpty());
        if (rows->eof())
            describe(*rows, type, silentMode, title);
        rows.reset();
        database->close();
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the description information"), error);
    }
    return 0;
}

} // namespace

qint16 ValidateDatabase(const QString& databaseName, qint32 type, bool silentMode, QString* title,
                        const QString& connect) {
    log(QStringLiteral("Started Validate Database: DBName='%1' Type=%2, SilentMode=%3, Title='%4' "
                       "Connect='%5'")
            .arg(databaseName, QString::number(type),
                 silentMode ? QStringLiteral("True") : QStringLiteral("False"), *title,
                 ShownConnect(connect)));
    QString name = databaseName;
    int error = 0;
    if (connect.isEmpty()) {
        name = WithDatabaseExtension(name);
        error = createFile(name, silentMode);
    } else {
        log(QStringLiteral("Getting Database Information"));
        DatabaseInformation information;
        if (GetDatabaseInformation(name, &information, false, connect) != 0)
            error = createOnServer(name, connect);
    }
    if (error == 0)
        error = fillDescription(name, connect, type, silentMode, title);
    return static_cast<qint16>(error);
}

} // namespace tolvex
