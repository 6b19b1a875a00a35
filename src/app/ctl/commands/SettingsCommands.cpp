// The declared settings of this workstation: lists, changes, compares, exports and imports them.
#include "app/ctl/Commands.h"

#include "core/exchange/SettingsImport.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingsReference.h"
#include "platform/files/Files.h"
#include "station/StartUp.h"

namespace tolvex::ctl {

namespace {

const QString noIni = QStringLiteral("No local ini file was chosen.");

// The value in its JSON type.
QJsonValue typed(SettingKind kind, const QString& text) {
    switch (kind) {
    case SettingKind::Flag:
        return text.toInt() != 0;
    case SettingKind::Word:
    case SettingKind::Number:
    case SettingKind::NumberText:
    case SettingKind::Colour:
        return text.toInt();
    default:
        return text;
    }
}

QJsonObject recordOf(const StoredSetting& setting) {
    const SettingRow& row = *setting.place.row;
    return {{QStringLiteral("section"), QLatin1String(row.section)},
            {QStringLiteral("key"), setting.key},
            {QStringLiteral("value"), typed(row.kind, setting.value)},
            {QStringLiteral("default"), typed(row.kind, setting.defaultValue)},
            {QStringLiteral("kind"), SettingKindName(row)},
            {QStringLiteral("help"), QString::fromUtf8(row.help)}};
}

int list(Call& call) {
    if (!call.session.read())
        return call.fail(noIni);
    const QString section = call.argument(0);
    QJsonArray records;
    for (const StoredSetting& setting : ReadStoredSettings(FilesInForce(call.station.settings)))
        if (section.isEmpty() ||
            section.compare(QLatin1String(setting.place.row->section), Qt::CaseInsensitive) == 0)
            records += recordOf(setting);
    if (records.isEmpty())
        return call.no(QStringLiteral("No setting is declared in section %1.").arg(section));
    call.output.records(records, {{"section", "Section"},
                                  {"key", "Key"},
                                  {"value", "Value"},
                                  {"default", "Default"},
                                  {"kind", "Kind"}});
    return Done;
}

// The setting that the first two arguments name; nothing if there is none.
std::optional<StoredSetting> named(const Call& call) {
    for (const StoredSetting& setting : ReadStoredSettings(FilesInForce(call.station.settings)))
        if (call.argument(0).compare(QLatin1String(setting.place.row->section), Qt::CaseInsensitive) == 0 &&
            call.argument(1).compare(setting.key, Qt::CaseInsensitive) == 0)
            return setting;
    return std::nullopt;
}

int get(Call& call) {
    if (!call.session.read())
        return call.fail(noIni);
    const std::optional<StoredSetting> setting = named(call);
    if (!setting)
        return call.no(
            QStringLiteral("There is no setting %2 in section %1; \"tolvexctl settings list\" lists all.")
                .arg(call.argument(0), call.argument(1)));
    if (call.output.json())
        call.output.record(recordOf(*setting), {});
    else
        call.output.value("value", setting->value);
    return Done;
}

int set(Call& call) {
    if (!call.session.read())
        return call.fail(noIni);
    const SettingPlace place = FindSetting(call.argument(0), call.argument(1));
    QString why;
    if (place && place.row->at && !CheckSettingValue(*place.row, call.argument(2), &why))
        return call.wrong(QStringLiteral("[%1] %2: %3").arg(call.argument(0), call.argument(1), why));
    int error = 0;
    if (!SetStoredSetting(FilesInForce(call.station.settings), call.argument(0), call.argument(1),
                          call.argument(2), &why, &error))
        return place ? call.fail(why, error) : call.no(why);
    if (call.output.json() && call.session.read())
        if (const std::optional<StoredSetting> setting = named(call))
            call.output.record(recordOf(*setting), {});
    return Done;
}

int diff(Call& call) {
    const QString files[] = {call.path(0), call.path(1)};
    for (const QString& file : files)
        if (!platform::FileExists(ProfilePath(file)))
            return call.fail(QStringLiteral("There is no file %1.").arg(ProfilePath(file)),
                             platform::FileNotFound);
    QJsonArray records;
    const auto side = [](const QString& text) { return text.isNull() ? QJsonValue() : QJsonValue(text); };
    for (const SettingDifference& difference : DiffSettings(files[0], files[1]))
        records += QJsonObject{{QStringLiteral("section"), difference.section},
                               {QStringLiteral("key"), difference.key},
                               {QStringLiteral("first"), side(difference.first)},
                               {QStringLiteral("second"), side(difference.second)}};
    if (call.output.json() || !records.isEmpty())
        call.output.records(
            records, {{"section", "Section"}, {"key", "Key"}, {"first", "First"}, {"second", "Second"}});
    return records.isEmpty() ? Done : No;
}

int exportAll(Call& call) {
    if (!call.session.read())
        return call.fail(noIni);
    const QByteArray document = ExportSettings(FilesInForce(call.station.settings));
    if (call.arguments.isEmpty()) {
        call.output.line(document.trimmed());
        return Done;
    }
    if (const int error = platform::ReplaceWholeFile(call.path(0), document))
        return call.fail(QStringLiteral("%1 could not be written (error %2).").arg(call.path(0)).arg(error),
                         error);
    if (call.output.json())
        call.output.value("file", call.path(0));
    return Done;
}

const char* fileWord(SettingsFile file) {
    return file == SettingsFile::Local ? "local" : file == SettingsFile::System ? "system" : "audiowall";
}

QJsonArray recordsOf(const ImportPlan& plan) {
    QJsonArray changes;
    for (const ImportPlan::File& file : plan.files)
        for (const ImportPlan::Change& change : file.changes)
            changes += QJsonObject{
                {QStringLiteral("file"), QLatin1String(fileWord(file.kind))},
                {QStringLiteral("path"), ProfilePath(file.path)},
                {QStringLiteral("section"), QLatin1String(change.row->section)},
                {QStringLiteral("key"), change.key},
                {QStringLiteral("before"), change.before ? QJsonValue(*change.before) : QJsonValue()},
                {QStringLiteral("after"), change.after}};
    return changes;
}

void tellPlan(Call& call, const ImportPlan& plan, bool applied) {
    const QJsonArray changes = recordsOf(plan);
    if (call.output.json()) {
        call.output.record({{QStringLiteral("changes"), changes},
                            {QStringLiteral("folders"), QJsonArray::fromStringList(plan.folders)},
                            {QStringLiteral("unknown"), QJsonArray::fromStringList(plan.unknown)},
                            {QStringLiteral("remarks"), QJsonArray::fromStringList(plan.remarks)},
                            {QStringLiteral("refused"), QJsonArray::fromStringList(plan.refused)},
                            {QStringLiteral("backups"), QJsonArray::fromStringList(plan.backups)},
                            {QStringLiteral("applied"), applied}},
                           {});
        return;
    }
    call.output.records(
        changes,
        {{"path", "File"}, {"section", "Section"}, {"key", "Key"}, {"before", "Before"}, {"after", "After"}});
    for (const QString& folder : plan.folders)
        call.output.note(QStringLiteral("A new folder: ") + folder);
    for (const QString& key : plan.unknown)
        call.output.say(QStringLiteral("Not known, left out: ") + key);
    for (const QString& remark : plan.remarks)
        call.output.say(remark);
    for (const QString& backup : plan.backups)
        call.output.note(QStringLiteral("The file as it was: ") + backup);
}

int import(Call& call) {
    if (!call.session.read())
        return call.fail(noIni);
    const QString file = call.path(0);
    const std::optional<QByteArray> document = platform::ReadWholeFile(file, 64 << 20);
    if (!document)
        return call.fail(QStringLiteral("%1 could not be read.").arg(file));
    const QString localIni = call.station.settings.LocalIniFile;
    ImportPlan plan = PlanImport(*document, localIni, NamedSystemIniFile(call.station));
    const bool applied = plan.usable() && !call.has("--preview") && ApplyImport(plan);
    if (plan.problem.isEmpty() || !plan.files.isEmpty())
        tellPlan(call, plan, applied);
    int status = Done;
    for (const QString& reason : plan.refused)
        status = call.fail(reason);
    return plan.problem.isEmpty() ? status : call.fail(plan.problem, plan.error);
}

} // namespace

CommandRows SettingsCommands() {
    return {
        {"settings list", "[SECTION]", "List the declared settings with value, default and kind", list},
        {"settings get", "SECTION KEY", "Print the value of a setting, or its default", get},
        Changing({"settings set", "SECTION KEY VALUE", "Change a setting; invalid values are refused", set}),
        ForIniFiles({"settings diff", "A.INI B.INI",
                     "List the differences between two workstations; 0 if there are none", diff}),
        Changing({"settings export", "[FILE]", "Write all stored settings as one document", exportAll},
                 [](const Call& call) { return !call.arguments.isEmpty(); }),
        Changing({"settings import",
                  "FILE",
                  "Import such a document, all of it or nothing, after copying the files",
                  import,
                  {{"--preview", nullptr, "only show what it would change and what it does not know"}}},
                 [](const Call& call) { return !call.has("--preview"); }),
    };
}

} // namespace tolvex::ctl
