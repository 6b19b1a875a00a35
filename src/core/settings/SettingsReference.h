// Builds the reference page of the settings (docs/settings.md) from the rows that the program works from.
#pragma once

#include "core/settings/SettingsTable.h"

namespace tolvex {

// Markdown; a test compares it with the page in docs/.
QString SettingsReference();

// Words for a kind, a range and a default, for the page and the settings commands.
QString SettingKindName(const SettingRow& row);
QString SettingRangeText(const SettingRow& row);
QString SettingDefaultNote(const SettingRow& row);

} // namespace tolvex
