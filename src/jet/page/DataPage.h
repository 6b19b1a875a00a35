// A page of rows: rows of a table, pieces of long values or usage maps. Rows are packed from the end of the
// page downwards, with a slot for each at its start; a slot keeps its number for life. These routines work on
// the bytes of one page and do not know its owner.
#pragma once

#include "jet/base/RowPointer.h"

#include <algorithm>
#include <optional>
#include <span>

namespace jet::datapage {

inline constexpr int HeadLength = 14;
inline constexpr int MaximumSlots = 255;
inline constexpr std::uint32_t LongValueOwner = 0x4C41564C; // "LVAL"

struct Slot {
    int offset = 0;
    int length = 0;
    bool hidden = false;  // walks skip it: deleted, or reached only through a pointer
    bool pointer = false; // the bytes are a pointer to the row's new place
    bool deleted() const { return hidden && pointer; }
};

// Writes the head of an empty page.
void Format(std::uint8_t* page, std::uint32_t owner);

// Checks head and slots of a page (kind, number of slots, offsets in order). Throws ReadVerification.
void Check(const std::uint8_t* page, PageNumber number);
// The same without throwing.
bool IsSound(const std::uint8_t* page);

inline constexpr std::uint8_t DataType = 1; // the first byte
inline constexpr int OwnerField = 4;
inline constexpr int CountField = 12;
inline constexpr std::uint16_t OffsetMask = 0x1FFF; // of a slot; the rest are its flags
inline constexpr std::uint16_t HiddenFlag = 0x8000;
inline constexpr std::uint16_t PointerFlag = 0x4000;

inline std::uint32_t Owner(const std::uint8_t* page) {
    return Load32(page + OwnerField);
}
// The page's own count of slots: at most MaximumSlots on a sound one.
inline int ClaimedSlots(const std::uint8_t* page) {
    return Load16(page + CountField);
}
// Slots to visit, whatever the page says.
inline int SlotCount(const std::uint8_t* page) {
    return std::min(ClaimedSlots(page), MaximumSlots);
}
inline bool IsDataPage(const std::uint8_t* page) {
    return page[0] == DataType;
}
int FreeBytes(const std::uint8_t* page);
// The number of slots that the page's count of free bytes fits; the claimed one if none does.
int SlotsByFreeSpace(const std::uint8_t* page);
// Whether a new row of `length` bytes has room: Add() then stays within the page, whatever it holds.
bool Fits(const std::uint8_t* page, int length);

// Throws ReadVerification with what is wrong with a slot.
[[noreturn]] void RefuseSlot(const std::uint8_t* page, PageNumber number, int row);
// Where a row lies, checked against the page. Throws ReadVerification on a bad offset; a slot after the last
// one is reported as deleted.
inline Slot Find(const std::uint8_t* page, PageNumber number, int row) {
    const int slots = ClaimedSlots(page);
    if (row >= slots && slots <= MaximumSlots)
        return {0, 0, true, true};
    const std::uint8_t* at = page + HeadLength + 2 * row;
    const std::uint16_t word = slots <= MaximumSlots ? Load16(at) : 0; // 0 lies in the head
    const int offset = word & OffsetMask;
    const int end = row == 0 ? static_cast<int>(PageSize) : Load16(at - 2) & OffsetMask;
    if (offset > end || end > static_cast<int>(PageSize) || offset < HeadLength + 2 * slots)
        RefuseSlot(page, number, row);
    return {offset, end - offset, (word & HiddenFlag) != 0, (word & PointerFlag) != 0};
}

// The bytes of a slot.
inline std::span<const std::uint8_t> BytesOf(const std::uint8_t* page, const Slot& slot) {
    return {page + slot.offset, static_cast<std::size_t>(slot.length)};
}

// Adds a row in a new slot. The caller has made sure that it fits. Returns the slot's number. `flags`:
// HiddenFlag or 0.
std::uint8_t Add(std::uint8_t* page, std::span<const std::uint8_t> bytes, std::uint16_t flags = 0);

// Whether the row can be replaced by one of `length` bytes on this page.
bool CanReplace(const std::uint8_t* page, PageNumber number, int row, int length);
// Replaces a row's bytes and flags; rows of later slots move. `bytes` must not lie on the page. Throws
// ReadVerification, and changes nothing, if the page is not sound or has no such slot.
void Replace(std::uint8_t* page, PageNumber number, int row, std::span<const std::uint8_t> bytes,
             std::uint16_t flags);
// Removes a row: its bytes are reclaimed, its slot stays as a deleted one.
void Remove(std::uint8_t* page, PageNumber number, int row);
// Whether any slot is not deleted.
bool HasRows(const std::uint8_t* page, PageNumber number);

} // namespace jet::datapage
