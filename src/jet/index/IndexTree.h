// A tree of index entries on pages. An entry is a key (KeyEncoding.h) and the pointer of a row; entries are
// ordered by their bytes, the pointer being part of them, so all are different although keys may be equal.
//
// A tree object holds no state but where the tree lies and, as a hint, the leaf that grew at its end: every
// call works on the pages as they are, so several objects on one tree, and a rollback of the pager, do no
// harm. Pages are checked as they are met; a page that does not hold what it should throws ReadVerification.
// What changes the tree is called inside a Changing of the pager.
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

    // Whether some entry has exactly this key. Cost: one page for each level.
    bool contains(KeyView key) const;
    // The same, and where an entry with this key would go, for insertAt().
    bool find(KeyView key, IndexPath& place) const;
    // Whether an entry with this key belongs to another row than this one.
    bool containsOther(KeyView key, RowPointer row) const;

    // Adds an entry; Uniqueness is the caller's affair;
    // an entry that is there already throws ReadVerification. Throws RecordTooLarge for a key above
    // MaximumKeyLength. Cost: one page for each level, of which only the leaf is changed, in place, unless it
    // has to be split.
    void insert(KeyView key, RowPointer row);
    // The same for an entry whose key find() has not found; the tree was not changed since.
    void insertAt(IndexPath& place, KeyView key, RowPointer row);
    // Takes an entry out; false if there is no such entry. Same cost.
    bool remove(KeyView key, RowPointer row);

private:
    bool insertNear(KeyView entry);

    Pager* pager_;
    PageNumber root_;
    PageNumber table_;
    UsageMap pages_;
    PageNumber near_ = 0; // the leaf at the end of which an entry was added last
};

// A place among the entries of a tree. It holds a copy of its entry and finds its place again when the tree
// was changed meanwhile, by whom ever: next() after the entry was removed goes to the one that followed it.
// No memory is taken for a step once the longest key was met.
class IndexCursor {
public:
    explicit IndexCursor(const IndexTree& tree)
        : tree_(tree) {}

    // Each goes to an entry and says whether there is one; if not, the cursor has no entry.
    bool first();
    bool last();
    // The first entry whose key is not below `key`; with a key of leading columns: the first that begins with
    // it or comes after.
    bool seekFrom(KeyView key);
    // The first entry whose key is above `key` and does not begin with it.
    bool seekPast(KeyView key);
    // The last entry whose key is below `key`, and the last one that is below it or begins with it.
    bool seekBefore(KeyView key);
    bool seekUpTo(KeyView key);
    // To exactly this entry, or if there is none, between its neighbours (gives false): next() and previous()
    // go on from there, key() and row() are as given.
    bool seekEntry(KeyView key, RowPointer row);

    // To the neighbour. Without an entry they give false, and nothing moves. From the last (first) entry they
    // give false, and the cursor has no entry any more.
    bool next();
    bool previous();

    // Whether it has an entry, or a place between entries.
    bool valid() const { return valid_; }
    // Of the entry; until the next move.
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
    PageNumber page_ = 0; // where the entry lay when it was met; 0: not known
    int offset_ = 0;
    std::uint64_t version_ = 0; // of the pager then; 0: the pager does not count
    bool valid_ = false;
};

} // namespace jet
