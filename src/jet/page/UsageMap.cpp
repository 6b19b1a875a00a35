#include "jet/page/UsageMap.h"

#include "jet/base/Damage.h"
#include "jet/base/Value.h"
#include "jet/page/DataPage.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint8_t Inline = 0;
constexpr std::uint8_t ByReference = 1;
constexpr int InlineHead = 5; // kind, first page
constexpr std::uint8_t BitmapType = 5;
constexpr PageNumber BitmapHead = 4;
constexpr PageNumber PagesPerBitmap = (PageSize - BitmapHead) * 8;

// A range of bits in memory: bit i stands for page first + i.
struct Bits {
    const std::uint8_t* at = nullptr;
    PageNumber first = 0;
    PageNumber count = 0;

    bool has(PageNumber page) const {
        return page >= first && page - first < count &&
               (at[(page - first) / 8] >> (page - first) % 8 & 1) != 0;
    }
    // The lowest page with a set bit, from `from` on; 0: none.
    PageNumber next(PageNumber from) const {
        from = std::max(from, PageNumber{1}); // page 0 is in no map
        PageNumber bit = from > first ? from - first : 0;
        while (bit < count) {
            if (bit % 64 == 0 && count - bit >= 64 && Load64(at + bit / 8) == 0) {
                bit += 64;
                continue;
            }
            const unsigned rest = static_cast<unsigned>(at[bit / 8]) >> bit % 8;
            if (rest != 0)
                return first + bit + static_cast<PageNumber>(std::countr_zero(rest));
            bit = (bit / 8 + 1) * 8;
        }
        return 0;
    }
    // The highest page with a set bit below `before`; 0: none.
    PageNumber previous(PageNumber before) const {
        PageNumber bit = before > first ? std::min(before - first, count) : 0;
        while (bit > 0) {
            const PageNumber byte = (bit - 1) / 8;
            const unsigned rest = at[byte] & (0xFFu >> (7 - (bit - 1) % 8));
            if (rest != 0)
                return first + byte * 8 + static_cast<PageNumber>(std::bit_width(rest)) - 1;
            bit = byte * 8;
        }
        return 0;
    }
};

// A map's row on its page.
struct MapRow {
    const std::uint8_t* at = nullptr;
    int length = 0;
    int offset = 0;

    bool isInline() const { return at[0] == Inline; }
    Bits bits() const { // of an inline map
        return {at + InlineHead, Load32(at + 1), static_cast<PageNumber>(length - InlineHead) * 8};
    }
    PageNumber entries() const { return static_cast<PageNumber>(length - 1) / 4; } // of a map by reference
    PageNumber entry(PageNumber index) const { return Load32(at + 1 + 4 * index); }
};

MapRow readRow(Pager& pager, RowPointer row) {
    const std::uint8_t* page = pager.read(row.page);
    if (!datapage::IsDataPage(page))
        Damaged(row.page, "holds no usage maps");
    const auto slot = datapage::Find(page, row.page, row.row);
    if (slot.hidden || slot.pointer || slot.length < InlineHead || page[slot.offset] > ByReference)
        Damaged(row.page, "row " + std::to_string(row.row) + " is no usage map");
    const MapRow map{page + slot.offset, slot.length, slot.offset};
    // So no bit stands for a page above the highest page number.
    if (map.isInline() && map.bits().first > MaximumPages)
        Damaged(row.page, "row " + std::to_string(row.row) + " is the usage map of pages that no file has");
    return map;
}

Bits readBitmap(Pager& pager, const MapRow& row, PageNumber index) {
    const PageNumber number = row.entry(index);
    if (number == 0)
        return {};
    const std::uint8_t* page = pager.read(number);
    if (page[0] != BitmapType)
        Damaged(number, "is no usage map bitmap");
    return {page + BitmapHead, index * PagesPerBitmap, PagesPerBitmap};
}

// The range of the map that holds the bit of `page`; empty if the map does not reach it.
Bits stretchOf(Pager& pager, const MapRow& row, PageNumber page) {
    if (row.isInline())
        return row.bits();
    const PageNumber index = page / PagesPerBitmap;
    return index < row.entries() ? readBitmap(pager, row, index) : Bits{};
}

// Calls `visit(Bits)` for each range that may have set bits, lowest first, until it returns a page.
template<typename Visit>
PageNumber firstOf(Pager& pager, RowPointer row, PageNumber from, Visit visit) {
    const MapRow map = readRow(pager, row);
    if (map.isInline())
        return visit(map.bits());
    for (PageNumber index = from / PagesPerBitmap; index < map.entries(); ++index)
        if (const PageNumber found = visit(readBitmap(pager, map, index)); found != 0)
            return found;
    return 0;
}

void setBit(std::uint8_t* bits, PageNumber bit, bool value) {
    const auto mask = static_cast<std::uint8_t>(1u << bit % 8);
    bits[bit / 8] = static_cast<std::uint8_t>(value ? bits[bit / 8] | mask : bits[bit / 8] & ~mask);
}

// Writes the bit of a page that the map reaches.
void writeBit(Pager& pager, RowPointer row, PageNumber page, bool value) {
    const MapRow map = readRow(pager, row);
    if (map.isInline()) {
        const PageNumber bit = page - map.bits().first;
        setBit(pager.edit(row.page) + map.offset + InlineHead, bit, value);
    } else {
        const PageNumber index = page / PagesPerBitmap;
        readBitmap(pager, map, index); // throws if it is not one
        setBit(pager.edit(map.entry(index)) + BitmapHead, page % PagesPerBitmap, value);
    }
}

void formatBitmap(std::uint8_t* page, std::uint8_t fill) {
    std::memset(page, fill, PageSize);
    page[0] = BitmapType;
    page[1] = 1;
    page[2] = page[3] = 0;
}

void setEntry(Pager& pager, RowPointer row, PageNumber index, PageNumber bitmap) {
    const int offset = readRow(pager, row).offset;
    Store32(pager.edit(row.page) + offset + 1 + 4 * index, bitmap);
}

void replaceRow(Pager& pager, RowPointer row, const Bytes& bytes) {
    if (!datapage::CanReplace(pager.read(row.page), row.page, row.row, static_cast<int>(bytes.size())))
        Damaged(row.page, "has no room for a usage map");
    datapage::Replace(pager.edit(row.page), row.page, row.row, bytes, 0);
}

} // namespace

bool UsageMap::contains(PageNumber page) const {
    return stretchOf(*pager_, readRow(*pager_, row_), page).has(page);
}

PageNumber UsageMap::next(PageNumber from) const {
    return firstOf(*pager_, row_, from, [from](const Bits& bits) { return bits.next(from); });
}

PageNumber UsageMap::previous(PageNumber before) const {
    const MapRow map = readRow(*pager_, row_);
    if (map.isInline())
        return map.bits().previous(before);
    for (PageNumber index = std::min(map.entries(), before / PagesPerBitmap + 1); index-- > 0;)
        if (const PageNumber found = readBitmap(*pager_, map, index).previous(before); found != 0)
            return found;
    return 0;
}

std::vector<PageNumber> UsageMap::pages() const {
    return pagesBelow(pager_->pageCount());
}

std::vector<PageNumber> UsageMap::pagesBelow(PageNumber end) const {
    std::vector<PageNumber> all;
    for (PageNumber page = next(0); page != 0; page = next(page + 1)) {
        if (page >= end)
            Damaged(row_.page, "row " + std::to_string(row_.row) + " lists page " + std::to_string(page) +
                                   ", which lies beyond the end of the file");
        all.push_back(page);
    }
    return all;
}

std::vector<PageNumber> UsageMap::bitmapPages() const {
    std::vector<PageNumber> all;
    const MapRow map = readRow(*pager_, row_);
    for (PageNumber index = 0; !map.isInline() && index < map.entries(); ++index)
        if (map.entry(index) != 0)
            all.push_back(map.entry(index));
    return all;
}

void UsageMap::add(PageNumber page) {
    if (contains(page))
        return;
    MapRow map = readRow(*pager_, row_);
    if (map.isInline()) {
        const Bits bits = map.bits();
        if (page >= bits.first && page - bits.first < bits.count)
            return writeBit(*pager_, row_, page, true);
        const std::vector<PageNumber> old = pagesBelow(MaximumPages);
        const PageNumber first = (old.empty() ? page : std::min(page, old.front())) & ~7u;
        const PageNumber highest = old.empty() ? page : std::max(page, old.back());
        if (highest - first < bits.count) {
            std::uint8_t* row = pager_->edit(row_.page) + map.offset;
            std::memset(row + InlineHead, 0, static_cast<std::size_t>(map.length - InlineHead));
            Store32(row + 1, first);
            for (const PageNumber one : old)
                setBit(row + InlineHead, one - first, true);
            setBit(row + InlineHead, page - first, true);
            return;
        }
        Bytes bytes(static_cast<std::size_t>(std::max(map.length, UsageMapRowLength)), 0);
        bytes[0] = ByReference;
        replaceRow(*pager_, row_, bytes);
        for (const PageNumber one : old)
            add(one);
        map = readRow(*pager_, row_);
    }
    const PageNumber index = page / PagesPerBitmap;
    if (index >= map.entries())
        throw Error(ErrorNumber::FileTooLarge);
    if (map.entry(index) == 0) {
        const PageNumber bitmap = pager_->allocate();
        formatBitmap(pager_->edit(bitmap), 0);
        setEntry(*pager_, row_, index, bitmap);
    }
    writeBit(*pager_, row_, page, true);
}

void UsageMap::remove(PageNumber page) {
    if (contains(page))
        writeBit(*pager_, row_, page, false);
}

void UsageMap::clear() {
    const std::vector<PageNumber> bitmaps = bitmapPages();
    for (const PageNumber bitmap : bitmaps)
        if (pager_->read(bitmap)[0] != BitmapType)
            Damaged(bitmap, "is no usage map bitmap");
    const MapRow map = readRow(*pager_, row_);
    std::memset(pager_->edit(row_.page) + map.offset, 0, static_cast<std::size_t>(map.length));
    for (const PageNumber bitmap : bitmaps)
        pager_->release(bitmap);
}

void UsageMap::release() {
    const std::vector<PageNumber> all = pages();
    clear();
    for (const PageNumber page : all)
        pager_->release(page);
}

bool FreeMap::isFree(PageNumber page) const {
    return stretchOf(*pager_, readRow(*pager_, row_), page).has(page);
}

PageNumber FreeMap::findFree() {
    const PageNumber from = lowest_;
    const PageNumber found =
        firstOf(*pager_, row_, from, [from](const Bits& bits) { return bits.next(from); });
    const PageNumber end = pager_->pageCount();
    lowest_ = found == 0 ? end : std::min(found, end);
    return found < end ? found : 0;
}

PageNumber FreeMap::allocate(const std::function<PageNumber()>& append) {
    PageNumber page = findFree();
    if (page == 0)
        page = append();
    markUsed(page, append);
    return page;
}

void FreeMap::release(PageNumber page) {
    if (page >= pager_->pageCount() || isFree(page))
        Damaged(page, "is freed but not in use");
    lowest_ = std::min(lowest_, page);
    MapRow map = readRow(*pager_, row_);
    const PageNumber index = page / PagesPerBitmap;
    if (map.isInline() && page - map.bits().first >= map.bits().count)
        return; // another engine's file whose map is too short: compaction will reclaim the page
    if (!map.isInline() && index >= map.entries())
        throw Error(ErrorNumber::FileTooLarge);
    if (!map.isInline() && map.entry(index) == 0) {
        // No page of this range was ever free, so it has no bitmap: this page becomes it.
        formatBitmap(pager_->edit(page), 0);
        setEntry(*pager_, row_, index, page);
        return;
    }
    writeBit(*pager_, row_, page, true);
}

void FreeMap::markUsed(PageNumber page, const std::function<PageNumber()>& append) {
    // Pages beyond the end of the map count as free; when it is lengthened, those already in the file are in
    // use and stay so.
    const auto clearInFile = [this](std::uint8_t* bits, PageNumber first, PageNumber from, PageNumber count) {
        const PageNumber end = std::min(pager_->pageCount(), first + count);
        for (PageNumber one = std::max(first, from); one < end; ++one)
            setBit(bits, one - first, false);
    };
    std::vector<PageNumber> waiting{page};
    while (!waiting.empty()) {
        const PageNumber used = waiting.back();
        const MapRow map = readRow(*pager_, row_);
        if (map.isInline()) {
            const Bits bits = map.bits();
            const PageNumber covered = bits.first + bits.count;
            if (used < covered) {
                if (used >= bits.first)
                    writeBit(*pager_, row_, used, false);
                waiting.pop_back();
                continue;
            }
            Bytes row(map.at, map.at + map.length);
            const PageNumber cover = (used - bits.first) / 32 * 32 + 32;
            row.resize(InlineHead + cover / 8, 0xFF);
            if (datapage::CanReplace(pager_->read(row_.page), row_.page, row_.row,
                                     static_cast<int>(row.size()))) {
                clearInFile(row.data() + InlineHead, bits.first, covered, cover);
                datapage::Replace(pager_->edit(row_.page), row_.page, row_.row, row, 0);
                continue;
            }
            // The map outgrows its page: from now on it has pages of its own. The first one takes over all
            // bits.
            const PageNumber bitmap = append();
            std::uint8_t* whole = pager_->edit(bitmap);
            formatBitmap(whole, 0xFF);
            clearInFile(whole + BitmapHead, 0, 0, PagesPerBitmap);
            const Bits old{row.data() + InlineHead, bits.first, bits.count};
            for (PageNumber one = old.next(0); one != 0 && one < PagesPerBitmap; one = old.next(one + 1))
                setBit(whole + BitmapHead, one, true);
            Bytes reference(UsageMapRowLength, 0);
            reference[0] = ByReference;
            Store32(reference.data() + 1, bitmap);
            datapage::Replace(pager_->edit(row_.page), row_.page, row_.row, reference, 0);
            waiting.push_back(bitmap);
            continue;
        }
        const PageNumber index = used / PagesPerBitmap;
        if (index >= map.entries())
            throw Error(ErrorNumber::FileTooLarge);
        if (map.entry(index) == 0) {
            const PageNumber bitmap = append();
            std::uint8_t* bits = pager_->edit(bitmap);
            formatBitmap(bits, 0xFF);
            clearInFile(bits + BitmapHead, index * PagesPerBitmap, 0, PagesPerBitmap);
            setEntry(*pager_, row_, index, bitmap);
            waiting.push_back(bitmap);
            continue;
        }
        writeBit(*pager_, row_, used, false);
        waiting.pop_back();
    }
}

} // namespace jet
