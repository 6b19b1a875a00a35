// Takes the file locations that the user edited: stores them in the settings and in the ini file or registry
// key, and makes the folders that are missing.
#pragma once

#include <QStringList>

namespace tolvex {

struct Settings;

// `carts` holds the eleven locations. Texts are trimmed, upper-cased and lose one trailing backslash. A
// location that cannot be made keeps its text and is marked unavailable; CreatePath has said why. An empty
// `iniFile` or `registryKey` is not written. The ini file's keys go down as one replacement. Also reads the
// number of carts from Audwall.ini in the first location. The profile error of the write (0: all went down),
// which the form does not show.
int StoreFileLocations(Settings& settings, const QString& data, const QStringList& carts,
                       const QString& iniFile, const QString& registryKey);

} // namespace tolvex
