#include "core/exchange/SettingsDocument.h"

#include "core/settings/SettingCheck.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "platform/CodePage.h"
#include "platform/Machine.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace tolvex {

namespace {

const QString formatName = QStringLiteral("tolvex-settings");
constexpr int formatVersion = 1;
// Far more than all declared settings with the most jump buttons there can be.
constexpr qsizetype longestDocument = 64 * 1024 * 1024;
// Longer values are wrapped when another program reads them.
constexpr qsizetype longestStoredText = 65535;
const QString storedName = QStringLiteral("stored");

struct FileName {
    SettingsFile file;
    const char* name;
};
constexpr FileName fileNames[] = {
    {SettingsFile::Local, "local"},
    {SettingsFile::System, "system"},
    {SettingsFile::Audiowall, "audiowall"},
};

QJsonValue typedValue(const StoredSetting& setting) {
    switch (setting.place.row->kind) {
    case SettingKind::Flag:
        return setting.value.toInt() != 0;
    case SettingKind::Word:
    case SettingKind::Number:
    case SettingKind::NumberText:
    case SettingKind::Colour:
        return setting.value.toInt();
    case SettingKind::Date:
        if (const std::optional<double> date = ParseDate(setting.value))
            return FromSerialDate(*date).toString(Qt::ISODate);
        return {};
    default:
        return setting.value;
    }
}

// The value as CheckSettingValue takes it; nothing for a type that no setting of that kind has.
std::optional<QString> textOf(const QJsonValue& value, SettingKind kind) {
    if (value.isBool() && kind == SettingKind::Flag)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (value.isDouble() && std::trunc(value.toDouble()) == value.toDouble() && kind != SettingKind::Date)
        return QString::number(value.toDouble(), 'f', 0);
    if (value.isString())
        return kind == SettingKind::Date ? value.toString().replace(u'T', u' ') : value.toString();
    return std::nullopt;
}

// The typed value, if it fully represents the file's text and would be accepted back.
QJsonValue exportedValue(const StoredSetting& setting) {
    const SettingRow& row = *setting.place.row;
    QJsonValue typed = typedValue(setting);
    const std::optional<QString> text = TextOfDocumentValue(row, typed, nullptr);
    const bool isWhole = row.kind == SettingKind::Text   ? text == setting.value && text == setting.stored
                         : row.kind == SettingKind::Path ? setting.value == setting.stored
                                                         : true;
    if (text && isWhole)
        return typed;
    return QJsonObject{{storedName, setting.stored.value_or(QString())}};
}

// The sections of one file. Derived keys are marked by what they hold; an import recalculates them.
QJsonObject sectionsOf(SettingsFile kind, const QString& file, const QList<StoredSetting>& settings,
                       const Settings& values) {
    QJsonObject sections;
    const auto insert = [&sections](const SettingRow& row, const QString& key, const QJsonValue& value) {
        QJsonObject keys = sections.value(QLatin1String(row.section)).toObject();
        keys.insert(key, value);
        sections.insert(QLatin1String(row.section), keys);
    };
    for (const StoredSetting& setting : settings) {
        const SettingRow& row = *setting.place.row;
        const bool givenOut = row.written && !row.written(values, setting.place.index);
        if (setting.place.file == kind && setting.stored && !givenOut)
            insert(row, setting.key, exportedValue(setting));
    }
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows)
            if (group.file == kind && !row.at)
                if (const std::optional<QString> text = StoredTextOf(row, 0, file))
                    insert(row, QLatin1String(row.key), *text);
    return sections;
}

// Whether a file can hold a text as it is: one line of its characters.
bool isStorable(const QString& text) {
    return text.size() <= longestStoredText && !text.contains(u'\r') && !text.contains(u'\n') &&
           !text.contains(QChar(0)) && platform::FromCodePage(platform::ToCodePage(text)) == text;
}

QString wrongFormat(const QJsonObject& all) {
    if (all.value(QStringLiteral("format")).toString() != formatName)
        return QStringLiteral("The document holds no settings of a workstation");
    if (all.value(QStringLiteral("version")).toInt() != formatVersion)
        return QStringLiteral("The document was written by another version of this program");
    if (!all.value(QStringLiteral("settings")).isObject())
        return QStringLiteral("The document has no \"settings\"");
    return {};
}

// The settings under the name of one file.
void readFile(const FileName& name, const QJsonValue& value, SettingsDocument& document) {
    const QString damaged = QStringLiteral("The document is damaged: \"%1\" is not a group of settings");
    if (!value.isObject() && !value.isUndefined())
        document.problem = damaged.arg(QLatin1String(name.name));
    const QJsonObject sections = value.toObject();
    for (auto section = sections.begin(); section != sections.end(); ++section) {
        if (!section.value().isObject())
            document.problem = damaged.arg(section.key());
        const QJsonObject keys = section.value().toObject();
        for (auto key = keys.begin(); key != keys.end(); ++key)
            document.entries.append({name.file, section.key(), key.key(), key.value()});
    }
}

} // namespace

QByteArray ExportSettings(const SettingsFiles& files) {
    const QList<StoredSetting> settings = ReadStoredSettings(files);
    const Settings values = LoadFrom(files);
    QJsonObject byFile;
    QJsonObject paths;
    for (const FileName& name : fileNames) {
        const QString& file = files.of(name.file);
        const QJsonObject sections =
            file.isEmpty() ? QJsonObject() : sectionsOf(name.file, file, settings, values);
        if (sections.isEmpty())
            continue;
        byFile.insert(QLatin1String(name.name), sections);
        paths.insert(QLatin1String(name.name), ProfilePath(file));
    }
    const QJsonObject document{{QStringLiteral("format"), formatName},
                               {QStringLiteral("version"), formatVersion},
                               {QStringLiteral("computer"), platform::ComputerName()},
                               {QStringLiteral("files"), paths},
                               {QStringLiteral("settings"), byFile}};
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

SettingsDocument ReadSettingsDocument(const QByteArray& bytes) {
    SettingsDocument document;
    if (bytes.size() > longestDocument) {
        document.problem = QStringLiteral("The document is too large to hold settings");
        return document;
    }
    QJsonParseError error;
    const QJsonObject all = QJsonDocument::fromJson(bytes, &error).object();
    document.problem = error.error == QJsonParseError::NoError
                           ? wrongFormat(all)
                           : QStringLiteral("The document cannot be read: %1 at byte %2")
                                 .arg(error.errorString())
                                 .arg(error.offset);
    if (!document.problem.isEmpty())
        return document;
    QJsonObject byFile = all.value(QStringLiteral("settings")).toObject();
    for (const FileName& name : fileNames)
        readFile(name, byFile.take(QLatin1String(name.name)), document);
    document.unknown = byFile.keys();
    return document;
}

std::optional<QString> TextOfDocumentValue(const SettingRow& row, const QJsonValue& value, QString* why) {
    QString reason = QStringLiteral("a value of that kind cannot be stored");
    std::optional<QString> text;
    if (const QJsonValue stored = value.toObject().value(storedName); stored.isString()) {
        if (isStorable(stored.toString())) {
            text = row.kind == SettingKind::Path ? TidyLocation(stored.toString()) : stored.toString();
            reason = CheckSettingValue(row, stored.toString(), &reason)
                         ? QString()
                         : reason + QStringLiteral("; it is taken as it stands");
        }
    } else if (const std::optional<QString> given = textOf(value, row.kind)) {
        text = CheckSettingValue(row, *given, &reason);
        if (text)
            reason.clear();
    }
    if (why)
        *why = reason;
    return text;
}

} // namespace tolvex
