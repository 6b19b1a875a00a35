#include "jet/IndexBuilder.h"

#include "jet/Damage.h"

#include <algorithm>
#include <cstring>

namespace jet {

using namespace indexpage;

namespace {

// The first bytes of an entry as a number that orders like them.
std::uint64_t headOf(KeyView entry) {
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < 8; ++i)
        head = head << 8 | (i < entry.size() ? entry[i] : 0u);
    return head;
}

int compareBytes(KeyView a, KeyView b) {
    const int order = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
    return order != 0 ? order : a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool sameKey(KeyView a, KeyView b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() - RowLength) == 0;
}

RowPointer rowOf(KeyView entry) {
    EntryBuffer buffer;
    std::memcpy(buffer.bytes, entry.data(), entry.size());
    buffer.size = entry.size();
    return buffer.row();
}

} // namespace

void IndexEntries::add(KeyView key, RowPointer row) {
    const EntryBuffer entry(key, row);
    places_.push_back({headOf(entry.view()), bytes_.size(), static_cast<std::uint32_t>(entry.size)});
    bytes_.insert(bytes_.end(), entry.bytes, entry.bytes + entry.size);
}

// Keys of one index often begin alike; what they have in common says nothing about their order, so the heads
// are taken from behind it.
void IndexEntries::sort() {
    if (places_.empty())
        return;
    const KeyView first = entry(places_.front());
    std::size_t common = first.size();
    for (const Place& place : places_) {
        const KeyView other = entry(place);
        common = std::min(common, other.size());
        if (std::memcmp(first.data(), other.data(), common) != 0)
            common = static_cast<std::size_t>(
                std::mismatch(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(common),
                              other.begin())
                    .first -
                first.begin());
    }
    for (Place& place : places_)
        place.head = headOf(entry(place).subspan(common));
    const auto before = [this](const Place& a, const Place& b) {
        return a.head != b.head ? a.head < b.head : compareBytes(entry(a), entry(b)) < 0;
    };
    if (!std::is_sorted(places_.begin(), places_.end(), before))
        std::sort(places_.begin(), places_.end(), before);
}

bool IndexEntries::findDuplicate(const std::function<bool(KeyView)>& skip, RowPointer& one,
                                 RowPointer& other) const {
    for (std::size_t i = 1; i < places_.size(); ++i) {
        if (!sameKey(entry(places_[i - 1]), entry(places_[i])) || (skip && skip(key(i))))
            continue;
        one = row(i - 1);
        other = row(i);
        return true;
    }
    return false;
}

KeyView IndexEntries::key(std::size_t index) const {
    const KeyView whole = entry(places_[index]);
    return whole.first(whole.size() - RowLength);
}

RowPointer IndexEntries::row(std::size_t index) const {
    return rowOf(entry(places_[index]));
}

IndexBuilder::IndexBuilder(const IndexTree& tree)
    : tree_(tree)
    , map_(tree.pages()) {}

void IndexBuilder::add(KeyView key, RowPointer row) {
    const EntryBuffer entry(key, row);
    if (leaf_.count() > 0) {
        const KeyView last = leaf_[leaf_.count() - 1];
        if (compareBytes(last, entry.view()) >= 0)
            Damaged(tree_.root(), "is to be the root of an index whose entries are out of order");
        distinct_ += sameKey(last, entry.view()) ? 0 : 1;
    } else {
        distinct_ = 1;
    }
    ++entries_;
    leaf_.add(entry.view());
    if (leaf_.bytes.size() <= Capacity || Fits(leaf_, {0, leaf_.count()}, true))
        return;
    // The entry begins the next leaf.
    leaf_.removeLast();
    const PageNumber page = page_ != 0 ? page_ : allocate();
    page_ = allocate();
    writeLeaf(page, page_);
    leaf_.clear();
    leaf_.add(entry.view());
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

// Makes the nodes above children_, which become the children of the next level. False: there was but one, the
// root.
bool IndexBuilder::buildLevel(int level) {
    Entries parents;
    const std::size_t count = children_.count();
    const bool root = Fits(children_, {0, count - 1}, false);
    PageNumber previous = 0;
    PageNumber page = root ? tree_.root() : allocate();
    for (std::size_t first = 0; first < count;) {
        // As many children as fit, the last of them without an entry; but no node has a single child.
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
