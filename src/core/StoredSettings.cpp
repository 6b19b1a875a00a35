#include "core/StoredSettings.h"

#include "core/Dates.h"
#include "core/PathNames.h"
#include "core/SettingsLoader.h"
#include "platform/CodePage.h"
#include "platform/Paths.h"
#include "platform/ProfileFile.h"

#include <QMap>

namespace tolvex {

namespace {

// Loads all groups of the files given into a record of its own.
Settings loadedFrom(const SettingsFiles& files) {
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

QString quoted(const QString& text) {
    return u'"' + text + u'"';
}

bool fail(QString* why, const QString& reason) {
    if (why)
        *why = reason;
    return false;
}

std::optional<QString> refuse(QString* why, const QString& reason) {
    fail(why, reason);
    return std::nullopt;
}

std::optional<QString> flagText(const QString& value) {
    const QString word = value.toLower();
    for (const char* on : {"1", "true", "on", "yes"})
        if (word == QLatin1String(on))
            return QStringLiteral("1");
    for (const char* off : {"0", "false", "off", "no"})
        if (word == QLatin1String(off))
            return QStringLiteral("0");
    return word == QLatin1String("-1") ? std::optional(word) : std::nullopt;
}

std::optional<qint64> wholeNumber(const QString& value, bool hexadecimal) {
    bool good = false;
    qint64 number = 0;
    if (hexadecimal && value.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        number = static_cast<qint32>(value.mid(2).toUInt(&good, 16));
    else
        number = value.toLongLong(&good, 10);
    return good ? std::optional(number) : std::nullopt;
}

std::optional<QString> checkNumber(const SettingRow& row, const QString& value, QString* why) {
    const std::optional<qint64> number = wholeNumber(value, row.kind == SettingKind::Colour);
    if (!number)
        return refuse(why, quoted(value) + QStringLiteral(" is no whole number"));
    if (*number < row.lowest || *number > row.highest)
        return refuse(
            why, QStringLiteral("%1 lies outside %2 to %3").arg(*number).arg(row.lowest).arg(row.highest));
    return QString::number(*number);
}

std::optional<QString> checkText(const SettingRow& row, const QString& value, QString* why) {
    const QString text = row.kind == SettingKind::Path ? WithoutTrailingBackslash(value) : value;
    const int longest = row.longest ? row.longest : row.buffer - 1;
    if (text.size() > longest)
        return refuse(why, QStringLiteral("the text is longer than %1 characters").arg(longest));
    for (const QChar c : text)
        if (c.unicode() < 0x20)
            return refuse(why, QStringLiteral("the text holds a control character"));
    if (platform::FromCodePage(platform::ToCodePage(text)) != text)
        return refuse(why, QStringLiteral("the text holds a character that the files cannot store"));
    // A reader takes one pair of enclosing quotes off.
    if (text.size() > 1 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\''))
        return refuse(why, QStringLiteral("the text cannot be enclosed in quotes"));
    return text.isNull() ? QStringLiteral("") : text;
}

std::optional<QString> checkDate(const QString& value, QString* why) {
    const std::optional<double> date = ParseDate(value);
    if (!date)
        return refuse(why, quoted(value) + QStringLiteral(" is no date"));
    return DateText(FromSerialDate(*date));
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

SettingsFiles FilesInForce() {
    const Settings& values = settings();
    SettingsFiles files{values.LocalIniFile, values.SystemIniFile, {}};
    if (!values.CartPartTable[1].Location.isEmpty())
        files.audiowall = values.CartPartTable[1].Location + QStringLiteral("\\Audwall.ini");
    return files;
}

QString ProfilePath(const QString& file) {
    const bool bare = !file.contains(u'\\') && !file.contains(u'/') && !file.contains(u':');
    return bare ? platform::WindowsFolder() + u'\\' + file : file;
}

QList<StoredSetting> ReadStoredSettings(const SettingsFiles& files) {
    Settings values = loadedFrom(files);
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
                setting.present = platform::ProfileKeyExists(QLatin1String(row.section), setting.key, file);
                list.append(setting);
            }
        }
    }
    return list;
}

std::optional<QString> CheckSettingValue(const SettingRow& row, const QString& value, QString* why) {
    const QString plain = value.trimmed();
    switch (row.kind) {
    case SettingKind::Flag:
        if (std::optional<QString> flag = flagText(plain))
            return flag;
        return refuse(why, quoted(plain) + QStringLiteral(" is neither on (1) nor off (0)"));
    case SettingKind::Word:
    case SettingKind::Number:
    case SettingKind::NumberText:
    case SettingKind::Colour:
        return checkNumber(row, plain, why);
    case SettingKind::Date:
        return checkDate(plain, why);
    default:
        return checkText(row, plain, why);
    }
}

bool SetStoredSetting(const SettingsFiles& files, const QString& section, const QString& key,
                      const QString& value, QString* why) {
    const QString name = u'[' + section + QStringLiteral("] ") + key;
    const SettingPlace place = FindSetting(section, key);
    if (!place)
        return fail(why, name + QStringLiteral(" is no setting that is known"));
    if (!place.row->at)
        return fail(why, name + QStringLiteral(" follows from other settings and cannot be set"));
    const QString& file = files.of(place.file);
    if (file.isEmpty())
        return fail(why, name + QStringLiteral(" has no file yet: set the first cart location"));
    if (place.index > SettingCount(*place.row, loadedFrom(files)))
        return fail(why, name + QStringLiteral(" has a number above the last one"));
    QString reason;
    const std::optional<QString> text = CheckSettingValue(*place.row, value, &reason);
    if (!text)
        return fail(why, name + QStringLiteral(": ") + reason);
    const int error = platform::WriteProfileText(QLatin1String(place.row->section),
                                                 SettingKey(*place.row, place.index), *text, file);
    return error == platform::ProfileOk || fail(why, ProfileErrorText(error, file));
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
        reason = "that is no name of a file";
        break;
    default:
        break;
    }
    return QStringLiteral("%1 was not changed: %2 (error %3)").arg(file, QLatin1String(reason)).arg(error);
}

} // namespace tolvex
