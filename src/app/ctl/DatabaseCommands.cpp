// Databases of the suite: what they say about themselves, making and checking them, their private settings.
#include "app/ctl/Commands.h"

#include "automation/AutomationSchema.h"
#include "core/Dates.h"
#include "core/Folders.h"
#include "databases/DatabaseInformation.h"
#include "databases/DatabaseKinds.h"
#include "databases/DatabaseSettings.h"
#include "databases/FindDatabases.h"
#include "databases/SuiteDatabase.h"
#include "databases/UsersSchema.h"
#include "databases/ValidateDatabase.h"

#include <optional>

namespace tolvex::ctl {

namespace {

const Option typeOption{"--type", "N", "the kind of database: 0 users, 14 automation log, ..."};

QString fileOf(const Call& call) {
    return WithDatabaseExtension(FileArgument(call.argument(0)));
}

int missing(const Call& call) {
    return call.no(QStringLiteral("There is no database %1.").arg(fileOf(call)));
}

// The number that --type gives. False when it is no number.
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
    if (FileLength(fileOf(call)) <= 0)
        return missing(call);
    DatabaseInformation found;
    if (GetDatabaseInformation(fileOf(call), &found, true) != 0)
        return call.fail(QStringLiteral("%1 could not be read.").arg(fileOf(call)));
    const QJsonValue accessed = found.LastAccessed == 0
                                    ? QJsonValue()
                                    : QJsonValue(FromSerialDate(found.LastAccessed).toString(Qt::ISODate));
    call.output.record(QJsonObject{{QStringLiteral("fullName"), found.FullName},
                                   {QStringLiteral("fileName"), found.FileName},
                                   {QStringLiteral("description"), found.Description},
                                   // As it is written, not as a float has it.
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

// Everything that a database of its kind has.
int validateAll(Call& call, qint32 type, QString title, bool silent) {
    const QString file = fileOf(call);
    int error = ValidateDatabase(file, type, silent, &title);
    if (error == -1)
        return No;
    if (error == 0 && type == UsersDatabaseType)
        error = ValidateUsersDatabaseTables(file);
    if (error == 0 && type == KOVAType)
        error = ValidateKOVADatabaseTables(file);
    return error == 0 ? Done : Failed;
}

int create(Call& call) {
    qint32 type = 0;
    if (!typeGiven(call, &type))
        return wrongType(call);
    if (FileLength(fileOf(call)) > 0)
        return call.fail(QStringLiteral("There is a file %1 already.").arg(fileOf(call)));
    return validateAll(call, type, call.option("--title"), true);
}

int validate(Call& call) {
    qint32 type = 0;
    if (call.has("--type")) {
        if (!typeGiven(call, &type))
            return wrongType(call);
    } else {
        DatabaseInformation found;
        if (FileLength(fileOf(call)) <= 0)
            return missing(call);
        if (GetDatabaseInformation(fileOf(call), &found, true) != 0)
            return Failed;
        type = found.Type;
    }
    return validateAll(call, type, {}, false);
}

int find(Call& call) {
    qint32 type = 0;
    if (!typeGiven(call, &type))
        return wrongType(call);
    QString first;
    const qint32 count = FindDatabaseOfType(FileArgument(call.argument(0)), type, &first, 0);
    call.output.record(QJsonObject{{QStringLiteral("count"), count}, {QStringLiteral("firstName"), first}},
                       {{"count", "Databases"}, {"firstName", "First"}});
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

int settingsOf(Call& call) {
    const QString verb = call.argument(1);
    const int expected = verb == QStringLiteral("list") ? 2 : verb == QStringLiteral("get") ? 3 : 4;
    if ((expected == 4 && verb != QStringLiteral("set")) || call.arguments.size() != expected)
        return call.wrong(QStringLiteral("After the file comes list, get ITEM, or set ITEM VALUE."));
    if (FileLength(fileOf(call)) <= 0)
        return missing(call);
    try {
        const auto database = OpenSuiteDatabase(fileOf(call));
        auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
        rows->setIndex(QStringLiteral("Main"));
        if (expected == 2)
            return listSettings(call, *rows);
        if (expected == 3)
            return getSetting(call, *rows);
        if (PutDatabaseSetting(rows.get(), call.argument(2), call.argument(3), QString()) != 0)
            return Failed;
        rows.reset();
        database->close();
    } catch (const DatabaseError& error) {
        return call.fail(QStringLiteral("%1: %2 (error %3)").arg(fileOf(call), error.text).arg(error.number));
    }
    return Done;
}

int describe(Call& call) {
    if (FileLength(fileOf(call)) <= 0)
        return missing(call);
    if (call.argument(1).isEmpty())
        return call.wrong(QStringLiteral("A description has at least one character."));
    return ChangeDatabaseDescription(fileOf(call), call.argument(1)) != 0 ? Done : Failed;
}

} // namespace

CommandRows DatabaseCommands() {
    return {
        {"db info", "FILE", "Tell what a database of the suite says about itself", info},
        {"db create",
         "FILE",
         "Make a database of a kind, with its tables",
         create,
         {typeOption, {"--title", "TEXT", "its description"}}},
        {"db validate", "FILE", "Add what a database lacks of its kind", validate, {typeOption}},
        {"db find", "FOLDER", "Count the databases of a kind in a folder", find, {typeOption}},
        {"db settings", "FILE list|get|set [ITEM] [VALUE]",
         "List, print or set the private settings of a database; an empty value removes one", settingsOf},
        {"db describe", "FILE TEXT", "Change the description of a database", describe},
    };
}

} // namespace tolvex::ctl
