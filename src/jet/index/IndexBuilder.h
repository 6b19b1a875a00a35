// Builds a whole tree at once: bottom up, from sorted entries. Much faster than entry by entry, and the tree
// is as small as possible. Used for a new index on a filled table and for compacted files.
#pragma once

#include "jet/index/IndexTree.h"

namespace jet {

// Fills an empty tree with sorted entries: every leaf is full.
class IndexBuilder {
public:
    // The tree was just created or cleared.
    explicit IndexBuilder(const IndexTree& tree);
    // `entry`: key and row pointer. False: its key equals that of the previous entry. Throws ReadVerification
    // if the entry is not above that one.
    bool add(KeyView entry);
    // Writes the rest. Call once; nothing can be added afterwards.
    void finish();

    std::uint32_t entryCount() const { return entries_; }
    std::uint32_t distinctKeys() const { return distinct_; }

private:
    PageNumber allocate();
    void writeLeaf(PageNumber page, PageNumber next);
    bool buildLevel(int level);

    IndexTree tree_;
    UsageMap map_;
    indexpage::Entries leaf_;     // of the leaf that is being filled
    indexpage::Entries children_; // last entry of each finished page of a level, and the page
    PageNumber page_ = 0;         // of the leaf that is being filled; 0: it may be the root
    PageNumber previous_ = 0;     // the finished leaf before
    std::uint32_t entries_ = 0;
    std::uint32_t distinct_ = 0;
};

} // namespace jet
