// Checks what may be stored for a setting.
#pragma once

#include "core/settings/SettingsTable.h"

namespace tolvex {

// The text that stores `value` for a row, or nothing, with the end of a sentence in *why, if its kind or
// range forbids it. Flags may be given as 0, 1, -1, true, false, on, off, yes, no and are stored as 0 or 1;
// colours in hexadecimal (0x00FF00). Locations are tidied (core/text/PathNames.h).
std::optional<QString> CheckSettingValue(const SettingRow& row, const QString& value, QString* why);

// Why a text cannot be the value of any key: it has characters that an ini file cannot hold. The end of a
// sentence; empty if it can.
QString StoredTextFault(const QString& text);

} // namespace tolvex
