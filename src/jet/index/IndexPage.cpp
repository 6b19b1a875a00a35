#include "jet/index/IndexPage.h"

#include "jet/base/Damage.h"
#include "jet/base/Prefetch.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet::indexpage {

namespace {

constexpr std::uint8_t NodeType = 3;
constexpr std::uint8_t LeafType = 4;
constexpr int FreeField = 0x02;
constexpr int TableField = 0x04;
constexpr int PreviousField = 0x0C;
constexpr int NextField = 0x10;
constexpr int TailField = 0x14;
constexpr int PrefixField = 0x18;
constexpr int LevelField = 0x1A;
constexpr int MaskField = 0x1B;
constexpr int MaskLength = 453;
constexpr int EntryField = 0x1E0;

static_assert(2 * (MaximumEntry + ChildLength) <= Capacity);

// Numbers in entries have their highest byte first.
std::uint32_t loadHighFirst(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

void storeHighFirst(std::uint8_t* at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<std::uint8_t>(value >> 8 * (3 - i));
}

std::uint64_t loadHighFirst64(const std::uint8_t* at) {
    return static_cast<std::uint64_t>(loadHighFirst(at)) << 32 | loadHighFirst(at + 4);
}

// The first 8 bytes of a key; zeros if it is shorter.
std::uint64_t headOf(KeyView key) {
    std::uint8_t bytes[8] = {};
    std::copy_n(key.begin(), std::min<std::size_t>(key.size(), sizeof bytes), bytes);
    return loadHighFirst64(bytes);
}

// The mask is processed in words of 64 bits; the last one has 5 bytes.
constexpr unsigned LastWord = MaskLength / 8;
constexpr unsigned LastBytes = MaskLength % 8;

inline std::uint64_t maskWord(const std::uint8_t* page, unsigned word) {
    // What follows the mask are the entries' first bytes: reading over its end is harmless.
    const std::uint64_t value = Load64(page + MaskField + 8 * word);
    return word < LastWord ? value : value & ((std::uint64_t{1} << 8 * LastBytes) - 1);
}

void setMaskWord(std::uint8_t* page, unsigned word, std::uint64_t value) {
    std::uint8_t* at = page + MaskField + 8 * word;
    if (word < LastWord)
        return Store64(at, value);
    Store32(at, static_cast<std::uint32_t>(value));
    at[LastBytes - 1] = static_cast<std::uint8_t>(value >> 32);
}

bool hasMark(const std::uint8_t* page, int offset) {
    return (page[MaskField + offset / 8] >> offset % 8 & 1) != 0;
}

void setMark(std::uint8_t* page, int offset) {
    page[MaskField + offset / 8] = static_cast<std::uint8_t>(page[MaskField + offset / 8] | 1 << offset % 8);
}

// The bits of a word from this one up, and up to this one; only the position within its word counts.
constexpr std::uint64_t bitsFrom(int bit) {
    return ~std::uint64_t{0} << (static_cast<unsigned>(bit) % 64);
}

constexpr std::uint64_t bitsUpTo(int bit) {
    return ~std::uint64_t{0} >> (63 - static_cast<unsigned>(bit) % 64);
}

// Moves all marks after `from` up by `by`; `last`: the highest mark.
void moveMarksUp(std::uint8_t* page, int from, int last, int by) {
    const int first = (from + 1) / 64;
    const std::uint64_t moving = bitsFrom(from + 1);
    const int words = by / 64;
    const int bits = by % 64;
    const auto source = [&](int word) -> std::uint64_t {
        if (word < first)
            return 0;
        const std::uint64_t value = maskWord(page, static_cast<unsigned>(word));
        return word == first ? value & moving : value;
    };
    for (int word = (last + by) / 64; word > first; --word) {
        std::uint64_t value = source(word - words) << bits;
        if (bits != 0)
            value |= source(word - words - 1) >> (64 - bits);
        setMaskWord(page, static_cast<unsigned>(word), value);
    }
    const std::uint64_t staying = maskWord(page, static_cast<unsigned>(first)) & ~moving;
    setMaskWord(page, static_cast<unsigned>(first), staying | (words == 0 ? source(first) << bits : 0));
}

// Moves all marks after `from` down by `by`, over the marks in between; `last`: the highest mark.
void moveMarksDown(std::uint8_t* page, int from, int last, int by) {
    const int first = (from - by + 1) / 64; // the lowest word that changes
    const int start = (from + 1) / 64;
    const int end = last / 64;
    const std::uint64_t moving = bitsFrom(from + 1);
    const int words = by / 64;
    const int bits = by % 64;
    const auto source = [&](int word) -> std::uint64_t {
        if (word < start || word > end)
            return 0;
        const std::uint64_t value = maskWord(page, static_cast<unsigned>(word));
        return word == start ? value & moving : value;
    };
    const std::uint64_t staying = maskWord(page, static_cast<unsigned>(first)) & ~bitsFrom(from - by + 1);
    for (int word = first; word <= end; ++word) {
        std::uint64_t value = source(word + words) >> bits;
        if (bits != 0)
            value |= source(word + words + 1) << (64 - bits);
        setMaskWord(page, static_cast<unsigned>(word), word == first ? staying | value : value);
    }
}

// The lowest mark from `bit` up to `used`, which has one on every page that passed Check().
int markFrom(const std::uint8_t* page, int bit, int used) {
    unsigned word = static_cast<unsigned>(bit) / 64;
    std::uint64_t bits = maskWord(page, word) & bitsFrom(bit);
    while (bits == 0 && word < LastWord)
        bits = maskWord(page, ++word);
    const int mark = static_cast<int>(word * 64) + std::countr_zero(bits); // no mark: 64 more
    return std::min(mark, used);
}

// The highest mark up to `bit`; 0 or less if there is none.
int markUpTo(const std::uint8_t* page, int bit) {
    unsigned word = static_cast<unsigned>(bit) / 64;
    std::uint64_t bits = maskWord(page, word) & bitsUpTo(bit);
    while (bits == 0 && word > 0)
        bits = maskWord(page, --word);
    return static_cast<int>(word * 64) + 63 - std::countl_zero(bits);
}

// In a large tree hardly any page is in the processor's cache, and a search waits for memory at each of its
// steps. Prefetching the whole mask and the entries of the first steps makes it wait once: seeks among a
// million entries are twice as fast.
void fetchAhead(const std::uint8_t* page, int used) {
    constexpr int line = 64;
    constexpr int places = 16;
    for (int at = 0; at < EntryField; at += line)
        Prefetch(page + at);
    for (int i = 1; i < places; ++i)
        Prefetch(page + EntryField + used * i / places);
}

void setUsed(std::uint8_t* page, int used) {
    Store16(page + FreeField, static_cast<std::uint32_t>(Capacity - used));
}

// Bytes of the rest in [offset, end) that are compared: in nodes without the child's number.
int comparedLength(bool leaf, int offset, int end) {
    return leaf ? end - offset : std::max(end - offset - ChildLength, 0);
}

// The length of a whole entry, without the child's number.
void checkLength(PageNumber number, std::size_t length) {
    if (length <= RowLength || length > MaximumEntry)
        Damaged(number, "has an index entry of " + std::to_string(length) + " bytes");
}

// The length of the common prefix of the first and the last of a range of entries; it never includes the last
// byte of a row pointer, so that no rest is empty.
std::size_t commonPrefix(const Entries& entries, Range range, bool leaf) {
    if (range.count < 2)
        return 0;
    const KeyView first = entries[range.first];
    const KeyView last = entries[range.first + range.count - 1];
    const std::size_t limit = std::min(first.size(), last.size()) - 1 - (leaf ? 0 : ChildLength);
    return SharedLength(first.first(limit), last.first(limit));
}

std::size_t totalBytes(const Entries& entries, Range range) {
    return range.count == 0 ? 0 : entries.ends[range.first + range.count - 1] - entries.start(range.first);
}

} // namespace

EntryBuffer::EntryBuffer(KeyView key, RowPointer row)
    : size(key.size() + RowLength) {
    WriteEntry(key, row, bytes);
}

void EntryBuffer::addChild(PageNumber child) {
    storeHighFirst(bytes + size, child);
    size += ChildLength;
}

RowPointer EntryBuffer::row() const {
    return RowOf(view());
}

void WriteEntry(KeyView key, RowPointer row, std::uint8_t* into) {
    if (key.size() + RowLength > MaximumEntry)
        throw Error(ErrorNumber::RecordTooLarge, "the row's key in an index is too long");
    std::memcpy(into, key.data(), key.size());
    storeHighFirst(into + key.size(), row.page << 8 | row.row);
}

int CompareEntries(KeyView a, KeyView b) {
    const int order = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
    return order != 0 ? order : a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::size_t SharedLength(KeyView a, KeyView b) {
    const std::size_t limit = std::min(a.size(), b.size());
    std::size_t shared = 0;
    for (; shared + 8 <= limit; shared += 8) {
        const std::uint64_t difference = Load64(a.data() + shared) ^ Load64(b.data() + shared);
        if (difference != 0)
            return shared + static_cast<std::size_t>(std::countr_zero(difference)) / 8;
    }
    while (shared < limit && a[shared] == b[shared])
        ++shared;
    return shared;
}

RowPointer RowOf(KeyView entry) {
    const std::uint32_t pointer = loadHighFirst(entry.data() + entry.size() - RowLength);
    return {pointer >> 8, static_cast<std::uint8_t>(pointer)};
}

void Format(std::uint8_t* page, const Head& head) {
    std::memset(page, 0, PageSize);
    page[0] = head.leaf ? LeafType : NodeType;
    page[1] = 1;
    setUsed(page, 0);
    Store32(page + TableField, head.table);
    SetPrevious(page, head.previous);
    SetNext(page, head.next);
    SetTail(page, head.tail);
    page[LevelField] = static_cast<std::uint8_t>(head.level);
}

Head ReadHead(const std::uint8_t* page) {
    return {IsLeaf(page),   page[LevelField], Load32(page + TableField),
            Previous(page), Next(page),       Tail(page)};
}

bool IsLeaf(const std::uint8_t* page) {
    return page[0] == LeafType;
}

PageNumber Next(const std::uint8_t* page) {
    return Load32(page + NextField);
}

PageNumber Previous(const std::uint8_t* page) {
    return Load32(page + PreviousField);
}

PageNumber Tail(const std::uint8_t* page) {
    return Load32(page + TailField);
}

void SetNext(std::uint8_t* page, PageNumber next) {
    Store32(page + NextField, next);
}

void SetPrevious(std::uint8_t* page, PageNumber previous) {
    Store32(page + PreviousField, previous);
}

void SetTail(std::uint8_t* page, PageNumber tail) {
    Store32(page + TailField, tail);
}

void Check(const std::uint8_t* page, PageNumber number, PageNumber table) {
    if (page[0] != NodeType && page[0] != LeafType)
        Damaged(number, "is no index page");
    if (Load32(page + TableField) != table)
        Damaged(number, "belongs to the index of another table");
    if (Load16(page + FreeField) > Capacity)
        Damaged(number, "counts more free bytes than an index page has");
    const int used = Used(page);
    if (used == 0)
        return;
    if (!hasMark(page, used))
        Damaged(number, "has no mark after its last index entry");
    const int prefix = Prefix(page);
    if (prefix >= used || (!IsLeaf(page) && End(page, prefix) - prefix < ChildLength))
        Damaged(number, "has an index prefix longer than its first entry");
}

int Prefix(const std::uint8_t* page) {
    return IsEmpty(page) ? 0 : Load16(page + PrefixField);
}

int Used(const std::uint8_t* page) {
    return Capacity - Load16(page + FreeField);
}

int End(const std::uint8_t* page, int offset) {
    return markFrom(page, offset + 1, Used(page));
}

int Before(const std::uint8_t* page, int offset) {
    if (offset <= Prefix(page))
        return Prefix(page);
    return std::max(markUpTo(page, offset - 1), Prefix(page));
}

int CountEntries(const std::uint8_t* page) {
    int count = 0;
    for (int offset = Prefix(page); offset < Used(page); offset = End(page, offset))
        ++count;
    return count;
}

int CountMarks(const std::uint8_t* page) {
    int count = 0;
    for (unsigned word = 0; word <= LastWord; ++word)
        count += std::popcount(maskWord(page, word));
    return count;
}

int Find(const std::uint8_t* page, KeyView target, bool past) {
    const std::uint8_t* entries = page + EntryField;
    const int used = Used(page);
    int low = Prefix(page);
    int high = used;
    if (target.empty()) // what every entry begins with
        return past ? high : low;
    fetchAhead(page, used);
    const auto shared = std::min(static_cast<std::size_t>(low), target.size());
    const int order = shared == 0 ? 0 : std::memcmp(entries, target.data(), shared);
    if (order != 0)
        return order < 0 ? high : low;
    if (target.size() < static_cast<std::size_t>(low))
        return past ? high : low;
    target = target.subspan(shared);

    // Most entries differ within their first 8 bytes, which compare as one number.
    const bool leaf = IsLeaf(page);
    const std::uint64_t head = headOf(target);
    while (low < high) {
        const int begin = std::max(markUpTo(page, low + (high - low) / 2), low);
        const int end = markFrom(page, begin + 1, used);
        const auto length = static_cast<std::size_t>(comparedLength(leaf, begin, end));
        const std::size_t common = std::min(length, target.size());
        if (begin <= Capacity - 8) {
            const std::uint64_t own = loadHighFirst64(entries + begin);
            if (static_cast<std::size_t>(std::countl_zero(own ^ head)) <
                8 * std::min<std::size_t>(common, 8)) {
                own < head ? low = end : high = begin;
                continue;
            }
        }
        const int compared = std::memcmp(entries + begin, target.data(), common);
        const bool below = compared != 0 ? compared < 0 : past || length < target.size();
        if (below)
            low = end;
        else
            high = begin;
    }
    return low;
}

void CopyEntry(const std::uint8_t* page, PageNumber number, int offset, EntryBuffer& into) {
    const auto prefix = static_cast<std::size_t>(Prefix(page));
    const auto rest = static_cast<std::size_t>(comparedLength(IsLeaf(page), offset, End(page, offset)));
    checkLength(number, prefix + rest);
    std::memcpy(into.bytes, page + EntryField, prefix);
    std::memcpy(into.bytes + prefix, page + EntryField + offset, rest);
    into.size = prefix + rest;
}

int CompareEntry(const std::uint8_t* page, int offset, KeyView entry) {
    const std::uint8_t* entries = page + EntryField;
    const auto prefix = static_cast<std::size_t>(Prefix(page));
    const std::size_t shared = std::min(prefix, entry.size());
    if (const int order = std::memcmp(entries, entry.data(), shared); order != 0)
        return order;
    const auto rest = static_cast<std::size_t>(comparedLength(IsLeaf(page), offset, End(page, offset)));
    return shared < prefix ? 1 : CompareEntries({entries + offset, rest}, entry.subspan(prefix));
}

bool HoldsEntry(const std::uint8_t* page, int offset, KeyView entry) {
    const int prefix = Prefix(page);
    if (offset < prefix || offset >= Used(page) || (offset != prefix && !hasMark(page, offset)))
        return false;
    const auto rest = static_cast<std::size_t>(comparedLength(IsLeaf(page), offset, End(page, offset)));
    const auto shared = static_cast<std::size_t>(prefix);
    return shared + rest == entry.size() &&
           std::memcmp(page + EntryField + offset, entry.data() + shared, rest) == 0 &&
           std::memcmp(page + EntryField, entry.data(), shared) == 0;
}

bool HoldsKey(const std::uint8_t* page, int offset, KeyView key) {
    if (offset >= Used(page))
        return false;
    const auto prefix = static_cast<std::size_t>(Prefix(page));
    const auto rest = static_cast<std::size_t>(End(page, offset) - offset);
    if (prefix + rest != key.size() + RowLength)
        return false;
    // Between duplicates of a page the prefix may reach into the row pointer.
    const std::size_t shared = std::min(prefix, key.size());
    return std::memcmp(page + EntryField, key.data(), shared) == 0 &&
           std::memcmp(page + EntryField + offset, key.data() + shared, key.size() - shared) == 0;
}

PageNumber Child(const std::uint8_t* page, PageNumber number, int offset) {
    if (offset >= Used(page))
        return Tail(page);
    const int end = End(page, offset);
    if (end - offset < ChildLength)
        Damaged(number, "has an index entry too short for its child");
    return loadHighFirst(page + EntryField + end - ChildLength);
}

void SetChild(std::uint8_t* page, int offset, PageNumber child) {
    if (offset >= Used(page))
        return SetTail(page, child);
    storeHighFirst(page + EntryField + End(page, offset) - ChildLength, child);
}

bool Insert(std::uint8_t* page, int offset, KeyView entry) {
    const int used = Used(page);
    const auto prefix = static_cast<std::size_t>(Prefix(page));
    std::uint8_t* entries = page + EntryField;
    if (prefix >= entry.size() || (prefix > 0 && std::memcmp(entries, entry.data(), prefix) != 0))
        return false;
    const KeyView rest = entry.subspan(prefix);
    const int length = static_cast<int>(rest.size());
    if (used + length > Capacity)
        return false;
    if (used == 0)
        Store16(page + PrefixField, 0);
    if (offset < used) {
        std::memmove(entries + offset + length, entries + offset, static_cast<std::size_t>(used - offset));
        moveMarksUp(page, offset, used, length);
    }
    std::memcpy(entries + offset, rest.data(), rest.size());
    setMark(page, offset + length);
    setUsed(page, used + length);
    return true;
}

void Remove(std::uint8_t* page, int offset) {
    std::uint8_t* entries = page + EntryField;
    const int used = Used(page);
    const int end = End(page, offset);
    const int length = end - offset;
    const int left = used - length;
    if (left <= Prefix(page)) {
        Format(page, ReadHead(page));
        return;
    }
    std::memmove(entries + offset, entries + end, static_cast<std::size_t>(used - end));
    std::memset(entries + left, 0, static_cast<std::size_t>(length));
    moveMarksDown(page, end, used, length);
    setUsed(page, left);
}

void Entries::add(KeyView entry) {
    bytes.insert(bytes.end(), entry.begin(), entry.end());
    ends.push_back(static_cast<std::uint32_t>(bytes.size()));
}

void Entries::addReference(KeyView entry, PageNumber child) {
    bytes.insert(bytes.end(), entry.begin(), entry.end());
    bytes.resize(bytes.size() + ChildLength);
    storeHighFirst(bytes.data() + bytes.size() - ChildLength, child);
    ends.push_back(static_cast<std::uint32_t>(bytes.size()));
}

void Entries::removeLast() {
    ends.pop_back();
    bytes.resize(ends.empty() ? 0 : ends.back());
}

PageNumber ChildOf(KeyView entry) {
    return loadHighFirst(entry.data() + entry.size() - ChildLength);
}

void Entries::clear() {
    bytes.clear();
    ends.clear();
}

void ReadEntries(const std::uint8_t* page, PageNumber number, int from, int to, Entries& into) {
    const std::uint8_t* entries = page + EntryField;
    const int prefix = Prefix(page);
    for (int offset = from; offset < to;) {
        const int end = End(page, offset);
        const int length = prefix + comparedLength(IsLeaf(page), offset, end);
        checkLength(number, static_cast<std::size_t>(length));
        into.bytes.insert(into.bytes.end(), entries, entries + prefix);
        into.bytes.insert(into.bytes.end(), entries + offset, entries + end);
        into.ends.push_back(static_cast<std::uint32_t>(into.bytes.size()));
        offset = end;
    }
}

bool Fits(const Entries& entries, Range range, bool leaf) {
    const std::size_t total = totalBytes(entries, range);
    return total <= Capacity || total - commonPrefix(entries, range, leaf) * (range.count - 1) <= Capacity;
}

void WriteEntries(std::uint8_t* page, const Entries& entries, Range range) {
    const bool whole = totalBytes(entries, range) <= Capacity;
    const std::size_t prefix = whole ? 0 : commonPrefix(entries, range, IsLeaf(page));
    Store16(page + PrefixField, static_cast<std::uint32_t>(prefix));
    std::size_t used = 0;
    for (std::size_t i = 0; i < range.count; ++i) {
        const KeyView rest = entries[range.first + i].subspan(i == 0 ? 0 : prefix);
        std::memcpy(page + EntryField + used, rest.data(), rest.size());
        used += rest.size();
        setMark(page, static_cast<int>(used));
    }
    setUsed(page, static_cast<int>(used));
}

} // namespace jet::indexpage
