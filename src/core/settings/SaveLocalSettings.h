// Writing the local ini file.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;

// Writes every local key from its setting, in the fixed order, as one replacement of the file: it holds all
// the old values or all the new ones, and every line that is not ours. Nothing for an empty path. Locations
// are tidied in the settings too. A file that cannot be written is not
// reported; the result is the platform's error number, 0 when all is well. Cost: one read, one write and one
// flush of the file; no write when nothing changed.
int SaveLocalSettings(Settings& values, const QString& iniFile);

} // namespace tolvex
