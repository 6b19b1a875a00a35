// Checks that an operating system of the old consumer line has a file cache that suits audio playback. No
// other system has that setting.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;

// `registryPath`, below the local machine hive, remembers the answer; nothing happens when it is empty.
// `verbose` says what was found even when nothing has to be done, and asks again after a No.
void CheckFileCache(Settings& settings, const QString& registryPath, bool verbose);

} // namespace tolvex
