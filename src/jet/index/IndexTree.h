// A tree of index entries on pages. An entry is a key (KeyEncoding.h) and the pointer of a row; entries are
// ordered by their bytes, including the pointer, so all are different although keys may be equal.
//
// A tree object holds no state except where the tree lies and, as a hint, the leaf that grew at its end:
// every call works on the pages as they are, so several objects on one tree, and a rollback of the pager, are
// harmless. Pages are checked when they are read; an invalid page throws ReadVerification. Routines that
// change the tree run inside a Changing of the pager.
#pragma once

#include "jet/index/IndexPage.h"
#include "jet/page/UsageMap.h"

namespace jet {

struct IndexPath;

class IndexTree {
public:
    // `root`: the page that stays the root for life. `table`: the table's definition page, which every page
    // of the tree names. `pages`: the map of the tree's pages.
    IndexTree(Pager& pager, PageNumber root, PageNumber table, UsageMap pages)
        : pager_(&pager)
        , root_(root)
        , table_(table)
        , pages_(pages) {}

    Pager& pager() const { return *pager_; }
    PageNumber root() const { return root_; }
    PageNumber table() const { return table_; }
    const UsageMap& pages() const { return pages_; }

    // Makes an empty tree: the root is written as an empty leaf and put into the map.
    void create();

    // Whether some entry has exactly this key. Cost: one page per level.
    bool contains(KeyView key) const;
    // The same, and the place for an entry with this key, for insertAt().
    bool find(KeyView key, IndexPath& place) const;

    // Adds an entry; uniqueness is the caller's business. An entry that already exists throws
    // ReadVerification. Throws RecordTooLarge for a key above MaximumKeyLength. Cost: one page per level, of
    // which only the leaf is changed, in place, unless it must be split.
    void insert(KeyView key, RowPointer row);
    // The same for an entry whose key find() has not found; the tree must be unchanged since.
    void insertAt(IndexPath& place, KeyView key, RowPointer row);
    // Removes an entry; false if there is none. Same cost.
    bool remove(KeyView key, RowPointer row);

private:
    bool insertNear(KeyView entry);

    Pager* pager_;
    PageNumber root_;
    PageNumber table_;
    UsageMap pages_;
    PageNumber near_ = 0; // the leaf at whose end an entry was last added
};

// A place among the entries of a tree. It holds a copy of its entry and finds its place again if the tree has
// changed meanwhile, by anyone: next() after the entry was removed goes to the one that followed it. A step
// allocates no memory once the longest key was read.
class IndexCursor {
public:
    explicit IndexCursor(const IndexTree& tree)
        : tree_(tree) {}

    // Each moves to an entry and returns whether there is one; if not, the cursor has no entry.
    bool first();
    bool last();
    // The first entry whose key is not below `key`; for a key of leading columns: the first that begins with
    // it or comes after.
    bool seekFrom(KeyView key);
    // The first entry whose key is above `key` and does not begin with it.
    bool seekPast(KeyView key);
    // The last entry whose key is below `key`, and the last one that is below it or begins with it.
    bool seekBefore(KeyView key);
    bool seekUpTo(KeyView key);
    // Moves to exactly this entry or, if there is none, between its neighbours (returns false): next() and
    // previous() continue from there, key() and row() are as given.
    bool seekEntry(KeyView key, RowPointer row);

    // Moves to the neighbour. Without an entry they return false, and nothing moves. From the last (first)
    // entry they return false, and the cursor has no entry any more.
    bool next();
    bool previous();

    // Whether it has an entry, or a place between entries.
    bool valid() const { return valid_; }
    // Of the entry; valid until the next move.
    KeyView key() const { return entry_.key(); }
    RowPointer row() const { return entry_.row(); }
    // Whether the entry's key begins with these bytes.
    bool matches(KeyView key) const;

private:
    const std::uint8_t* page(PageNumber number);
    bool take(const std::uint8_t* leaf, PageNumber number, int offset);
    bool stillThere();
    bool forward(PageNumber number, int offset, bool ascending);
    bool backward(PageNumber number, int offset, bool descending);

    IndexTree tree_;
    indexpage::EntryBuffer entry_;
    PageNumber page_ = 0; // where the entry was when it was read; 0: not known
    int offset_ = 0;
    std::uint64_t version_ = 0; // of the pager then; 0: the pager does not count
    bool valid_ = false;
};

} // namespace jet
