// Compaction: a new file with everything that can be read of an old one. Rows lie in the order of the primary
// key, pages are full, indexes are built anew, nothing is left of what was deleted. It is the repair of a
// damaged file, too: every row that can be read arrives, and what could not be saved is told.
#pragma once

#include "jet/base/Storage.h"
#include "jet/maintenance/CompactPages.h"

namespace jet {

// Reads `source` and makes `target`, which must not exist; on return it is complete and flushed, to be put in
// place by the caller. On any error the target is removed; the source is never changed. Throws what opening
// throws (FileLocked when another program uses the source), CannotUpdateReadOnly for a file with an index in
// an order that is not known here, DiskFull, DiskIo. A file in the older format becomes one of the present
// format; what is not taken over from it is told, but for the properties of columns. Cost: one pass over the
// source, two of tables whose rows do not lie in the order of their primary key, and a sort of the keys of
// one table at a time; memory stays flat, since keys beyond a limit (ExternalSort.h) are sorted by way of a
// temporary file.
CompactResult CompactDatabase(Storage& storage, const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost);
CompactResult CompactDatabase(const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost);

// The same of an open database into a new, empty file, which is whole and flushed when it returns.
class Database;
CompactResult CompactInto(Database& source, StorageFile& target, const OnLoss& lost);

} // namespace jet
