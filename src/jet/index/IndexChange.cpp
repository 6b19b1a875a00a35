#include "jet/index/IndexChange.h"

#include "jet/base/Damage.h"

#include <cstring>

namespace jet {

using namespace indexpage;

namespace {

// Where a page's entries are split: into groups that fit a page each, the last of which stays. For each group
// of a node except the last, the last entry moves up and its child becomes the group's tail.
void partEntries(const Entries& entries, Range range, bool leaf, bool last, bool appended,
                 std::vector<Range>& groups) {
    const std::size_t kept = leaf || last ? range.count : range.count - 1;
    if (Fits(entries, {range.first, kept}, leaf)) {
        groups.push_back(range);
        return;
    }
    const std::size_t least = leaf ? 1 : 2; // on the left
    const std::size_t most = range.count - (leaf || last ? 1 : 2);
    std::size_t cut = most;
    if (!appended) {
        const std::size_t middle =
            (entries.start(range.first) + entries.ends[range.first + range.count - 1]) / 2;
        cut = least;
        while (cut < most && entries.ends[range.first + cut] <= middle)
            ++cut;
    }
    partEntries(entries, {range.first, cut}, leaf, false, false, groups);
    partEntries(entries, {range.first + cut, range.count - cut}, leaf, last, false, groups);
}

KeyView withoutChild(KeyView entry) {
    return entry.first(entry.size() - ChildLength);
}

} // namespace

PageNumber IndexChange::allocate() {
    const PageNumber page = pager().allocate();
    map_.add(page);
    return page;
}

void IndexChange::free(PageNumber page) {
    map_.remove(page);
    pager().release(page);
}

// Unlinks a page from the list of its level.
void IndexChange::unlink(PageNumber page) {
    const Head head = ReadHead(read(page));
    if (head.previous != 0) {
        read(head.previous);
        SetNext(pager().edit(head.previous), head.next);
    }
    if (head.next != 0) {
        read(head.next);
        SetPrevious(pager().edit(head.next), head.previous);
    }
}

void IndexChange::insert(KeyView entry) {
    Entries added;
    added.add(entry);
    insertAll(path_.depth - 1, added);
}

// Adds consecutive entries at the place of a step. The path ends there afterwards and may be another one if
// the page was split.
void IndexChange::insertAll(int depth, const Entries& added) {
    const Step at = step(depth);
    const std::uint8_t* page = read(at.page);
    if (added.count() == 1 && Fits(added, {0, 1}, true)) {
        if (Insert(pager().edit(at.page), at.offset, added[0]))
            return;
        page = read(at.page);
    }
    Entries entries;
    ReadEntries(page, at.page, Prefix(page), at.offset, entries);
    for (std::size_t i = 0; i < added.count(); ++i)
        entries.add(added[i]);
    const bool appended = at.offset >= Used(page) && Next(page) == 0 && added.count() == 1;
    ReadEntries(page, at.page, at.offset, Used(page), entries);
    layOut(depth, entries, appended);
}

// Writes these entries in place of a page's own, using as many new pages on its left as necessary.
void IndexChange::layOut(int depth, const Entries& entries, bool appended) {
    const bool leaf = IsLeaf(read(step(depth).page));
    std::vector<Range> groups;
    partEntries(entries, {0, entries.count()}, leaf, true, appended, groups);
    if (groups.size() > 1 && depth == 0) {
        moveRootDown();
        depth = 1;
    }
    const PageNumber own = step(depth).page;
    Head head = ReadHead(read(own));
    const PageNumber before = head.previous;
    Entries references;
    for (std::size_t i = 0; i + 1 < groups.size(); ++i) {
        Range group = groups[i];
        const KeyView last = entries[group.first + group.count - 1];
        Head left = head;
        left.next = 0; // set by the page that follows
        if (!leaf) {
            left.tail = ChildOf(last);
            --group.count;
        }
        const PageNumber page = allocate();
        std::uint8_t* bytes = pager().edit(page);
        Format(bytes, left);
        WriteEntries(bytes, entries, group);
        if (head.previous != 0) {
            read(head.previous);
            SetNext(pager().edit(head.previous), page);
        }
        head.previous = page;
        references.addReference(leaf ? last : withoutChild(last), page);
    }
    std::uint8_t* bytes = pager().edit(own);
    Format(bytes, head);
    WriteEntries(bytes, entries, groups.back());
    if (head.previous != before)
        SetNext(pager().edit(head.previous), own);
    if (references.count() > 0)
        insertAll(depth - 1, references);
}

// Moves the root's content to a new page, which becomes the root's only child.
void IndexChange::moveRootDown() {
    if (path_.depth >= IndexPath::MaximumDepth)
        Damaged(tree_.root(), "is the root of an index with too many levels");
    const PageNumber page = allocate();
    std::uint8_t content[PageSize];
    std::memcpy(content, read(tree_.root()), PageSize);
    std::memcpy(pager().edit(page), content, PageSize);
    Head head = ReadHead(content);
    Format(pager().edit(tree_.root()),
           {.leaf = false, .level = head.level + 1, .table = head.table, .tail = page});
    for (int depth = path_.depth; depth > 0; --depth)
        step(depth) = step(depth - 1);
    ++path_.depth;
    step(1).page = page;
    step(0) = {tree_.root(), 0};
}

void IndexChange::entryRemoved(KeyView entry) {
    if (IsEmpty(read(path_.leaf().page)))
        dropLeaf();
    fixSeparator(entry);
}

void IndexChange::dropLeaf() {
    const PageNumber page = path_.leaf().page;
    unlink(page);
    free(page);
    dropChild(path_.depth - 2);
}

// Removes the reference to a child that is gone, at the place of a step.
void IndexChange::dropChild(int depth) {
    const Step at = step(depth);
    const std::uint8_t* page = read(at.page);
    if (IsEmpty(page))
        Damaged(at.page, "has no index entries");
    if (at.offset < Used(page)) {
        Remove(pager().edit(at.page), at.offset);
    } else {
        const int last = Before(page, Used(page));
        const PageNumber child = Child(page, at.page, last);
        std::uint8_t* changed = pager().edit(at.page);
        SetTail(changed, child);
        Remove(changed, last);
    }
    if (IsEmpty(read(at.page)))
        resolveLoneTail(depth);
}

// A node without entries: its only child goes to a neighbour, and the node is freed.
void IndexChange::resolveLoneTail(int depth) {
    if (depth == 0)
        return replaceRoot(Tail(read(step(0).page)));
    const PageNumber parent = step(depth - 1).page;
    const std::uint8_t* page = read(parent);
    if (IsEmpty(page))
        Damaged(parent, "has no index entries");
    if (step(depth - 1).offset > Prefix(page))
        joinLeft(depth);
    else
        joinRight(depth);
    // A parent that was split has entries.
    if (IsEmpty(read(parent)))
        resolveLoneTail(depth - 1);
}

void IndexChange::joinLeft(int depth) {
    const PageNumber node = step(depth).page;
    const PageNumber child = Tail(read(node));
    Step& up = step(depth - 1);
    const std::uint8_t* parent = read(up.page);
    const int place = Before(parent, up.offset);
    const PageNumber left = Child(parent, up.page, place);
    EntryBuffer entry;
    CopyEntry(parent, up.page, place, entry);
    std::uint8_t* changed = pager().edit(up.page);
    Remove(changed, place);
    // The place that referred to the node now refers to its neighbour.
    up.offset = IsEmpty(changed) ? 0 : place;
    SetChild(changed, up.offset, left);
    unlink(node);
    free(node);
    const std::uint8_t* target = read(left);
    if (IsLeaf(target))
        Damaged(left, "is a leaf among nodes");
    entry.addChild(Tail(target));
    step(depth) = {left, Used(target)};
    SetTail(pager().edit(left), child);
    Entries added;
    added.add(entry.view());
    insertAll(depth, added);
}

void IndexChange::joinRight(int depth) {
    const PageNumber node = step(depth).page;
    const PageNumber child = Tail(read(node));
    Step& up = step(depth - 1);
    const std::uint8_t* parent = read(up.page);
    if (up.offset >= Used(parent))
        Damaged(up.page, "has no index entries");
    EntryBuffer entry;
    CopyEntry(parent, up.page, up.offset, entry);
    entry.addChild(child);
    Remove(pager().edit(up.page), up.offset);
    parent = read(up.page);
    up.offset = Prefix(parent);
    const PageNumber right = Child(parent, up.page, up.offset);
    unlink(node);
    free(node);
    const std::uint8_t* target = read(right);
    if (IsLeaf(target))
        Damaged(right, "is a leaf among nodes");
    step(depth) = {right, Prefix(target)};
    Entries added;
    added.add(entry.view());
    insertAll(depth, added);
}

// The root takes over the content of its only child.
void IndexChange::replaceRoot(PageNumber child) {
    if (child == tree_.root())
        Damaged(child, "is met twice in the index");
    std::uint8_t content[PageSize];
    std::memcpy(content, read(child), PageSize);
    SetPrevious(content, 0);
    SetNext(content, 0);
    std::memcpy(pager().edit(tree_.root()), content, PageSize);
    free(child);
}

// After `entry` was removed from the end of a leaf: if a node has an entry equal to it, that becomes the
// entry that is now the last below it.
void IndexChange::fixSeparator(KeyView entry) {
    PageNumber number = tree_.root();
    for (path_.depth = 0; path_.depth < IndexPath::MaximumDepth;) {
        const std::uint8_t* page = read(number);
        if (IsLeaf(page))
            return;
        const int offset = Find(page, entry, false);
        step(path_.depth++) = {number, offset};
        const PageNumber child = Child(page, number, offset);
        if (!HoldsEntry(page, offset, entry)) {
            number = child;
            continue;
        }
        PageNumber below = child;
        const std::uint8_t* last = read(below);
        for (int depth = path_.depth; !IsLeaf(last); ++depth) {
            if (depth >= IndexPath::MaximumDepth)
                Damaged(below, "lies too deep in the index");
            below = Tail(last);
            last = read(below);
        }
        if (IsEmpty(last))
            Damaged(below, "is an empty leaf of the index");
        EntryBuffer separator;
        CopyEntry(last, below, Before(last, Used(last)), separator);
        separator.addChild(child);
        std::uint8_t* changed = pager().edit(number);
        Remove(changed, offset);
        step(path_.depth - 1).offset = IsEmpty(changed) ? 0 : offset;
        return insert(separator.view());
    }
}

} // namespace jet
