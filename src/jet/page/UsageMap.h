// Sets of pages stored in the file: which pages a table, an index or a long-value column owns, which of them
// have room, and which pages of the file are free. A map is one row on a data page, either a bitmap itself
// (inline) or a list of bitmap pages (by reference).
#pragma once

#include "jet/base/RowPointer.h"

#include <functional>
#include <vector>

namespace jet {

// Length of the row of a new map: kind, first page, 64 bytes of bits (512 pages); or kind and 17 bitmap
// pages.
inline constexpr int UsageMapRowLength = 69;

// The map of a table, an index or a column. Holds no state of its own: each call works on the map's pages, so
// several objects on one map and a rollback of the pager are harmless. Every call throws ReadVerification if
// the row is not a map.
class UsageMap {
public:
    UsageMap(Pager& pager, RowPointer row)
        : pager_(&pager)
        , row_(row) {}

    RowPointer row() const { return row_; }
    bool contains(PageNumber page) const;
    // Adds a page; does nothing if it is already there. A map that cannot reach the page is moved or
    // converted to one by reference, for which pages are allocated.
    void add(PageNumber page);
    void remove(PageNumber page);
    // The lowest page of the map from `from` on; 0 if there is none. A scan calls next(0), then next(page +
    // 1).
    PageNumber next(PageNumber from) const;
    // The highest page of the map below `before`; 0 if there is none.
    PageNumber previous(PageNumber before) const;
    // All of them. Throws ReadVerification if one lies beyond the end of the file.
    std::vector<PageNumber> pages() const;
    // Bitmap pages of a map by reference: they belong to no map.
    std::vector<PageNumber> bitmapPages() const;
    // Removes all pages from the map and frees its bitmap pages. The caller frees the pages themselves.
    void clear();
    // The same, and frees the pages.
    void release();

private:
    std::vector<PageNumber> pagesBelow(PageNumber end) const;

    Pager* pager_;
    RowPointer row_;
};

// The map of the file's free pages: bit set = free. The pager's allocate() and release() use it. It changes
// pages only by Pager::edit() and reads by Pager::read(), so it follows the pager's transactions.
class FreeMap {
public:
    // `row`: the map's place in the header (row 0 of page 1).
    FreeMap(Pager& pager, RowPointer row)
        : pager_(&pager)
        , row_(row) {}

    // Takes a free page from the map, or else a new page at the end of the file, for which `append` is
    // called: it lengthens the file by one page and returns the page's number. The bytes of the page are not
    // touched. `append` is called again for bitmap pages if the map outgrows its page.
    PageNumber allocate(const std::function<PageNumber()>& append);
    // Marks a page free. Throws ReadVerification if it is free already or lies beyond the file.
    void release(PageNumber page);
    bool isFree(PageNumber page) const;
    // Forgets the lowest free page. Call after a rollback
    // or a change by others.
    void forget() { lowest_ = 0; }

private:
    PageNumber findFree();
    void markUsed(PageNumber page, const std::function<PageNumber()>& append);

    Pager* pager_;
    RowPointer row_;
    PageNumber lowest_ = 0; // no lower page is free
};

} // namespace jet
