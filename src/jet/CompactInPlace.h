// Compaction of a database where it lies: the compacted copy takes its place, and the old file is kept under
// another name.
#pragma once

#include "jet/Compact.h"

namespace jet {

struct InPlaceNames {
    std::string copy;                       // name of the file that is made beside the database
    std::function<std::string(int)> backup; // paths to keep the old file under: the first free one, from 1 on
};

// As CompactDatabase(). The database is held alone from before it is read until the copy is in its place, so
// that nobody's changes are lost, and it is there under its name at every moment, the old or the new one,
// whenever the process ends. Owner, group and mode stay. A link to the database stays one. Throws
// CannotUpdateReadOnly for a file that may not be written; after any error nothing has changed.
CompactResult CompactInPlace(Storage& storage, const std::string& path, const InPlaceNames& names,
                             const std::u16string& password, const OnLoss& lost);

} // namespace jet
