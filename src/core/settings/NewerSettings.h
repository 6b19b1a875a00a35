// Settings that several workstations keep in one file: another one may store some while a window shows them.
#pragma once

#include "core/settings/SettingsTable.h"

#include <QStringList>

namespace tolvex {

// Compares what the file holds `now` with what a window has `shown`, for rows without an index, and brings
// both up to date: `shown` becomes what is stored now, and in `wanted`, what the window holds, each value
// that its user left alone follows. Gives the help lines of the rows that somebody else changed; none when
// the window shows what is stored.
QStringList TakeNewer(std::span<const SettingRow* const> rows, Settings now, Settings& shown,
                      Settings& wanted);

// What the user is told of such rows before anything is written.
QString NewerSettingsText(const QStringList& changed);

} // namespace tolvex
