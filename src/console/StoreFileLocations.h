// Stores the file locations that the user edited, in the settings and in the ini file or registry key, and
// makes missing folders.
#pragma once

#include <QStringList>

namespace tolvex {

struct Settings;

// `carts` holds the eleven locations. Texts are trimmed, upper-cased and lose one trailing backslash. A
// location that cannot be made keeps its text and is marked unavailable; CreatePath has reported why. An
// empty `iniFile` or `registryKey` is not written. The ini file's keys are written as one replacement. Also
// reads the number of carts from Audwall.ini in the first location. Returns the profile error of the write
// (0: all written), which the form does not show.
int StoreFileLocations(Settings& settings, const QString& data, const QStringList& carts,
                       const QString& iniFile, const QString& registryKey);

} // namespace tolvex
