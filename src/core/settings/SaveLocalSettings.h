// Writing the local ini file.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;

// Writes every local key from its setting, in the fixed order, as one replacement of the file: it holds all
// the old values or all the new ones, and every line of others. Does nothing for an empty path. Also tidies
// locations in the settings. A file that cannot be written is not reported; the result is the platform's
// error number, 0 on success. Cost: one read, one write and one flush of the file; no write if nothing
// changed.
int SaveLocalSettings(Settings& values, const QString& iniFile);

} // namespace tolvex
