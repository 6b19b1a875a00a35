// The declared settings of this workstation: listing, changing one, comparing, keeping and carrying over.
#include "app/ctl/Commands.h"

#include "core/SettingsDocument.h"
#include "core/SettingsReference.h"
#include "core/StoredSettings.h"
#include "platform/Files.h"

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
    if (!LoadWorkstation())
        return call.fail(noIni);
    const QString section = call.argument(0);
    QJsonArray records;
    for (const StoredSetting& setting : ReadStoredSettings(FilesInForce()))
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

int get(Call& call) {
    if (!LoadWorkstation())
        return call.fail(noIni);
    for (const StoredSetting& setting : ReadStoredSettings(FilesInForce())) {
        if (call.argument(0).compare(QLatin1String(setting.place.row->section), Qt::CaseInsensitive) != 0 ||
            call.argument(1).compare(setting.key, Qt::CaseInsensitive) != 0)
            continue;
        if (call.output.json())
            call.output.record(recordOf(setting), {});
        else
            call.output.value("value", setting.value);
        return Done;
    }
    return call.no(
        QStringLiteral("There is no setting %2 in section %1; \"tolvexctl settings list\" tells all.")
            .arg(call.argument(0), call.argument(1)));
}

int set(Call& call) {
    if (!LoadWorkstation())
        return call.fail(noIni);
    const SettingPlace place = FindSetting(call.argument(0), call.argument(1));
    QString why;
    if (place && !CheckSettingValue(*place.row, call.argument(2), &why))
        return call.wrong(why);
    if (!SetStoredSetting(FilesInForce(), call.argument(0), call.argument(1), call.argument(2), &why))
        return place ? call.fail(why) : call.no(why);
    return Done;
}

int diff(Call& call) {
    const QString files[] = {FileArgument(call.argument(0)), FileArgument(call.argument(1))};
    for (const QString& file : files)
        if (!platform::FileExists(ProfilePath(file)))
            return call.fail(QStringLiteral("There is no file %1.").arg(ProfilePath(file)));
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
    if (!LoadWorkstation())
        return call.fail(noIni);
    const QByteArray document = ExportSettings(FilesInForce());
    if (call.arguments.isEmpty()) {
        call.output.line(document.trimmed());
        return Done;
    }
    const QString file = ProfilePath(FileArgument(call.argument(0)));
    if (platform::ReplaceWholeFile(file, document) != platform::NoError)
        return call.fail(QStringLiteral("%1 could not be written.").arg(file));
    return Done;
}

int import(Call& call) {
    if (!LoadWorkstation())
        return call.fail(noIni);
    const QString file = ProfilePath(FileArgument(call.argument(0)));
    const std::optional<QByteArray> document = platform::ReadWholeFile(file, 64 << 20);
    if (!document)
        return call.fail(QStringLiteral("%1 could not be read.").arg(file));
    SettingsImport plan = PlanImport(*document, FilesInForce());
    QJsonArray changes;
    // Keys that only become explicit, with the value they have, are no news.
    for (const SettingsImport::Change& change : plan.changes)
        if (change.before != change.after)
            changes += QJsonObject{{QStringLiteral("section"), QLatin1String(change.place.row->section)},
                                   {QStringLiteral("key"), change.key},
                                   {QStringLiteral("before"), change.before},
                                   {QStringLiteral("after"), change.after}};
    const bool applied = plan.usable() && !call.has("--preview") && ApplyImport(plan, FilesInForce());
    const QJsonObject record{{QStringLiteral("changes"), changes},
                             {QStringLiteral("unknown"), QJsonArray::fromStringList(plan.unknown)},
                             {QStringLiteral("refused"), QJsonArray::fromStringList(plan.refused)},
                             {QStringLiteral("backups"), QJsonArray::fromStringList(plan.backups)},
                             {QStringLiteral("applied"), applied}};
    if (call.output.json()) {
        call.output.record(record, {});
    } else {
        call.output.records(
            changes, {{"section", "Section"}, {"key", "Key"}, {"before", "Before"}, {"after", "After"}});
        for (const QString& key : plan.unknown)
            call.output.say(QStringLiteral("Not known, left out: ") + key);
        for (const QString& backup : plan.backups)
            call.output.note(QStringLiteral("The file as it was: ") + backup);
    }
    for (const QString& reason : plan.refused)
        call.output.say(reason);
    if (!plan.problem.isEmpty())
        return call.fail(plan.problem);
    return plan.refused.isEmpty() ? Done : Failed;
}

} // namespace

CommandRows SettingsCommands() {
    return {
        {"settings list", "[SECTION]", "List the declared settings with value, default and kind", list},
        {"settings get", "SECTION KEY", "Print the value of a setting, its default where it has none", get},
        Changing({"settings set", "SECTION KEY VALUE",
                  "Change a setting; what its kind or range forbids is refused", set}),
        {"settings diff", "A.INI B.INI", "List what differs between two workstations; 0 when nothing does",
         diff},
        Changing({"settings export", "[FILE]", "Write all settings as one document", exportAll},
                 [](const Call& call) { return !call.arguments.isEmpty(); }),
        Changing({"settings import",
                  "FILE",
                  "Apply such a document, keeping a copy of the files as they were",
                  import,
                  {{"--preview", nullptr, "only tell what it would change and what it does not know"}}},
                 [](const Call& call) { return !call.has("--preview"); }),
    };
}

} // namespace tolvex::ctl
