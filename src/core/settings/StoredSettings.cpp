#include "core/settings/StoredSettings.h"

#include "core/settings/SettingCheck.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"

#include <QMap>

namespace tolvex {

namespace {

bool fail(QString* why, const QString& reason) {
    if (why)
        *why = reason;
    return false;
}

bool hasOlderKey(const SettingRow& row, int index, const QString& file) {
    return row.oldKey && platform::ProfileKeyExists(QLatin1String(row.oldSection),
                                                    QLatin1String(row.oldKey) +
                                                        (row.count ? QString::number(index) : QString()),
                                                    file);
}

} // namespace

const QString& SettingsFiles::of(SettingsFile file) const {
    switch (file) {
    case SettingsFile::System:
        return system;
    case SettingsFile::Audiowall:
        return audiowall;
    default:
        return local;
    }
}

QString SystemIniIn(const QString& dataLocation) {
    return dataLocation.trimmed().isEmpty() ? QString() : dataLocation + QStringLiteral("\\TLVX_SYS.INI");
}

QString AudiowallIniIn(const QString& firstPart) {
    return firstPart.trimmed().isEmpty() ? QString() : firstPart + QStringLiteral("\\Audwall.ini");
}

SettingsFiles FilesInForce(const Settings& values) {
    // Without a data location and a name of its own, the station's file would lie in the root of some drive.
    const bool nowhere = values.DataLocation.trimmed().isEmpty() && values.SystemIniFile == u"\\TLVX_SYS.INI";
    return {values.LocalIniFile, nowhere ? QString() : values.SystemIniFile,
            AudiowallIniIn(values.CartPartTable[1].Location)};
}

QString WhatMakesFileKnown(SettingsFile file) {
    return file == SettingsFile::System ? QStringLiteral("set the data location")
                                        : QStringLiteral("set the first cart location");
}

Settings LoadFrom(const SettingsFiles& files) {
    Settings values;
    for (const SettingGroup& group : AllSettings()) {
        const QString& file = files.of(group.file);
        if (file.isEmpty())
            continue;
        LoadRows(group.rows, {file}, values);
        if (group.rows.data() == AudioWallSizeRows.data())
            SizeJumpCartButtons(values);
    }
    return values;
}

std::optional<QString> StoredTextOf(const SettingRow& row, int index, const QString& file) {
    const QString section = QLatin1String(row.section);
    const QString key = SettingKey(row, index);
    if (!platform::ProfileKeyExists(section, key, file))
        return std::nullopt;
    return platform::ProfileText(section, key, {}, file, INT_MAX);
}

QList<StoredSetting> ReadStoredSettings(const SettingsFiles& files) {
    Settings values = LoadFrom(files);
    QList<StoredSetting> list;
    for (const SettingGroup& group : AllSettings()) {
        const QString& file = files.of(group.file);
        if (file.isEmpty())
            continue;
        for (const SettingRow& row : group.rows) {
            const int count = row.at ? SettingCount(row, values) : 0;
            for (int entry = 1; entry <= count; ++entry) {
                const int index = row.count ? entry : 0;
                StoredSetting setting;
                setting.place = {&row, index, group.file};
                setting.key = SettingKey(row, index);
                setting.value = MemberText(row, index, values);
                setting.defaultValue =
                    row.kind == SettingKind::Date ? QString() : DefaultText(row, index, values);
                setting.stored = StoredTextOf(row, index, file);
                if (!setting.stored && hasOlderKey(row, index, file))
                    setting.stored = setting.value;
                list.append(setting);
            }
        }
    }
    return list;
}

QList<StoredChange> DerivedChanges(const QString& localIni, const Settings& before, const Settings& after,
                                   const QList<const SettingRow*>& wanted) {
    QList<StoredChange> changes;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            if (row.at)
                continue;
            const std::optional<QString> stored = StoredTextOf(row, 0, localIni);
            const std::optional<QString> text = row.written(after, 0);
            const bool follows = stored && text != row.written(before, 0);
            if (text && text != stored && (follows || wanted.contains(&row)))
                changes.append({&row, QLatin1String(row.key), *text});
        }
    return changes;
}

bool SetStoredSetting(const SettingsFiles& files, const QString& section, const QString& key,
                      const QString& value, QString* why, int* error) {
    if (error)
        *error = platform::ProfileOk;
    const QString name = u'[' + section + QStringLiteral("] ") + key;
    const SettingPlace place = FindSetting(section, key);
    if (!place)
        return fail(why, name + QStringLiteral(" is not a setting that is known"));
    const SettingRow& row = *place.row;
    if (!row.at)
        return fail(why, name + QStringLiteral(" follows from other settings and cannot be set"));
    const QString& file = files.of(place.file);
    if (file.isEmpty())
        return fail(why, name + QStringLiteral(" has no file yet: ") + WhatMakesFileKnown(place.file));
    const Settings before = LoadFrom(files);
    if (place.index > SettingCount(row, before))
        return fail(why, name + QStringLiteral(" has a number above the last one"));
    QString reason;
    const std::optional<QString> text = CheckSettingValue(row, value, &reason);
    if (!text)
        return fail(why, name + QStringLiteral(": ") + reason);

    platform::ProfileBatch batch(file);
    batch.put(QLatin1String(row.section), SettingKey(row, place.index), *text);
    if (place.file == SettingsFile::Local) {
        Settings after = before;
        PutEntry(row, place.index, *text, after);
        for (const StoredChange& change : DerivedChanges(file, before, after))
            batch.put(QLatin1String(change.row->section), change.key, change.text);
    }
    const int failed = batch.commit();
    if (error)
        *error = failed;
    return failed == platform::ProfileOk ||
           fail(why, name + QStringLiteral(": ") + ProfileErrorText(failed, ProfilePath(file)));
}

QList<SettingDifference> DiffSettings(const QString& firstIni, const QString& secondIni) {
    QMap<QString, QString> second;
    QList<SettingDifference> differences;
    const auto nameOf = [](const StoredSetting& setting) {
        return QLatin1String(setting.place.row->section) + u'\n' + setting.key;
    };
    const QList<StoredSetting> secondSettings = ReadStoredSettings({secondIni, {}, {}});
    for (const StoredSetting& setting : secondSettings)
        second.insert(nameOf(setting), setting.value.isNull() ? QStringLiteral("") : setting.value);
    for (const StoredSetting& setting : ReadStoredSettings({firstIni, {}, {}})) {
        const QString other = second.take(nameOf(setting));
        if (other.isNull() || other != setting.value)
            differences.append({QLatin1String(setting.place.row->section), setting.key,
                                setting.value.isNull() ? QStringLiteral("") : setting.value, other});
    }
    for (const StoredSetting& setting : secondSettings)
        if (second.contains(nameOf(setting)))
            differences.append(
                {QLatin1String(setting.place.row->section), setting.key, {}, second.value(nameOf(setting))});
    return differences;
}

QString ProfileErrorText(int error, const QString& file) {
    const char* reason = "it cannot be written";
    switch (error) {
    case platform::ProfileOk:
        return {};
    case platform::ProfileFileNotFound:
    case platform::ProfilePathNotFound:
        reason = "its folder is not there";
        break;
    case platform::ProfileAccessDenied:
        reason = "it may not be written";
        break;
    case platform::ProfileSharingViolation:
        reason = "another program holds it";
        break;
    case platform::ProfileDiskFull:
        reason = "the disk is full";
        break;
    case platform::ProfileInvalidName:
        reason = "that is not the name of a file";
        break;
    default:
        break;
    }
    return QStringLiteral("%1 was not changed: %2 (error %3)").arg(file, QLatin1String(reason)).arg(error);
}

} // namespace tolvex
