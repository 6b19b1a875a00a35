// One page of an index tree: a leaf, or a node above other pages. These routines work on the bytes of a page
// and do not know the tree.
//
// The bytes that all entries of a page begin with may be stored once, as the start of the first entry: the
// prefix. What follows the prefix is then, for every entry alike, the entry without the prefix. All offsets
// here are offsets of such rests, counted from the start of the entry bytes; the first one lies at
// prefix(page), and used(page) is after the last one. A mark in the mask stands where a rest ends. Finding,
// adding and removing an entry work on these bytes in place.
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

// Longest entry of a leaf: two of them, with their children, fit a node. Longer ones of others are not read.
inline constexpr std::size_t MaximumEntry = 1804;

// An entry, or a part of one, without memory of its own.
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

// Writes a leaf's entry, as many bytes as key and row pointer have. Throws RecordTooLarge, and writes
// nothing, for one longer than MaximumEntry.
void WriteEntry(KeyView key, RowPointer row, std::uint8_t* into);
// The order of entries; below 0, 0 or above.
int CompareEntries(KeyView a, KeyView b);
// How many bytes they begin with alike.
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

// What makes the routines below safe: kind and owner of the page, its free bytes, its prefix and the mark
// after its last entry. Throws ReadVerification.
void Check(const std::uint8_t* page, PageNumber number, PageNumber table);

int Prefix(const std::uint8_t* page);
int Used(const std::uint8_t* page);
inline bool IsEmpty(const std::uint8_t* page) {
    return Used(page) == 0;
}
// Where the rest that begins at `offset` ends; where the last rest before `offset` begins.
int End(const std::uint8_t* page, int offset);
int Before(const std::uint8_t* page, int offset);

// Number of entries, and of marks anywhere in the mask: equal on a sound page.
int CountEntries(const std::uint8_t* page);
int CountMarks(const std::uint8_t* page);

// The offset of the first entry that is not below `target`, or used(page). Of nodes the child's number does
// not take part. `past`: entries that begin with the target are below it. Cost: logarithmic.
int Find(const std::uint8_t* page, KeyView target, bool past);

// Copies the entry at `offset`, of a node without the child's number, into `into`. Throws
// ReadVerification for an entry too short or too long to be one.
void CopyEntry(const std::uint8_t* page, PageNumber number, int offset, EntryBuffer& into);
// The order of the entry at `offset` and another; below 0, 0 or above. Of nodes the child's number does not
// take part.
int CompareEntry(const std::uint8_t* page, int offset, KeyView entry);
// Whether the entry at `offset` is exactly this one. Any number may be asked for.
bool HoldsEntry(const std::uint8_t* page, int offset, KeyView entry);
// Whether the key of the leaf entry at `offset`, which may be used(page), is exactly this one.
bool HoldsKey(const std::uint8_t* page, int offset, KeyView key);
// Node: the child of the entry at `offset`, or the tail if that is used(page).
PageNumber Child(const std::uint8_t* page, PageNumber number, int offset);
void SetChild(std::uint8_t* page, int offset, PageNumber child);

// Adds an entry, whole, at the offset that Find() gave. False, and nothing is changed, if it does not fit or
// does not share the page's prefix.
bool Insert(std::uint8_t* page, int offset, KeyView entry);
void Remove(std::uint8_t* page, int offset);

// Whole entries, of nodes with the children's numbers, one after the other: of pages that are laid out anew.
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

// Appends the entries of a page that lie in [from, to). Throws ReadVerification as CopyEntry() does.
void ReadEntries(const std::uint8_t* page, PageNumber number, int from, int to, Entries& into);
// Whether a range of entries fits one page, whole or without a prefix.
bool Fits(const Entries& entries, Range range, bool leaf);
// Writes a range of entries that fits onto an empty page: whole if they fit so, else without their prefix.
void WriteEntries(std::uint8_t* page, const Entries& entries, Range range);

} // namespace indexpage
} // namespace jet
