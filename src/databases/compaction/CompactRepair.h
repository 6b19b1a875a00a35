// Compacts and repairs a database file. The old file stays beside it under a numbered name.
#pragma once

#include "jet/Compact.h"

#include <QString>

namespace tolvex {

// Rewrites a file through the engine's compaction, which also rescues what can be read of a damaged one, and
// keeps the old file as "<name>-0001.BAK", or the next free number. `fileName` empty: the user picks the file
// if `withDialog`, starting in `initialFolder`. Unless `silent` the user is asked first, sees the progress,
// may stop it, and is told of success. The database stays locked from before it is read until the new file is
// in its place; at any moment the old or the new file is there under its name. True if the file was
// rewritten; otherwise nothing was changed. `lost` gets what could not be rescued. Cost: one pass over the
// file.
bool CompactRepairDatabase(const QString& fileName, bool withDialog, const QString& initialFolder,
                           bool silent, const jet::OnLoss& lost = {});

} // namespace tolvex
