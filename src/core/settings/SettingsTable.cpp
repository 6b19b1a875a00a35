#include "core/settings/SettingsTable.h"

namespace tolvex {

const std::vector<SettingGroup>& AllSettings() {
    static const std::vector<SettingGroup> groups = {
        {SettingsFile::Local, ConfigNameRows},        {SettingsFile::Local, WorkstationRows},
        {SettingsFile::Local, LocationRows},          {SettingsFile::Local, WrittenOnlyRows},
        {SettingsFile::Local, DisplayRows},           {SettingsFile::Local, AudioWallSizeRows},
        {SettingsFile::Local, JumpButtonRows},        {SettingsFile::Local, AudioWallRows},
        {SettingsFile::Local, PlayerAssignmentRows},  {SettingsFile::Local, SoundCardRows},
        {SettingsFile::Local, PlayerColourRows},      {SettingsFile::Local, PlayerRows},
        {SettingsFile::Local, RecordingRows},         {SettingsFile::Local, VolumeRows},
        {SettingsFile::Local, SweptVolumeRows},       {SettingsFile::Local, AudioRows},
        {SettingsFile::Local, CartDisplayRows},       {SettingsFile::Local, AutomationRows},
        {SettingsFile::Local, AutomationControlRows}, {SettingsFile::System, NetworkRows},
        {SettingsFile::System, TransferRows},         {SettingsFile::System, UpdateNoticeRows},
        {SettingsFile::Audiowall, AudiowallFileRows}, {SettingsFile::Audiowall, AudiowallLocatedRows},
    };
    return groups;
}

SettingPlace FindSetting(const QString& section, const QString& key) {
    qsizetype digits = key.size();
    while (digits > 0 && key[digits - 1] >= u'0' && key[digits - 1] <= u'9')
        --digits;
    const QStringView stem = QStringView(key).left(digits);
    const QStringView number = QStringView(key).mid(digits);
    const bool numbered = !number.isEmpty() && number[0] != u'0' && number.size() < 6;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            if (section.compare(QLatin1String(row.section), Qt::CaseInsensitive) != 0)
                continue;
            const QLatin1String name(row.key);
            if (!row.count && key.compare(name, Qt::CaseInsensitive) == 0)
                return {&row, 0, group.file};
            if (row.count && numbered && stem.compare(name, Qt::CaseInsensitive) == 0 &&
                number.toInt() <= row.highestIndex)
                return {&row, number.toInt(), group.file};
        }
    return {};
}

const SettingRow& RowAt(SettingRow::At at) {
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows)
            if (row.at == at)
                return row;
    qFatal("no row of the settings table fills this member");
}

QString SettingKey(const SettingRow& row, int index) {
    const QString name = QLatin1String(row.key);
    return row.count ? name + QString::number(index) : name;
}

int SettingCount(const SettingRow& row, const Settings& values) {
    return row.count ? row.count(values) : 1;
}

} // namespace tolvex
