#include "databases/suite/ValidateDatabase.h"

#include "core/report/DebugLog.h"
#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "databases/odbc/OdbcConnectString.h"
#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "platform/Prompts.h"

#include <optional>

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

constexpr int LogLevel = 5;
constexpr qint16 Declined = -1;
const QString OpeningDatabase = QStringLiteral("Opening Database");
const QString DescriptionTable = QStringLiteral("Description");

// The fields that every database has; the programs that write the other three of the table add them.
constexpr Field descriptionFields[] = {{"Description", FieldKind::Text, LongestTitle},
                                       {"Version", FieldKind::Single},
                                       {"Type", FieldKind::Long}};

void log(const QString& text) {
    DebugLog(text, LogLevel);
}

// Finds a title that is too long for the Description row before anything is made. 0, or reported.
int checkTitle(const QString& title) {
    if (title.trimmed().size() <= LongestTitle)
        return 0;
    return Report(
        QStringLiteral("opening the description information"),
        {FieldTooSmallError,
         QStringLiteral("The description is too long: it has %1 characters, and there is room for %2.")
             .arg(title.trimmed().size())
             .arg(LongestTitle)});
}

int createOnServer(const QString& name, const QString& connect, const QString& title) {
    if (const int error = checkTitle(title))
        return error;
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
            if (error.number != TableExistsError) // another workstation was faster
                return Report(QStringLiteral("creating the Description Table"), error);
        }
    }
    if (const int error = CheckFields(database, DescriptionTable, descriptionFields, false))
        return error;
    try {
        const Index main{"Main", {"Description"}, true};
        if (!database.table(DescriptionTable)->has(main))
            database.appendIndex(DescriptionTable, main);
    } catch (const DatabaseError& error) {
        KeepSilent(error); // a database without this index works as well
    }
    return 0;
}

// Tries the two names under which the table may be accessible to the user. `name` gets the one that works.
std::unique_ptr<SuiteRecordset> openDescription(SuiteDatabase& database, bool onServer, QString* name) {
    log(QStringLiteral("Opening 'Description' table"));
    *name = DescriptionTable;
    try {
        return database.open(*name, RecordsetMode::Table);
    } catch (const DatabaseError& error) {
        if (error.number != NoPermissionOnServer || !onServer)
            throw;
    }
    log(QStringLiteral("Opening 'dbo.Description' table"));
    *name = QStringLiteral("dbo.Description");
    return database.open(*name, RecordsetMode::Table);
}

QString titleFor(bool silentMode, QString* title) {
    if (!silentMode && title->isEmpty())
        *title = platform::prompts()
                     .askText(QStringLiteral("Please enter a suitable description for this database"), {}, {})
                     .value_or(QString());
    if (title->isEmpty())
        *title = QStringLiteral("You have to have a title!");
    return title->trimmed();
}

// Adds the row, unless another workstation has added it meanwhile.
void describe(SuiteDatabase& database, const QString& table, qint32 type, const QString& title) {
    DatabaseTransaction transaction(database);
    const auto rows = database.open(table, RecordsetMode::Table);
    if (!rows->eof())
        return;
    rows->addNew();
    rows->set(QStringLiteral("Description"), title);
    rows->set(QStringLiteral("Type"), type);
    if (const DatabaseKind* kind = FindDatabaseKind(type); kind && kind->version > 0)
        rows->set(QStringLiteral("Version"), kind->version);
    rows->update();
    transaction.commit();
}

// The Description table and its row, in an open database.
int fillDescription(SuiteDatabase& database, bool onServer, qint32 type, bool silentMode, QString* title) {
    if (const int error = checkDescriptionTable(database))
        return error;
    try {
        QString table;
        if (openDescription(database, onServer, &table)->eof())
            describe(database, table, type, titleFor(silentMode, title));
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the description information"), error);
    }
    return 0;
}

int openAndFill(const QString& name, const QString& connect, qint32 type, bool silentMode, QString* title) {
    std::unique_ptr<SuiteDatabase> database;
    log(OpeningDatabase);
    try {
        database = OpenSuiteDatabase(name, connect);
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the database ") + name +
                          (connect.isEmpty() ? QString() : QStringLiteral(", ") + ShownConnect(connect)),
                      error);
    }
    if (const int error = fillDescription(*database, !connect.isEmpty(), type, silentMode, title))
        return error;
    try {
        database->close();
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the description information"), error);
    }
    return 0;
}

// Thrown out of a database that is being made, which then never gets its name.
struct NotMade {
    int error; // reported
};

// Makes a missing file with all its content. Nothing if it exists, perhaps just made by another workstation;
// else 0, -1 if the user declined, or, reported, the error number.
std::optional<int> createFile(const QString& path, bool silentMode, const QString& title,
                              const DatabaseContents& contents) {
    const qint64 length = FileLength(path);
    if (length > 0)
        return std::nullopt;
    if (!silentMode &&
        platform::prompts().ask({QStringLiteral("The database ") + path +
                                     QStringLiteral(" does not exist. Would you like to create it?"),
                                 Icon::Question, Buttons::YesNo}) != Answer::Yes)
        return Declined;
    if (const int error = checkTitle(title))
        return error;
    CreatePath(FolderOf(path));
    if (length == 0) {
        try {
            RemoveEmptyDatabase(path);
        } catch (const DatabaseError& error) {
            return Report(QStringLiteral("deleting the old file"), error);
        }
    }
    try {
        CreateSuiteDatabase(path, [&](SuiteDatabase& database) {
            if (const int error = contents(database))
                throw NotMade{error};
        });
    } catch (const NotMade& reported) {
        return reported.error;
    } catch (const DatabaseError& error) {
        if (error.number == DatabaseExistsError)
            return std::nullopt;
        return Report(QStringLiteral("creating the new database"), error);
    }
    return 0;
}

} // namespace

qint16 ValidateDatabase(const QString& databaseName, qint32 type, bool silentMode, QString* title,
                        const QString& connect, const DatabaseContents& contents) {
    log(QStringLiteral("Started Validate Database: DBName='%1' Type=%2, SilentMode=%3, Title='%4' "
                       "Connect='%5'")
            .arg(databaseName, QString::number(type),
                 silentMode ? QStringLiteral("True") : QStringLiteral("False"), *title,
                 ShownConnect(connect)));
    if (connect.isEmpty()) {
        const QString path = WithDatabaseExtension(databaseName);
        const auto made = createFile(path, silentMode, *title, [&](SuiteDatabase& database) {
            log(OpeningDatabase);
            const int failed = fillDescription(database, false, type, silentMode, title);
            return failed == 0 && contents ? contents(database) : failed;
        });
        return static_cast<qint16>(made ? *made : openAndFill(path, {}, type, silentMode, title));
    }
    log(QStringLiteral("Getting Database Information"));
    DatabaseInformation information;
    if (GetDatabaseInformation(databaseName, &information, false, connect) != 0)
        if (const int error = createOnServer(databaseName, connect, *title))
            return static_cast<qint16>(error);
    return static_cast<qint16>(openAndFill(databaseName, connect, type, silentMode, title));
}

} // namespace tolvex
