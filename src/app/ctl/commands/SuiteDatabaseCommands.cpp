// Databases of the suite, files and those on a server: their information, making and checking them, and their
// private settings.
#include "app/ctl/Commands.h"

#include "automation/AutomationSchema.h"
#include "core/report/Folders.h"
#include "core/time/Dates.h"
#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/suite/FindDatabases.h"
#include "databases/suite/ValidateDatabase.h"
#include "databases/users/UsersSchema.h"
#include "platform/files/Files.h"

#include <optional>

namespace tolvex::ctl {

namespace {

const Option typeOption{"--type", "N", "the kind of database: 0 users, 14 automation log, ..."};

const Option connectOption{"--connect", "STRING",
                           "FILE is the name of a database on the server of this string, \"ODBC;DSN=...\""};

// The connect string in the form of the suite's routines; empty for a file.
QString connectOf(const Call& call) {
    const QString given = call.option("--connect");
    const QString prefix = QStringLiteral("ODBC;");
    return given.isEmpty() || given.startsWith(prefix, Qt::CaseInsensitive) ? given : prefix + given;
}

// The path of a file, or a name on a server.
QString fileOf(const Call& call) {
    return connectOf(call).isEmpty() ? WithDatabaseExtension(call.path(0)) : call.argument(0);
}

int failure(const Call& call, const DatabaseError& error) {
    return call.fail(QStringLiteral("%1: %2 (error %3)").arg(fileOf(call), error.text).arg(error.number),
                     error.number);
}

// Throws DatabaseError if the server cannot be asked.
bool isThere(const Call& call) {
    if (connectOf(call).isEmpty())
        return FileLength(fileOf(call)) > 0;
    return !ConnectToServer(connectOf(call))->databases(DatabasesStatement(fileOf(call))).isEmpty();
}

// Why an existing file counts as missing.
QString unreadable(const QString& file) {
    return QStringLiteral("%1 is empty, or may not be read.").arg(file);
}

int missing(const Call& call) {
    if (connectOf(call).isEmpty() &&
        (platform::FileExists(fileOf(call)) || platform::FolderExists(fileOf(call))))
        return call.fail(unreadable(fileOf(call)));
    return call.no(QStringLiteral("There is no database %1.").arg(fileOf(call)));
}

// The number of --type. False if it is not a number.
bool typeGiven(const Call& call, qint32* type) {
    bool good = false;
    *type = call.option("--type").toInt(&good);
    return good;
}

int wrongType(const Call& call) {
    QStringList known;
    for (const DatabaseKind& kind : DatabaseKinds())
        known += QString::number(kind.type);
    return call.wrong(
        QStringLiteral("--type takes the number of a kind of database: %1.").arg(known.join(", ")));
}

int info(Call& call) {
    if (!isThere(call))
        return missing(call);
    DatabaseInformation found;
    if (GetDatabaseInformation(fileOf(call), &found, true, connectOf(call)) != 0)
        return call.fail(QStringLiteral("%1 could not be read.").arg(fileOf(call)));
    const QJsonValue accessed = found.LastAccessed == 0
                                    ? QJsonValue()
                                    : QJsonValue(FromSerialDate(found.LastAccessed).toString(Qt::ISODate));
    call.output.record(QJsonObject{{QStringLiteral("fullName"), found.FullName},
                                   {QStringLiteral("fileName"), found.FileName},
                                   {QStringLiteral("description"), found.Description},
                                   // In its usual notation, not as a float prints it.
                                   {QStringLiteral("version"), QString::number(found.Version).toDouble()},
                                   {QStringLiteral("engineVersion"), found.EngineVersion},
                                   {QStringLiteral("type"), found.Type},
                                   {QStringLiteral("path"), found.Path},
                                   {QStringLiteral("lastAccessed"), accessed},
                                   {QStringLiteral("lastAccessedSoftware"), found.LastAccessedSoftware},
                                   {QStringLiteral("lastBackup"), found.LastBackup},
                                   {QStringLiteral("isServer"), found.IsServer}},
                       {{"fullName", "File"},
                        {"description", "Description"},
                        {"version", "Version"},
                        {"engineVersion", "Engine"},
                        {"type", "Type"},
                        {"lastAccessed", "Last accessed"},
                        {"lastAccessedSoftware", "Last software"},
                        {"lastBackup", "Last backup"}});
    return Done;
}

// The tables of a database of its kind, besides its description.
TableList tablesOf(qint32 type) {
    return type == UsersDatabaseType ? UsersDatabaseTables()
           : type == KOVAType        ? KOVADatabaseTables()
                                     : TableList();
}

// Everything that a database of its kind contains.
int validateAll(Call& call, qint32 type, QString title, bool silent) {
    const QString file = fileOf(call);
    const QString connect = connectOf(call);
    const TableList tables = tablesOf(type);
    int error = ValidateDatabase(file, type, silent, &title, connect,
                                 [&](SuiteDatabase& database) { return CheckTables(database, tables); });
    if (error == -1)
        return No;
    if (error == 0 && !tables.empty())
        error = ValidateDatabaseTables(file, tables, connect);
    return error == 0 ? Done : Failed;
}

int alreadyThere(const Call& call) {
    return call.fail(QStringLiteral("There is a database %1 already.").arg(fileOf(call)));
}

int create(Call& call) {
    qint32 type = 0;
    if (!typeGiven(call, &type))
        return wrongType(call);
    if (isThere(call))
        return alreadyThere(call);
    const QString title = call.option("--title");
    const int status = validateAll(call, type, title, true);
    DatabaseInformation made;
    if (status != Done || title.isEmpty() ||
        GetDatabaseInformation(fileOf(call), &made, true, connectOf(call)) != 0 || made.Description == title)
        return status;
    return alreadyThere(call); // another program was first
}

int validate(Call& call) {
    qint32 type = 0;
    if (call.has("--type")) {
        if (!typeGiven(call, &type))
            return wrongType(call);
    } else {
        DatabaseInformation found;
        if (!isThere(call))
            return missing(call);
        if (GetDatabaseInformation(fileOf(call), &found, true, connectOf(call)) != 0)
            return Failed;
        type = found.Type;
    }
    return validateAll(call, type, {}, false);
}

// Files of the folder that the search considers missing.
void notePassedOver(const Call& call) {
    const QString folder = call.path(0).endsWith(u'\\') ? call.path(0) : call.path(0) + u'\\';
    for (const QString& name : platform::FolderNames(folder))
        if (name.endsWith(QStringLiteral(".mdb"), Qt::CaseInsensitive) && FileLength(folder + name) <= 0)
            call.output.note(QStringLiteral("Passed over: ") + unreadable(folder + name));
}

int find(Call& call) {
    qint32 type = 0;
    if (!typeGiven(call, &type))
        return wrongType(call);
    const bool onServer = !connectOf(call).isEmpty();
    if (!onServer && call.arguments.isEmpty())
        return call.wrong(QStringLiteral("db find takes a folder, or --connect and a server."));
    if (onServer) // a server that does not answer is reported; the search would skip it
        ConnectToServer(connectOf(call));
    else if (!DirectoryExists(call.path(0)))
        return call.no(QStringLiteral("There is no folder %1.").arg(call.path(0)));
    QString first;
    SilentErrors passedOver;
    const qint32 count = FindDatabaseOfType(call.path(0), type, &first, 0, connectOf(call));
    call.output.record(QJsonObject{{QStringLiteral("count"), count}, {QStringLiteral("firstName"), first}},
                       {{"count", "Databases"}, {"firstName", "First"}});
    for (const DatabaseError& error : passedOver.take())
        call.output.note(QStringLiteral("Passed over: %1 (error %2)").arg(error.text).arg(error.number));
    if (!onServer)
        notePassedOver(call);
    return count > 0 ? Done : No;
}

QJsonValue textOf(const QVariant& value) {
    return value.isValid() ? QJsonValue(value.toString()) : QJsonValue();
}

int listSettings(Call& call, SuiteRecordset& rows) {
    QJsonArray records;
    for (; !rows.eof(); rows.moveNext())
        records += QJsonObject{{QStringLiteral("item"), rows.value(QStringLiteral("Item")).toString()},
                               {QStringLiteral("value"), textOf(rows.value(QStringLiteral("Value")))}};
    call.output.records(records, {{"item", "Item"}, {"value", "Value"}});
    return Done;
}

int getSetting(Call& call, SuiteRecordset& rows) {
    const QVariant value = GetDatabaseSetting(&rows, call.argument(2), QVariant());
    if (!value.isValid())
        return call.no(QStringLiteral("%1 has no setting %2.").arg(fileOf(call), call.argument(2)));
    call.output.value("value", value.toString());
    return Done;
}

int notStored(const Call& call, const SuiteDatabase& database) {
    const QString reason = database.readOnlyReason();
    return call.fail(
        QStringLiteral("%1: the setting was not stored: %2.")
            .arg(fileOf(call), reason.isEmpty() ? QStringLiteral("the table may not be changed") : reason));
}

int settingsOf(Call& call) {
    const QString verb = call.argument(1);
    const int expected = verb == QStringLiteral("list") ? 2 : verb == QStringLiteral("get") ? 3 : 4;
    if ((expected == 4 && verb != QStringLiteral("set")) || call.arguments.size() != expected)
        return call.wrong(QStringLiteral("After the file comes list, get ITEM, or set ITEM VALUE."));
    if (!isThere(call))
        return missing(call);
    const auto database = OpenSuiteDatabase(fileOf(call), connectOf(call));
    auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
    if (rows->tableMode())
        rows->setIndex(QStringLiteral("Main"));
    if (expected == 2)
        return listSettings(call, *rows);
    if (expected == 3)
        return getSetting(call, *rows);
    if (!rows->updatable())
        return notStored(call, *database);
    if (PutDatabaseSetting(rows.get(), call.argument(2), call.argument(3), QString()) != 0)
        return Failed;
    if (call.output.json())
        call.output.record(
            {{QStringLiteral("item"), call.argument(2)}, {QStringLiteral("value"), call.argument(3)}}, {});
    rows.reset();
    database->close();
    return Done;
}

int describe(Call& call) {
    if (!isThere(call))
        return missing(call);
    if (call.argument(1).isEmpty())
        return call.wrong(QStringLiteral("A description has at least one character."));
    if (call.argument(1).size() > LongestTitle)
        return call.wrong(QStringLiteral("A description has at most %1 characters; this one has %2.")
                              .arg(LongestTitle)
                              .arg(call.argument(1).size()));
    return ChangeDatabaseDescription(fileOf(call), call.argument(1), connectOf(call)) != 0 ? Done : Failed;
}

// A server that does not answer ends the command.
template<int (*Run)(Call&)>
int asked(Call& call) {
    try {
        return Run(call);
    } catch (const DatabaseError& error) {
        return failure(call, error);
    }
}

} // namespace

CommandRows SuiteDatabaseCommands() {
    return {
        {"db info",
         "FILE",
         "Show what a database of the suite says about itself",
         asked<info>,
         {connectOption}},
        Changing({"db create",
                  "FILE",
                  "Make a database of a kind, with its tables",
                  asked<create>,
                  {typeOption, {"--title", "TEXT", "its description"}, connectOption}}),
        Changing({"db validate",
                  "FILE",
                  "Add everything of its kind that a database lacks",
                  asked<validate>,
                  {typeOption, connectOption}}),
        {"db find",
         "[FOLDER]",
         "Count the databases of a kind in a folder or on a server",
         asked<find>,
         {typeOption, {"--connect", "STRING", "on the server of this string, \"ODBC;DSN=...\""}}},
        Changing({"db settings",
                  "FILE list|get|set [ITEM] [VALUE]",
                  "List, print or set the private settings of a database; an empty value removes one",
                  asked<settingsOf>,
                  {connectOption}},
                 [](const Call& call) { return call.argument(1) == u"set"; }),
        Changing({"db describe",
                  "FILE TEXT",
                  "Change the description of a database",
                  asked<describe>,
                  {connectOption}}),
    };
}

} // namespace tolvex::ctl
