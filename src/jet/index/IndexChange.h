// Changes of an index tree that affect more than one page: splits pages that overflow, removes pages that
// became empty, and keeps the entries of nodes true. Two rules hold after each change:
//
// - a node's entry is the last entry of the child's subtree, and the rightmost child has none;
// - no node is left with its rightmost child alone.
#pragma once

#include "jet/index/IndexPath.h"

namespace jet {

class IndexChange {
public:
    IndexChange(IndexTree tree, const IndexPath& path)
        : tree_(tree)
        , path_(path) {}

    // Adds an entry at the end of the path, in a page where it does not fit.
    void insert(KeyView entry);
    // Completes the removal of `entry` from the leaf at the end of the path, whose last entry it was.
    void entryRemoved(KeyView entry);

private:
    using Step = IndexPath::Step;

    void insertAll(int depth, const indexpage::Entries& added);
    void layOut(int depth, const indexpage::Entries& entries, bool appended);
    void moveRootDown();
    void dropLeaf();
    void dropChild(int depth);
    void resolveLoneTail(int depth);
    void joinLeft(int depth);
    void joinRight(int depth);
    void replaceRoot(PageNumber child);
    void fixSeparator(KeyView entry);

    Pager& pager() const { return tree_.pager(); }
    Step& step(int depth) { return path_.steps[depth]; }
    const std::uint8_t* read(PageNumber page) const { return ReadIndexPage(tree_, page); }
    PageNumber allocate();
    void free(PageNumber page);
    void unlink(PageNumber page);

    IndexTree tree_;
    IndexPath path_;
    UsageMap map_ = tree_.pages();
};

} // namespace jet
