// Making a whole tree at once: from below, out of entries in order. Much faster than entry by entry, and the
// tree is as small as can be. What a new index on a filled table and a compacted file are made with.
#pragma once

#include "jet/IndexTree.h"

#include <functional>

namespace jet {

// Entries in any order, to be sorted in memory before they go into a new tree.
class IndexEntries {
public:
    void add(KeyView key, RowPointer row);
    std::size_t size() const { return places_.size(); }
    void sort();
    // After sort(): the first two rows with equal keys, neither of them null throughout as `skip` may say;
    // false if there are none.
    bool findDuplicate(const std::function<bool(KeyView)>& skip, RowPointer& one, RowPointer& other) const;
    KeyView key(std::size_t index) const;
    RowPointer row(std::size_t index) const;

private:
    struct Place {
        std::uint64_t head; // first bytes of the entry, for comparing at once
        std::uint64_t at;   // in bytes_
        std::uint32_t length;
    };
    KeyView entry(const Place& place) const { return {bytes_.data() + place.at, place.length}; }

    Bytes bytes_;
    std::vector<Place> places_;
};

// Fills an empty tree with entries that come in order: every leaf is full.
class IndexBuilder {
public:
    // The tree was just created or cleared.
    explicit IndexBuilder(const IndexTree& tree);
    // Throws ReadVerification if the entry is not above the one before, RecordTooLarge for a key too long.
    void add(KeyView key, RowPointer row);
    // Writes what is left. To be called once; nothing can be added afterwards.
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
