// Unfinished copies of databases that compactions left which died: "MDB1A2F.TMP" and the like. A compaction
// of this program is tidied up when its database is opened next (jet/Swap.h); these are of other programs, or
// of databases that are no more.
#pragma once

#include <QString>

namespace tolvex {

// Removes those of a folder that begin as a database does, or as one that is not whole, that nobody holds a
// lock on, and that have not changed for a day. Errors are ignored.
void RemoveDeadCopies(const QString& folder);

} // namespace tolvex
