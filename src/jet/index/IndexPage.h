// One page of an index tree: a leaf, or a node above other pages. These routines work on the bytes of a page
// and do not know the tree.
//
// The bytes with which all entries of a page begin may be stored once, as the start of the first entry: the
// prefix. After the prefix follow the entries, each without the prefix: the rests. All offsets here are
// offsets of rests, counted from the start of the entry bytes; the first one lies at prefix(page), and
// used(page) is after the last one. A mark in the mask marks the end of each rest. Finding, adding and
// removing an entry work on these bytes in place.
#pragma once

#include "jet/base/RowPointer.h"
#include "jet/base/Value.h"

#include <span>

namespace jet {

using KeyView = std::span<const std::uint8_t>;

namespace indexpage {

inline constexpr int Capacity = 3616; // bytes of entries
inline constexpr int RowLength = 4;   // of the row pointer at the end of an entry
inline constexpr int ChildLength = 4; // of the page number that follows it in a node

// Longest entry of a leaf: two of them, with their children, fit a node. Longer ones from others are refused.
inline constexpr std::size_t MaximumEntry = 1804;

// An entry, or a part of one, that does not own its memory.
struct EntryBuffer {
    std::uint8_t bytes[MaximumEntry + ChildLength];
    std::size_t size = 0;

    EntryBuffer() = default;
    EntryBuffer(KeyView key, RowPointer row);
    // Appends a child's number.
    void addChild(PageNumber child);
    KeyView view() const { return {bytes, size}; }
    KeyView key() const { return {bytes, size - RowLength}; }
    RowPointer row() const;
};

// Writes a leaf's entry: key and row pointer. Throws RecordTooLarge, and writes nothing, for one longer than
// MaximumEntry.
void WriteEntry(KeyView key, RowPointer row, std::uint8_t* into);
// The order of entries; below 0, 0 or above.
int CompareEntries(KeyView a, KeyView b);
// The length of their common prefix.
std::size_t SharedLength(KeyView a, KeyView b);
// The row pointer at the end of a leaf's entry.
RowPointer RowOf(KeyView entry);

struct Head {
    bool leaf = true;
    int level = 0; // 0: leaf
    PageNumber table = 0;
    PageNumber previous = 0; // neighbours on the same level; 0: none
    PageNumber next = 0;
    PageNumber tail = 0; // node: the rightmost child, which has no entry
};

// Writes an empty page.
void Format(std::uint8_t* page, const Head& head);
Head ReadHead(const std::uint8_t* page);
bool IsLeaf(const std::uint8_t* page);
PageNumber Next(const std::uint8_t* page);
PageNumber Previous(const std::uint8_t* page);
PageNumber Tail(const std::uint8_t* page);
void SetNext(std::uint8_t* page, PageNumber next);
void SetPrevious(std::uint8_t* page, PageNumber previous);
void SetTail(std::uint8_t* page, PageNumber tail);

// The preconditions of the routines below: kind and owner of the page, its free bytes, its prefix and the
// mark after its last entry. Throws ReadVerification.
void Check(const std::uint8_t* page, PageNumber number, PageNumber table);

int Prefix(const std::uint8_t* page);
int Used(const std::uint8_t* page);
inline bool IsEmpty(const std::uint8_t* page) {
    return Used(page) == 0;
}
// The end of the rest that begins at `offset`; the start of the last rest before `offset`.
int End(const std::uint8_t* page, int offset);
int Before(const std::uint8_t* page, int offset);

// Number of entries, and of marks anywhere in the mask: equal on a sound page.
int CountEntries(const std::uint8_t* page);
int CountMarks(const std::uint8_t* page);

// The offset of the first entry that is not below `target`, or used(page). In nodes the child's number is
// ignored. `past`: entries that begin with the target count as below it. Cost: logarithmic.
int Find(const std::uint8_t* page, KeyView target, bool past);

// Copies the entry at `offset`, in a node without the child's number, to `into`. Throws ReadVerification for
// an entry of invalid length.
void CopyEntry(const std::uint8_t* page, PageNumber number, int offset, EntryBuffer& into);
// The order of the entry at `offset` and another; below 0, 0 or above. In nodes the child's number is
// ignored.
int CompareEntry(const std::uint8_t* page, int offset, KeyView entry);
// Whether the entry at `offset` is exactly this one. Any offset is allowed.
bool HoldsEntry(const std::uint8_t* page, int offset, KeyView entry);
// Whether the key of the leaf entry at `offset`, which may be used(page), is exactly this one.
bool HoldsKey(const std::uint8_t* page, int offset, KeyView key);
// Node: the child of the entry at `offset`, or the tail if that is used(page).
PageNumber Child(const std::uint8_t* page, PageNumber number, int offset);
void SetChild(std::uint8_t* page, int offset, PageNumber child);

// Adds a complete entry at the offset that Find() returned. False, with nothing changed, if it does not fit
// or does not share the page's prefix.
bool Insert(std::uint8_t* page, int offset, KeyView entry);
void Remove(std::uint8_t* page, int offset);

// Complete entries, in nodes with the children's numbers, one after the other: for rewriting pages.
struct Entries {
    Bytes bytes;
    std::vector<std::uint32_t> ends;

    std::size_t count() const { return ends.size(); }
    std::size_t start(std::size_t index) const { return index == 0 ? 0 : ends[index - 1]; }
    KeyView operator[](std::size_t index) const {
        return KeyView(bytes).subspan(start(index), ends[index] - start(index));
    }
    void add(KeyView entry);
    // A node's entry: a leaf's entry and the child.
    void addReference(KeyView entry, PageNumber child);
    void removeLast();
    void clear();
};

// The child's number at the end of a node's entry.
PageNumber ChildOf(KeyView entry);

// Some of the entries, one after the other.
struct Range {
    std::size_t first = 0;
    std::size_t count = 0;
};

// Appends the entries of a page that lie in [from, to). Throws ReadVerification like CopyEntry().
void ReadEntries(const std::uint8_t* page, PageNumber number, int from, int to, Entries& into);
// Whether a range of entries fits one page, whole or without a prefix.
bool Fits(const Entries& entries, Range range, bool leaf);
// Writes a range of entries that fits to an empty page: in full if possible, else without their prefix.
void WriteEntries(std::uint8_t* page, const Entries& entries, Range range);

} // namespace indexpage
} // namespace jet
