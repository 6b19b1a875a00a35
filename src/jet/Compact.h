// Compaction: a new file with everything that can be read from an old one. Rows are in primary key order,
// pages are full, indexes are rebuilt, deleted data is gone. It also repairs a damaged file: every readable
// row is kept, and everything that could not be saved is reported.
#pragma once

#include "jet/base/Storage.h"
#include "jet/maintenance/CompactPages.h"

namespace jet {

// Reads `source` and makes `target`, which must not exist; on return it is complete and
// flushed, and the caller puts it in place. On any error the target is removed; the source is
// never changed. Throws what opening throws (FileLocked if another program uses the source),
// CannotUpdateReadOnly for a file with an index in an unknown sort order, DiskFull, DiskIo. A
// file in the older format is converted to the present one; everything that is not converted is
// reported, except properties of columns. Cost: one pass over the source, two for tables whose
// rows are not in primary key order, and a sort of the keys of one table at a time; memory is
// bounded, since keys beyond a limit (ExternalSort.h) are sorted in a temporary file.
CompactResult CompactDatabase(Storage& storage, const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost);
CompactResult CompactDatabase(const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost);

// The same from an open database into a new, empty file, which is complete and flushed on return.
class Database;
CompactResult CompactInto(Database& source, StorageFile& target, const OnLoss& lost);

} // namespace jet
