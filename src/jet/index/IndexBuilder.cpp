#include "jet/index/IndexBuilder.h"

#include "jet/base/Damage.h"

namespace jet {

using namespace indexpage;

IndexBuilder::IndexBuilder(const IndexTree& tree)
    : tree_(tree)
    , map_(tree.pages()) {}

bool IndexBuilder::add(KeyView entry) {
    bool isNew = true;
    if (leaf_.count() > 0) {
        const KeyView last = leaf_[leaf_.count() - 1];
        const std::size_t shared = SharedLength(last, entry);
        if (shared == entry.size() || (shared < last.size() && last[shared] > entry[shared]))
            Damaged(tree_.root(), "is to be the root of an index whose entries are out of order");
        isNew = last.size() != entry.size() || shared < entry.size() - RowLength;
    }
    ++entries_;
    distinct_ += isNew ? 1 : 0;
    leaf_.add(entry);
    if (leaf_.bytes.size() <= Capacity || Fits(leaf_, {0, leaf_.count()}, true))
        return isNew;
    // The entry starts the next leaf.
    leaf_.removeLast();
    const PageNumber page = page_ != 0 ? page_ : allocate();
    page_ = allocate();
    writeLeaf(page, page_);
    leaf_.clear();
    leaf_.add(entry);
    return isNew;
}

void IndexBuilder::finish() {
    if (page_ == 0) {
        writeLeaf(tree_.root(), 0);
        return;
    }
    writeLeaf(page_, 0);
    for (int level = 1; buildLevel(level); ++level) {
    }
}

PageNumber IndexBuilder::allocate() {
    const PageNumber page = tree_.pager().allocate();
    map_.add(page);
    return page;
}

void IndexBuilder::writeLeaf(PageNumber page, PageNumber next) {
    std::uint8_t* bytes = tree_.pager().edit(page);
    Format(bytes, {.table = tree_.table(), .previous = previous_, .next = next});
    WriteEntries(bytes, leaf_, {0, leaf_.count()});
    previous_ = page;
    if (leaf_.count() > 0)
        children_.addReference(leaf_[leaf_.count() - 1], page);
}

// Builds the nodes above children_, which become the children of the next level. False: there was only one,
// the root.
bool IndexBuilder::buildLevel(int level) {
    Entries parents;
    const std::size_t count = children_.count();
    const bool root = Fits(children_, {0, count - 1}, false);
    PageNumber previous = 0;
    PageNumber page = root ? tree_.root() : allocate();
    for (std::size_t first = 0; first < count;) {
        // As many children as fit, the last of them without an entry; but no node has only one child.
        std::size_t taken = 2;
        while (first + taken < count && Fits(children_, {first, taken}, false))
            ++taken;
        if (first + taken + 1 == count)
            --taken;
        const KeyView last = children_[first + taken - 1];
        const PageNumber next = first + taken < count ? allocate() : 0;
        std::uint8_t* bytes = tree_.pager().edit(page);
        Format(bytes, {false, level, tree_.table(), previous, next, ChildOf(last)});
        WriteEntries(bytes, children_, {first, taken - 1});
        parents.addReference(last.first(last.size() - ChildLength), page);
        first += taken;
        previous = page;
        page = next;
    }
    children_ = std::move(parents);
    return !root;
}

} // namespace jet
