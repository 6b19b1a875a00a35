// Checks the integrity of one index tree.
#pragma once

#include "jet/index/IndexTree.h"

#include <functional>
#include <string>

namespace jet {

// One fault of a tree.
struct IndexFault {
    PageNumber page = 0;
    std::string reason;
};

// Walks a whole tree and reports every violation: kinds and owners of pages, levels, free bytes, marks and
// prefixes, the order of entries, separators equal to the last entry below them, neighbours, and that the map
// lists exactly the tree's pages. `visit` gets every readable entry, in order; it may be empty. Returns the
// pages of the tree. Bounded by the number of pages, whatever they hold.
std::vector<PageNumber> CheckIndex(const IndexTree& tree, const std::function<void(IndexFault)>& report,
                                   const std::function<void(KeyView key, RowPointer row)>& visit);

} // namespace jet
