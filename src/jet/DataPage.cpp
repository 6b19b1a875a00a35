#include "jet/DataPage.h"

#include "jet/Damage.h"

#include <cstring>

namespace jet::datapage {

namespace {

constexpr int Type = 0;
constexpr int FreeField = 2;
constexpr int OwnerField = 4;
constexpr int CountField = 12;
constexpr std::uint16_t OffsetMask = 0x1FFF;
constexpr std::uint8_t DataType = 1;

std::uint8_t* slotAt(std::uint8_t* page, int row) {
    return page + HeadLength + 2 * row;
}

int offsetOf(const std::uint8_t* page, int row) {
    return row < 0 ? static_cast<int>(PageSize) : Load16(page + HeadLength + 2 * row) & OffsetMask;
}

void setSlot(std::uint8_t* page, int row, int offset, std::uint16_t flags) {
    Store16(slotAt(page, row), static_cast<std::uint32_t>(offset) | flags);
}

void updateFree(std::uint8_t* page) {
    Store16(page + FreeField, static_cast<std::uint32_t>(FreeBytes(page)));
}

} // namespace

void Format(std::uint8_t* page, std::uint32_t owner) {
    std::memset(page, 0, PageSize);
    page[Type] = DataType;
    page[1] = 1;
    Store32(page + OwnerField, owner);
    updateFree(page);
}

void Check(const std::uint8_t* page, PageNumber number) {
    if (!IsDataPage(page))
        Damaged(number, "is no data page");
    const int slots = SlotCount(page);
    const int least = HeadLength + 2 * slots;
    if (slots > MaximumSlots)
        Damaged(number, "has too many rows");
    for (int row = 0; row < slots; ++row)
        if (offsetOf(page, row) > offsetOf(page, row - 1) || offsetOf(page, row) < least)
            Damaged(number, "row " + std::to_string(row) + " lies outside its place");
}

std::uint32_t Owner(const std::uint8_t* page) {
    return Load32(page + OwnerField);
}

int SlotCount(const std::uint8_t* page) {
    return Load16(page + CountField);
}

int FreeBytes(const std::uint8_t* page) {
    const int slots = SlotCount(page);
    return offsetOf(page, slots - 1) - HeadLength - 2 * slots;
}

bool IsDataPage(const std::uint8_t* page) {
    return page[Type] == DataType;
}

bool Fits(const std::uint8_t* page, int length) {
    return SlotCount(page) < MaximumSlots && FreeBytes(page) >= length + 2;
}

Slot Find(const std::uint8_t* page, PageNumber number, int row) {
    const int slots = SlotCount(page);
    if (slots > MaximumSlots)
        Damaged(number, "has too many rows");
    if (row >= slots)
        return {0, 0, true, true};
    const std::uint16_t flags = Load16(page + HeadLength + 2 * row);
    const int offset = offsetOf(page, row);
    const int end = offsetOf(page, row - 1);
    if (offset > end || end > static_cast<int>(PageSize) || offset < HeadLength + 2 * slots)
        Damaged(number, "row " + std::to_string(row) + " lies outside its place");
    return {offset, end - offset, (flags & HiddenFlag) != 0, (flags & PointerFlag) != 0};
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
    const Slot slot = Find(page, number, row);
    const int slots = SlotCount(page);
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
