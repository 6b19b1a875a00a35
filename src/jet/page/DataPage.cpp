#include "jet/page/DataPage.h"

#include "jet/base/Damage.h"

#include <cstring>

namespace jet::datapage {

namespace {

constexpr int FreeField = 2;

std::uint8_t* slotAt(std::uint8_t* page, int row) {
    return page + HeadLength + 2 * row;
}

int offsetOf(const std::uint8_t* page, int row) {
    return row < 0 ? static_cast<int>(PageSize) : Load16(page + HeadLength + 2 * row) & OffsetMask;
}

void setSlot(std::uint8_t* page, int row, int offset, std::uint16_t flags) {
    Store16(slotAt(page, row), static_cast<std::uint32_t>(offset) | flags);
}

// The first slot with an impossible offset; -1: none. If there are too many slots none can be trusted.
int firstMisplaced(const std::uint8_t* page) {
    const int slots = ClaimedSlots(page);
    if (slots > MaximumSlots)
        return 0;
    const int least = HeadLength + 2 * slots;
    int end = static_cast<int>(PageSize);
    for (int row = 0; row < slots; ++row) {
        const int offset = offsetOf(page, row);
        if (offset > end || offset < least)
            return row;
        end = offset;
    }
    return -1;
}

void updateFree(std::uint8_t* page) {
    Store16(page + FreeField, static_cast<std::uint32_t>(FreeBytes(page)));
}

} // namespace

void Format(std::uint8_t* page, std::uint32_t owner) {
    std::memset(page, 0, PageSize);
    page[0] = DataType;
    page[1] = 1;
    Store32(page + OwnerField, owner);
    updateFree(page);
}

void Check(const std::uint8_t* page, PageNumber number) {
    if (!IsDataPage(page))
        Damaged(number, "is no data page");
    if (const int row = firstMisplaced(page); row >= 0)
        RefuseSlot(page, number, row);
}

bool IsSound(const std::uint8_t* page) {
    return IsDataPage(page) && firstMisplaced(page) < 0;
}

int FreeBytes(const std::uint8_t* page) {
    const int slots = SlotCount(page);
    return offsetOf(page, slots - 1) - HeadLength - 2 * slots;
}

int SlotsByFreeSpace(const std::uint8_t* page) {
    const int claimed = ClaimedSlots(page), free = Load16(page + FreeField);
    int end = static_cast<int>(PageSize);
    for (int slots = 0; end >= HeadLength + 2 * slots; ++slots) {
        // The free bytes may be what is damaged: a row at a possible offset is not sacrificed for them.
        if (end - HeadLength - 2 * slots == free && (slots >= claimed || firstMisplaced(page) >= 0))
            return slots;
        const int offset = offsetOf(page, slots);
        if (slots == MaximumSlots || offset > end)
            break;
        end = offset;
    }
    return claimed;
}

bool Fits(const std::uint8_t* page, int length) {
    const int slots = ClaimedSlots(page);
    return slots < MaximumSlots && offsetOf(page, slots - 1) <= static_cast<int>(PageSize) &&
           FreeBytes(page) >= length + 2;
}

void RefuseSlot(const std::uint8_t* page, PageNumber number, int row) {
    if (ClaimedSlots(page) > MaximumSlots)
        Damaged(number, "has too many rows");
    Damaged(number, "row " + std::to_string(row) + " lies outside its place");
}

std::uint8_t Add(std::uint8_t* page, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
    const int row = SlotCount(page);
    const int offset = offsetOf(page, row - 1) - static_cast<int>(bytes.size());
    Store16(page + CountField, static_cast<std::uint32_t>(row + 1));
    std::memcpy(page + offset, bytes.data(), bytes.size());
    setSlot(page, row, offset, flags);
    updateFree(page);
    return static_cast<std::uint8_t>(row);
}

bool CanReplace(const std::uint8_t* page, PageNumber number, int row, int length) {
    return length <= Find(page, number, row).length + FreeBytes(page);
}

void Replace(std::uint8_t* page, PageNumber number, int row, std::span<const std::uint8_t> bytes,
             std::uint16_t flags) {
    Check(page, number);
    const int slots = SlotCount(page);
    if (row >= slots)
        Damaged(number, "has no row " + std::to_string(row));
    const Slot slot = Find(page, number, row);
    const int lowest = offsetOf(page, slots - 1);
    const int grows = static_cast<int>(bytes.size()) - slot.length;
    if (grows != 0 && row + 1 < slots)
        std::memmove(page + lowest - grows, page + lowest, static_cast<std::size_t>(slot.offset - lowest));
    for (int later = row + 1; later < slots; ++later)
        setSlot(page, later, offsetOf(page, later) - grows,
                static_cast<std::uint16_t>(Load16(page + HeadLength + 2 * later) & ~OffsetMask));
    setSlot(page, row, slot.offset - grows, flags);
    if (!bytes.empty())
        std::memcpy(page + slot.offset - grows, bytes.data(), bytes.size());
    updateFree(page);
}

void Remove(std::uint8_t* page, PageNumber number, int row) {
    Replace(page, number, row, {}, HiddenFlag | PointerFlag);
}

bool HasRows(const std::uint8_t* page, PageNumber number) {
    const int slots = SlotCount(page);
    for (int row = 0; row < slots; ++row)
        if (!Find(page, number, row).deleted())
            return true;
    return false;
}

} // namespace jet::datapage
