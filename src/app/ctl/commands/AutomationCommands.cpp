// The automation player: the workstation's nine keys and the settings of its database.
#include "app/ctl/Commands.h"

#include "automation/AutomationEditing.h"
#include "automation/AutomationSchema.h"
#include "automation/AutomationSetup.h"
#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "core/text/PathNames.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseList.h"
#include "databases/users/UsersDatabase.h"
#include "platform/profile/ProfileFile.h"

#include <cctype>
#include <optional>

namespace tolvex::ctl {

namespace {

// The exit status when the settings could not be read.
std::optional<int> readSettings(const Call& call) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    if (call.station.settings.DataLocation.isEmpty())
        return call.no(QStringLiteral("This workstation has no data location."));
    return std::nullopt;
}

int show(Call& call) {
    if (const auto status = readSettings(call))
        return *status;
    QJsonObject record;
    std::vector<QByteArray> names;
    for (const AutomationKey& key : AutomationKeys()) {
        const QVariant value = AutomationKeyValue(call.station.settings, key);
        QByteArray name(key.key);
        name[0] = static_cast<char>(std::tolower(name[0]));
        names.push_back(name);
        record[QLatin1String(name)] = call.output.json() && key.words.empty()
                                          ? QJsonValue::fromVariant(value)
                                          : QJsonValue(AutomationKeyText(call.station.settings, key));
    }
    Columns columns;
    for (std::size_t at = 0; at < names.size(); ++at)
        columns.push_back({names[at].constData(), AutomationKeys()[at].key});
    call.output.record(record, columns);
    return Done;
}

int store(const Call& call) {
    Settings& settings = call.station.settings;
    if (const int error = StoreAutomationSetup(settings))
        return call.fail(ProfileErrorText(error, platform::ProfilePath(settings.LocalIniFile)), error);
    return Done;
}

int wrongType(const Call& call, const DatabaseInformation& found) {
    return call.fail(QStringLiteral("%1 is not an automation database (its type is %2).")
                         .arg(found.FullName)
                         .arg(found.Type));
}

// Brings a database up to date and makes it the workstation's.
int chooseDatabase(const Call& call, const QString& given) {
    Settings& settings = call.station.settings;
    const QString name = WithDatabaseExtension(FileNameOf(given));
    const QString folder = AutomationFolder(settings);
    const QString path = folder + u'\\' + name;
    if (FileNameOf(given) != given && FolderOf(given).compare(folder, Qt::CaseInsensitive) != 0)
        return call.wrong(QStringLiteral("The database has to be in %1.").arg(folder));
    DatabaseInformation found;
    if (FileLength(path) <= 0)
        return call.no(QStringLiteral("There is no database %1.").arg(path));
    if (GetDatabaseInformation(path, &found, true) != 0)
        return call.fail(QStringLiteral("%1 could not be read.").arg(path));
    if (found.Type != KOVAType)
        return wrongType(call, found);
    if (const int error = ValidateKOVADatabaseTables(path))
        return call.fail(QStringLiteral("%1 could not be brought up to date.").arg(path), error);
    settings.DefaultDatabase = name;
    return store(call);
}

int set(Call& call) {
    if (const auto status = readSettings(call))
        return *status;
    const AutomationKey* key = FindAutomationKey(call.argument(0));
    if (!key) {
        QStringList known;
        for (const AutomationKey& row : AutomationKeys())
            known += QLatin1String(row.key);
        return call.wrong(QStringLiteral("KEY is one of %1.").arg(known.join(QStringLiteral(", "))));
    }
    if (key == &AutomationKeys().front() && !call.argument(1).isEmpty())
        return chooseDatabase(call, call.argument(1));
    QString why;
    const QVariant value = ParseAutomationKey(*key, call.argument(1), &why);
    if (!value.isValid())
        return call.wrong(QStringLiteral("%1 %2.").arg(QLatin1String(key->key), why));
    SetAutomationKeyValue(call.station.settings, *key, value);
    return store(call);
}

int choose(Call& call) {
    if (const auto status = readSettings(call))
        return *status;
    return chooseDatabase(call, call.argument(0));
}

int clear(Call& call) {
    if (const auto status = readSettings(call))
        return *status;
    call.station.settings.DefaultDatabase.clear();
    return store(call);
}

int list(Call& call) {
    if (const auto status = readSettings(call))
        return *status;
    QJsonArray records;
    const Settings& settings = call.station.settings;
    for (const QString& path : DatabaseFilesIn(AutomationFolder(settings))) {
        const ListedDatabase found = LookAtDatabase(path);
        if (found.error != 0)
            call.output.note(QStringLiteral("%1: %2 (error %3)").arg(path, found.errorText).arg(found.error));
        if (found.isCutShort)
            call.output.note(CutShortText(path));
        if (found.error != 0 || found.type != KOVAType)
            continue;
        const bool own = found.fileName.compare(settings.DefaultDatabase, Qt::CaseInsensitive) == 0;
        QJsonObject record{{QStringLiteral("fileName"), found.fileName},
                           {QStringLiteral("description"), found.description},
                           {QStringLiteral("version"), QString::number(found.version).toDouble()},
                           {QStringLiteral("size"), found.size},
                           {QStringLiteral("modified"), found.modified.toString(Qt::ISODate)},
                           {QStringLiteral("openOn"), QJsonArray::fromStringList(found.openOn)},
                           {QStringLiteral("isDefault"), own}};
        if (own && !call.output.json())
            record[QStringLiteral("marker")] = QStringLiteral(">");
        records += record;
    }
    call.output.records(records, {{"marker", "?"},
                                  {"fileName", "Database Name"},
                                  {"description", "Description"},
                                  {"version", "Version"},
                                  {"size", "Bytes", true},
                                  {"modified", "Changed"},
                                  {"openOn", "Open on"}});
    return records.isEmpty() ? No : Done;
}

QJsonObject itemRecord(const AutomationItem& item, const KOVADatabaseSettings& record) {
    return {{QStringLiteral("item"), QLatin1String(item.name)},
            {QStringLiteral("value"), AutomationItemText(item, record)}};
}

int setItem(const Call& call, const AutomationItem& item, AutomationEditing& editing,
            KOVADatabaseSettings& record) {
    const QString name = QLatin1String(item.name);
    QString why;
    if (!SetAutomationItem(item, call.arguments.last(), record, &why))
        return call.wrong(QStringLiteral("%1 %2.").arg(name, why));
    const QVariant wanted = MemberValue(item, record);
    if (const auto fault = CheckAutomationRecord(record, call.station.settings.NoCarts))
        return call.fail(fault->message);
    if (MemberValue(item, record) != wanted)
        return call.fail(QStringLiteral("%1 cannot be \"%2\" with the other settings as they are: it would "
                                        "be stored as \"%3\".")
                             .arg(name, call.arguments.last(), AutomationItemText(item, record)));
    return editing.store() ? Done : Failed;
}

int settingsOf(Call& call) {
    const QStringList verbs{QStringLiteral("list"), QStringLiteral("get"), QStringLiteral("set")};
    const bool named = !verbs.contains(call.argument(0));
    const QStringList words = call.arguments.mid(named ? 1 : 0);
    const qsizetype verb = verbs.indexOf(words.value(0));
    if (verb < 0 || words.size() != verb + 1)
        return call.wrong(QStringLiteral("After the file, if any, comes list, get ITEM, or set ITEM VALUE."));
    if (const auto status = readSettings(call))
        return *status;
    const Settings& settings = call.station.settings;
    if (!named && settings.DefaultDatabase.isEmpty())
        return call.no(QStringLiteral("No automation database is chosen."));
    QString why;
    const std::optional<QString> file = named ? FileArgument(call.argument(0), BareFile::ShellFolder, &why)
                                              : AutomationFolder(settings) + u'\\' + settings.DefaultDatabase;
    if (!file)
        return call.fail(why);
    const QString path = WithDatabaseExtension(*file);
    const AutomationItem* item = FindAutomationItem(words.value(1));
    if (verb > 0 && !item)
        return call.wrong(QStringLiteral("There is no item %1.").arg(words.value(1)));
    KOVADatabaseSettings& record = call.station.automation;
    if (verb == 2)
        OpenUserHistory(call.station.users);
    AutomationEditing editing(record, settings, call.station.users);
    if (DatabaseInformation found; GetDatabaseInformation(path, &found, false) == 0 && found.Type != KOVAType)
        return wrongType(call, found);
    if (!editing.open(path))
        return FileLength(path) <= 0 ? call.no(QStringLiteral("There is no database %1.").arg(path)) : Failed;
    if (verb == 2)
        return setItem(call, *item, editing, record);
    if (verb == 1) {
        call.output.value("value", AutomationItemText(*item, record));
        return Done;
    }
    QJsonArray records;
    for (const AutomationItem& each : AutomationItems())
        records += itemRecord(each, record);
    call.output.records(records, {{"item", "Item"}, {"value", "Value"}});
    return Done;
}

} // namespace

CommandRows AutomationCommands() {
    return {
        {"automation show", "", "Show how this workstation uses the automation player", show},
        Changing({"automation set", "KEY VALUE",
                  "Change one of these settings; values as they are shown, or numbers", set}),
        {"automation list", "", "List the automation databases of the data location", list},
        Changing({"automation choose", "DATABASE",
                  "Make a database of the data location this workstation's, and bring it up to date",
                  choose}),
        Changing({"automation clear", "", "Leave this workstation without an automation database", clear}),
        Changing({"automation settings", "[DATABASE] list|get|set [ITEM] [VALUE]",
                  "List, print or set the settings of an automation database, this workstation's own "
                  "where no file is named; values as the window shows them",
                  settingsOf},
                 [](const Call& call) { return call.arguments.contains(QStringLiteral("set")); }),
    };
}

} // namespace tolvex::ctl
