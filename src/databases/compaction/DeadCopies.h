// Unfinished copies of databases ("MDB1A2F.TMP" and the like) from compactions that died. A compaction of
// this program is cleaned up when its database is opened next (jet/pager/Swap.h); these are of other
// programs, or of databases that no longer exist.
#pragma once

#include <QString>

namespace tolvex {

// Removes those in a folder that begin like a database, or like a partial one, that nobody has locked, and
// that have not changed for a day. Errors are ignored.
void RemoveDeadCopies(const QString& folder);

} // namespace tolvex
