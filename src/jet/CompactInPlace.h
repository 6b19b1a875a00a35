// Compacts a database in place: the compacted copy replaces
// it, and the old file is kept under another name.
#pragma once

#include "jet/Compact.h"

namespace jet {

struct InPlaceNames {
    std::string copy;                       // name of the file that is made beside the database
    std::function<std::string(int)> backup; // paths for keeping the old file: the first free one, from 1 on
};

// Like CompactDatabase(). The database is held exclusively from before it is read until the copy is in its
// place, so that nobody's changes are lost; its name always leads to the old or the new file, whenever the
// process ends. Owner, group and mode stay. A link to the database stays one. Throws CannotUpdateReadOnly for
// a file that may not be written; after any error nothing has changed.
CompactResult CompactInPlace(Storage& storage, const std::string& path, const InPlaceNames& names,
                             const std::u16string& password, const OnLoss& lost);

} // namespace jet
