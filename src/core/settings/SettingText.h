// One setting straight from its file and into it, for what does not wait for the next load or save of all.
#pragma once

#include "core/settings/SettingsTable.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

// The text of a row's key; `fallback` when the file lacks it. `index` from 1 for an indexed row. `buffer` of
// the read, its ending zero included; 0: the row's.
QString SettingText(const SettingRow& row, const QString& file, const QString& fallback = {}, int index = 0,
                    int buffer = 0);
// Writes it and gives the error of the write (platform/profile/ProfileFile.h), 0 for none.
int WriteSettingText(const SettingRow& row, const QString& text, const QString& file, int index = 0);
// One of several that are written together.
void PutSettingText(platform::ProfileBatch& batch, const SettingRow& row, const QString& text, int index = 0);

} // namespace tolvex
