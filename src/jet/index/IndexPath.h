// The path from the root of an index tree to a place in a leaf.
#pragma once

#include "jet/index/IndexTree.h"

namespace jet {

// Steps are initialised when they are taken: a search for one entry need not clear all of them.
struct IndexPath {
    struct Step {
        PageNumber page;
        int offset; // in a node: of the entry whose child is next, or the end for the tail
    };
    // A tree with two children per node that fills the largest file has fewer levels.
    static constexpr int MaximumDepth = 24;

    Step steps[MaximumDepth + 1]; // one spare for when the root is moved down
    int depth = 0;                // number of steps

    Step& leaf() { return steps[depth - 1]; }
};

// A page of the tree, checked.
inline const std::uint8_t* ReadIndexPage(const IndexTree& tree, PageNumber number) {
    const std::uint8_t* page = tree.pager().read(number);
    indexpage::Check(page, number, tree.table());
    return page;
}

// Walks to the first entry that is not below `target` (`past`: that does not begin with it either) and
// returns the leaf; the last step's offset is its end if all its entries are below.
const std::uint8_t* Descend(const IndexTree& tree, KeyView target, bool past, IndexPath& path);

} // namespace jet
