// The reference page of the settings (docs/settings.md), made from the rows that the program works from.
#pragma once

#include "core/settings/SettingsTable.h"

namespace tolvex {

// Markdown; a test compares the page in docs/ with it.
QString SettingsReference();

// Words for a kind, a range and a default, as the page and the settings commands show them.
QString SettingKindName(const SettingRow& row);
QString SettingRangeText(const SettingRow& row);
QString SettingDefaultNote(const SettingRow& row);

} // namespace tolvex
