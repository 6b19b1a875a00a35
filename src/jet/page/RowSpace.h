// Decides where the rows of one owner go: a table's rows, or the long values of one column. Finds a page with
// room, allocates new pages and frees empty ones, and keeps the owner's two maps.
#pragma once

#include "jet/page/UsageMap.h"

#include <span>

namespace jet {

class RowSpace {
public:
    // `owner`: the owner in the heads of the pages, a definition page or datapage::LongValueOwner. Remembers
    // only the page that had room last, and checks it before use.
    RowSpace(Pager& pager, std::uint32_t owner, RowPointer ownedMap, RowPointer freeMap)
        : pager_(&pager)
        , owner_(owner)
        , owned_(pager, ownedMap)
        , free_(pager, freeMap) {}

    // Stores a row on some page. `flags`: of its slot (DataPage.h). Cost: the page that had room last, or up
    // to four others; then a new one.
    RowPointer put(std::span<const std::uint8_t> row, std::uint16_t flags);
    // A new, empty page of the owner, which is not offered for other rows.
    PageNumber newPage();
    // Removes a row. Frees the page if it was the last one. Throws ReadVerification if the page does not
    // belong to the owner.
    void remove(RowPointer at);
    // Offers a page with enough room for future rows.
    void noteRoom(PageNumber page);

private:
    bool fits(PageNumber page, int length) const;

    Pager* pager_;
    std::uint32_t owner_;
    UsageMap owned_;
    UsageMap free_;
    PageNumber roomy_ = 0;
};

} // namespace jet
