#include "jet/base/Damage.h"
#include "jet/index/IndexPath.h"

#include <cstring>

namespace jet {

using namespace indexpage;

namespace {

const char* const outOfOrder = "has index entries out of order";

} // namespace

// A leaf, checked.
const std::uint8_t* IndexCursor::page(PageNumber number) {
    const std::uint8_t* page = ReadIndexPage(tree_, number);
    if (!IsLeaf(page))
        Damaged(number, "is no leaf of the index");
    return page;
}

// Makes the entry at a place of a leaf the cursor's own.
bool IndexCursor::take(const std::uint8_t* leaf, PageNumber number, int offset) {
    CopyEntry(leaf, number, offset, entry_);
    page_ = number;
    offset_ = offset;
    version_ = tree_.pager().version();
    return valid_ = true;
}

// Takes the entry at a place of a leaf, or the first one of the leaves after it. `ascending`: the walk comes
// from an entry and must reach one above it, so that a walk in a circle ends.
bool IndexCursor::forward(PageNumber number, int offset, bool ascending) {
    const std::uint8_t* leaf = page(number);
    for (PageNumber steps = 0; offset >= Used(leaf); ++steps) {
        number = Next(leaf);
        if (number == 0)
            return valid_ = false;
        if (steps > tree_.pager().pageCount())
            Damaged(number, "lies on a circle of index pages");
        leaf = page(number);
        offset = Prefix(leaf);
    }
    if (ascending && CompareEntry(leaf, offset, entry_.view()) <= 0)
        Damaged(number, outOfOrder);
    return take(leaf, number, offset);
}

// The same for the entry before a place.
bool IndexCursor::backward(PageNumber number, int offset, bool descending) {
    const std::uint8_t* leaf = page(number);
    for (PageNumber steps = 0; offset <= Prefix(leaf); ++steps) {
        number = Previous(leaf);
        if (number == 0)
            return valid_ = false;
        if (steps > tree_.pager().pageCount())
            Damaged(number, "lies on a circle of index pages");
        leaf = page(number);
        offset = Used(leaf);
    }
    offset = Before(leaf, offset);
    if (descending && CompareEntry(leaf, offset, entry_.view()) >= 0)
        Damaged(number, outOfOrder);
    return take(leaf, number, offset);
}

bool IndexCursor::first() {
    return seekFrom({});
}

bool IndexCursor::last() {
    return seekUpTo({});
}

bool IndexCursor::seekFrom(KeyView key) {
    const Reading reading(tree_.pager());
    IndexPath path;
    Descend(tree_, key, false, path);
    return forward(path.leaf().page, path.leaf().offset, false);
}

bool IndexCursor::seekPast(KeyView key) {
    const Reading reading(tree_.pager());
    IndexPath path;
    Descend(tree_, key, true, path);
    return forward(path.leaf().page, path.leaf().offset, false);
}

bool IndexCursor::seekBefore(KeyView key) {
    const Reading reading(tree_.pager());
    IndexPath path;
    Descend(tree_, key, false, path);
    return backward(path.leaf().page, path.leaf().offset, false);
}

bool IndexCursor::seekUpTo(KeyView key) {
    const Reading reading(tree_.pager());
    IndexPath path;
    Descend(tree_, key, true, path);
    return backward(path.leaf().page, path.leaf().offset, false);
}

bool IndexCursor::seekEntry(KeyView key, RowPointer row) {
    const Reading reading(tree_.pager());
    const EntryBuffer entry(key, row);
    IndexPath path;
    const std::uint8_t* leaf = Descend(tree_, entry.view(), false, path);
    page_ = path.leaf().page;
    offset_ = path.leaf().offset;
    version_ = 0;
    const bool found = HoldsEntry(leaf, offset_, entry.view());
    std::memcpy(entry_.bytes, entry.bytes, entry.size);
    entry_.size = entry.size;
    valid_ = true;
    return found;
}

// Whether the entry is still at its old place. If pages were changed since, its page may have been freed and
// may belong to another index of the table, so the map is checked first.
bool IndexCursor::stillThere() {
    if (version_ != 0 && version_ == tree_.pager().version())
        return true;
    if (!tree_.pages().contains(page_))
        return false;
    const std::uint8_t* leaf = ReadIndexPage(tree_, page_);
    return IsLeaf(leaf) && HoldsEntry(leaf, offset_, entry_.view());
}

bool IndexCursor::next() {
    if (!valid_)
        return false;
    const Reading reading(tree_.pager());
    if (stillThere())
        return forward(page_, End(page(page_), offset_), true);
    IndexPath path;
    Descend(tree_, entry_.view(), true, path);
    return forward(path.leaf().page, path.leaf().offset, true);
}

bool IndexCursor::previous() {
    if (!valid_)
        return false;
    const Reading reading(tree_.pager());
    if (stillThere())
        return backward(page_, offset_, true);
    IndexPath path;
    Descend(tree_, entry_.view(), false, path);
    return backward(path.leaf().page, path.leaf().offset, true);
}

bool IndexCursor::matches(KeyView key) const {
    return valid_ && entry_.size >= key.size() + RowLength &&
           std::memcmp(entry_.bytes, key.data(), key.size()) == 0;
}

} // namespace jet
