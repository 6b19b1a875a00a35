#include "core/SettingsDocument.h"

#include "core/Dates.h"
#include "core/SettingsLoader.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Machine.h"
#include "platform/ProfileFile.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace tolvex {

namespace {

const QString formatName = QStringLiteral("tolvex-settings");
constexpr int formatVersion = 1;
// Far more than all declared settings with the most jump buttons there can be.
constexpr qsizetype longestDocument = 64 * 1024 * 1024;

struct FileName {
    SettingsFile file;
    const char* name;
};
constexpr FileName fileNames[] = {
    {SettingsFile::Local, "local"},
    {SettingsFile::System, "system"},
    {SettingsFile::Audiowall, "audiowall"},
};

QJsonValue jsonValue(const StoredSetting& setting) {
    switch (setting.place.row->kind) {
    case SettingKind::Flag:
        return setting.value.toInt() != 0;
    case SettingKind::Word:
    case SettingKind::Number:
    case SettingKind::NumberText:
    case SettingKind::Colour:
        return setting.value.toInt();
    case SettingKind::Date: {
        const std::optional<double> date = ParseDate(setting.value);
        return date ? QJsonValue(FromSerialDate(*date).toString(Qt::ISODate)) : QJsonValue();
    }
    default:
        return setting.value;
    }
}

// The value as CheckSettingValue takes it; nothing for a kind of value that no setting has.
std::optional<QString> textOf(const QJsonValue& value, SettingKind kind) {
    if (value.isBool() && kind == SettingKind::Flag)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (value.isDouble() && std::trunc(value.toDouble()) == value.toDouble() && kind != SettingKind::Date)
        return QString::number(value.toDouble(), 'f', 0);
    if (value.isString())
        return kind == SettingKind::Date ? value.toString().replace(u'T', u' ') : value.toString();
    return std::nullopt;
}

bool meansTheSame(const SettingRow& row, const QString& stored, const QString& given) {
    if (row.kind == SettingKind::Flag)
        return (stored.toInt() != 0) == (given.toInt() != 0);
    return stored == given;
}

// Devices that were given out automatically belong to one machine.
bool isExported(const StoredSetting& setting, bool automaticPlayers) {
    return !(setting.place.row->written && automaticPlayers) &&
           !(setting.place.row->kind == SettingKind::Date && setting.value.isEmpty());
}

bool playersAreAutomatic(const QList<StoredSetting>& settings) {
    for (const StoredSetting& setting : settings)
        if (setting.key == QLatin1String("AutomaticPlayerAssignment"))
            return setting.value.toInt() != 0;
    return false;
}

class Planner {
public:
    Planner(const SettingsFiles& files, SettingsImport& plan)
        : files_(files)
        , plan_(plan) {
        for (const StoredSetting& setting : ReadStoredSettings(files))
            stored_.insert(nameOf(setting.place.file, QLatin1String(setting.place.row->section), setting.key),
                           setting);
    }

    void take(SettingsFile file, const QString& section, const QString& key, const QJsonValue& value) {
        const QString shown = u'[' + section + QStringLiteral("] ") + key;
        const SettingPlace place = FindSetting(section, key);
        if (!place || !place.row->at || place.file != file) {
            plan_.unknown << shown;
            return;
        }
        if (files_.of(file).isEmpty()) {
            plan_.refused << shown + QStringLiteral(": its file is not known yet");
            return;
        }
        QString why = QStringLiteral("a value of that kind cannot be stored");
        const std::optional<QString> given = textOf(value, place.row->kind);
        const std::optional<QString> text =
            given ? CheckSettingValue(*place.row, *given, &why) : std::nullopt;
        if (!text) {
            plan_.refused << shown + QStringLiteral(": ") + why;
            return;
        }
        const StoredSetting now = stored_.value(
            nameOf(file, QLatin1String(place.row->section), SettingKey(*place.row, place.index)));
        if (!now.present || !meansTheSame(*place.row, now.value, *text))
            plan_.changes.append({place, SettingKey(*place.row, place.index), now.value, *text});
    }

private:
    static QString nameOf(SettingsFile file, const QString& section, const QString& key) {
        return QString::number(static_cast<int>(file)) + section + u'\n' + key;
    }

    const SettingsFiles& files_;
    SettingsImport& plan_;
    QMap<QString, StoredSetting> stored_;
};

} // namespace

QByteArray ExportSettings(const SettingsFiles& files) {
    const QList<StoredSetting> stored = ReadStoredSettings(files);
    const bool automaticPlayers = playersAreAutomatic(stored);
    QJsonObject byFile;
    for (const FileName& name : fileNames) {
        QJsonObject sections;
        for (const StoredSetting& setting : stored) {
            if (setting.place.file != name.file || !isExported(setting, automaticPlayers))
                continue;
            const QString section = QLatin1String(setting.place.row->section);
            QJsonObject keys = sections.value(section).toObject();
            keys.insert(setting.key, jsonValue(setting));
            sections.insert(section, keys);
        }
        if (!sections.isEmpty())
            byFile.insert(QLatin1String(name.name), sections);
    }
    QJsonObject document;
    document.insert(QStringLiteral("format"), formatName);
    document.insert(QStringLiteral("version"), formatVersion);
    document.insert(QStringLiteral("computer"), platform::ComputerName());
    document.insert(QStringLiteral("settings"), byFile);
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

SettingsImport PlanImport(const QByteArray& document, const SettingsFiles& files) {
    SettingsImport plan;
    QJsonParseError error;
    const QJsonObject all = document.size() > longestDocument
                                ? QJsonObject()
                                : QJsonDocument::fromJson(document, &error).object();
    if (document.size() > longestDocument) {
        plan.problem = QStringLiteral("The document is too large to hold settings");
    } else if (error.error != QJsonParseError::NoError) {
        plan.problem = QStringLiteral("The document cannot be read: %1 at byte %2")
                           .arg(error.errorString())
                           .arg(error.offset);
    } else if (all.value(QStringLiteral("format")).toString() != formatName) {
        plan.problem = QStringLiteral("The document holds no settings of a workstation");
    } else if (all.value(QStringLiteral("version")).toInt() != formatVersion) {
        plan.problem = QStringLiteral("The document was written by another version of this program");
    }
    if (!plan.problem.isEmpty())
        return plan;
    Planner planner(files, plan);
    const QJsonObject byFile = all.value(QStringLiteral("settings")).toObject();
    for (const FileName& name : fileNames) {
        const QJsonObject sections = byFile.value(QLatin1String(name.name)).toObject();
        for (auto section = sections.begin(); section != sections.end(); ++section) {
            const QJsonObject keys = section.value().toObject();
            for (auto key = keys.begin(); key != keys.end(); ++key)
                planner.take(name.file, section.key(), key.key(), key.value());
        }
    }
    return plan;
}

bool ApplyImport(SettingsImport& plan, const SettingsFiles& files) {
    if (!plan.usable())
        return false;
    const QString stamp = platform::clock().now().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (const FileName& name : fileNames) {
        const QString& file = files.of(name.file);
        platform::ProfileBatch batch(file);
        bool changes = false;
        for (const SettingsImport::Change& change : plan.changes) {
            if (change.place.file != name.file)
                continue;
            batch.put(QLatin1String(change.place.row->section), change.key, change.after);
            changes = true;
        }
        if (!changes)
            continue;
        const QString path = ProfilePath(file);
        if (platform::FileExists(path)) {
            const QString backup = path + u'.' + stamp + QStringLiteral(".bak");
            if (const int error = platform::CopyWholeFile(path, backup); error != platform::NoError) {
                plan.problem =
                    QStringLiteral("%1 could not be copied to %2 (error %3); nothing of it was changed")
                        .arg(path, backup)
                        .arg(error);
                return false;
            }
            plan.backups << backup;
        }
        if (const int error = batch.commit(); error != platform::ProfileOk) {
            plan.problem = ProfileErrorText(error, path);
            return false;
        }
    }
    return true;
}

} // namespace tolvex
