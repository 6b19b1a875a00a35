// One setting straight from or to its file, for what cannot wait for the next load or save of all settings.
#pragma once

#include "core/settings/SettingsTable.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

// The text of a row's key; `fallback` if the file lacks it. `index` from 1 for an indexed row. `buffer` of
// the read, with its terminating zero; 0: the row's.
QString SettingText(const SettingRow& row, const QString& file, const QString& fallback = {}, int index = 0,
                    int buffer = 0);
// Writes it and returns the error of the write (platform/profile/ProfileFile.h), 0 for none.
int WriteSettingText(const SettingRow& row, const QString& text, const QString& file, int index = 0);
// Adds one of several that are written together.
void PutSettingText(platform::ProfileBatch& batch, const SettingRow& row, const QString& text, int index = 0);

} // namespace tolvex
