// Short forms for declaring settings rows; used by the row tables only.
#pragma once

#include "core/settings/SettingsTable.h"
#include "core/settings/SystemColours.h" // IWYU pragma: export

namespace tolvex {

// The forms that settings are set in.
inline constexpr const char* AudioSetup = "frmAudioSetup";
inline constexpr const char* AudiowallSetup = "frmAudioWallSetup";
inline constexpr const char* AutomationSetup = "frmKOVASetup";
inline constexpr const char* FileLocations = "frmFileLocations";
inline constexpr const char* RippingSettings = "frmRippingSettings";
inline constexpr const char* TransferSetup = "frmOpalSetup";
inline constexpr const char* WorkstationSetup = "frmLinkMeshSetup";
inline constexpr const char* DisplayOptions = "frmDisplayOptions";
inline constexpr const char* DateTimeSetup = "frmDateTimeSetup";

constexpr SettingRow RowOfKind(SettingKind kind, SettingRow::At at, const char* section, const char* key,
                               const char* help) {
    SettingRow row;
    row.section = section;
    row.key = key;
    row.kind = kind;
    row.help = help;
    row.at = at;
    return row;
}

constexpr SettingRow NumberRow(SettingKind kind, SettingRow::At at, const char* section, const char* key,
                               qint32 fallback, const char* help) {
    SettingRow row = RowOfKind(kind, at, section, key, help);
    row.defaultNumber = fallback;
    if (kind == SettingKind::Flag)
        return row.range(-1, 1);
    return kind == SettingKind::Word ? row.range(INT16_MIN, INT16_MAX) : row;
}

constexpr SettingRow TextRow(SettingKind kind, SettingRow::At at, const char* section, const char* key,
                             const char* fallback, const char* help) {
    SettingRow row = RowOfKind(kind, at, section, key, help);
    row.defaultText = fallback;
    return row;
}

template<auto member>
constexpr SettingRow Flag(const char* section, const char* key, qint32 fallback, const char* help) {
    return NumberRow(SettingKind::Flag, Member<member>, section, key, fallback, help);
}
template<auto member>
constexpr SettingRow Word(const char* section, const char* key, qint32 fallback, const char* help) {
    return NumberRow(SettingKind::Word, Member<member>, section, key, fallback, help);
}
template<auto member>
constexpr SettingRow Number(const char* section, const char* key, qint32 fallback, const char* help) {
    return NumberRow(SettingKind::Number, Member<member>, section, key, fallback, help);
}
template<auto member>
constexpr SettingRow Colour(const char* section, const char* key, qint32 fallback, const char* help) {
    return NumberRow(SettingKind::Colour, Member<member>, section, key, fallback, help);
}
template<auto member>
constexpr SettingRow Text(const char* section, const char* key, const char* fallback, const char* help) {
    return TextRow(SettingKind::Text, Member<member>, section, key, fallback, help);
}

} // namespace tolvex
