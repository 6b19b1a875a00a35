#include "jet/index/IndexTree.h"

#include "jet/base/Damage.h"
#include "jet/index/IndexChange.h"
#include "jet/index/IndexPath.h"
#include "jet/index/KeyEncoding.h"

namespace jet {

using namespace indexpage;

static_assert(MaximumKeyLength + RowLength == MaximumEntry);

const std::uint8_t* Descend(const IndexTree& tree, KeyView target, bool past, IndexPath& path) {
    PageNumber number = tree.root();
    for (path.depth = 0; path.depth < IndexPath::MaximumDepth;) {
        const std::uint8_t* page = ReadIndexPage(tree, number);
        const int offset = Find(page, target, past);
        path.steps[path.depth++] = {number, offset};
        if (IsLeaf(page))
            return page;
        number = Child(page, number, offset);
    }
    Damaged(tree.root(), "is the root of an index with too many levels");
}

void IndexTree::create() {
    Format(pager_->edit(root_), {.table = table_});
    pages_.add(root_);
}

bool IndexTree::contains(KeyView key) const {
    IndexPath path;
    return find(key, path);
}

bool IndexTree::find(KeyView key, IndexPath& path) const {
    const Reading reading(*pager_);
    const std::uint8_t* page = Descend(*this, key, false, path);
    int offset = path.leaf().offset;
    // After the end of a leaf the entry can only be in the next one, and only if a node written by another
    // engine has an entry above the last one of its child.
    for (PageNumber steps = 0; offset >= Used(page) && Next(page) != 0; ++steps) {
        const PageNumber next = Next(page);
        if (steps > pager_->pageCount())
            Damaged(next, "lies on a circle of index pages");
        page = ReadIndexPage(*this, next);
        if (!IsLeaf(page))
            Damaged(next, "is no leaf of the index");
        offset = Prefix(page);
    }
    return HoldsKey(page, offset, key);
}

// Adds an entry to the leaf of the last addition, if it still belongs to this tree and the entry's place is
// between two of its entries, or at an end of the tree.
bool IndexTree::insertNear(KeyView entry) {
    if (near_ == 0 || !pages_.contains(near_))
        return false;
    const std::uint8_t* page = ReadIndexPage(*this, near_);
    if (!IsLeaf(page) || IsEmpty(page))
        return false;
    const int offset = Find(page, entry, false);
    if ((offset <= Prefix(page) && Previous(page) != 0) || (offset >= Used(page) && Next(page) != 0) ||
        HoldsEntry(page, offset, entry))
        return false;
    return Insert(pager_->edit(near_), offset, entry);
}

void IndexTree::insert(KeyView key, RowPointer row) {
    const EntryBuffer entry(key, row);
    if (insertNear(entry.view()))
        return;
    IndexPath path;
    const std::uint8_t* page = Descend(*this, entry.view(), false, path);
    const IndexPath::Step leaf = path.leaf();
    near_ = leaf.offset >= Used(page) ? leaf.page : 0; // ascending keys will go there again
    if (HoldsEntry(page, leaf.offset, entry.view()))
        Damaged(leaf.page, "has an index entry for this row already");
    if (!Insert(pager_->edit(leaf.page), leaf.offset, entry.view()))
        IndexChange(*this, path).insert(entry.view());
}

// After the end of a leaf, the nodes above decide where the entry goes.
void IndexTree::insertAt(IndexPath& place, KeyView key, RowPointer row) {
    const IndexPath::Step leaf = place.leaf();
    std::uint8_t* page = pager_->edit(leaf.page);
    if (leaf.offset >= Used(page) && Next(page) != 0)
        return insert(key, row);
    const EntryBuffer entry(key, row);
    if (!Insert(page, leaf.offset, entry.view()))
        IndexChange(*this, place).insert(entry.view());
}

bool IndexTree::remove(KeyView key, RowPointer row) {
    const EntryBuffer entry(key, row);
    IndexPath path;
    const std::uint8_t* page = Descend(*this, entry.view(), false, path);
    const IndexPath::Step leaf = path.leaf();
    if (!HoldsEntry(page, leaf.offset, entry.view()))
        return false;
    std::uint8_t* changed = pager_->edit(leaf.page);
    Remove(changed, leaf.offset);
    if (leaf.offset >= Used(changed) && path.depth > 1)
        IndexChange(*this, path).entryRemoved(entry.view());
    return true;
}

} // namespace jet
