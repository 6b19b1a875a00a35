// Shared by all parts of the integrity check: pages with their owners, and the checks of maps and data pages
// that tables, long-value columns and indexes have in common.
#pragma once

#include "jet/maintenance/PageLedger.h"

namespace jet {

class CheckContext {
public:
    CheckContext(Pager& pages, const std::function<void(const Fault&)>& report)
        : pager(pages)
        , faults(report)
        , ledger(pages.pageCount(), faults)
        , mapOwner_(ledger.add("usage maps", true)) {}

    Pager& pager;
    FaultSink faults;
    PageLedger ledger;

    // Pages of an owner, as listed in its map and granted by the ledger.
    struct Owned {
        std::vector<PageNumber> pages;
        PageLedger::Owner owner = PageLedger::Nobody;
    };
    // Claims the page of a map and its bitmap pages. Returns the pages that the map lists; nothing if it is
    // unreadable. `definition`: the page that points to the map.
    std::vector<PageNumber> readMap(RowPointer map, PageNumber definition, const std::string& name);
    // Claims the pages of an owner, and checks that its map of pages with room lists only these.
    Owned claimMaps(RowPointer ownedMap, RowPointer freeMap, PageNumber definition, const std::string& name);

    // Checks kind, owner field, slots and free bytes of a data page. False: its slots cannot be trusted.
    bool checkDataPage(PageNumber page, std::uint32_t owner);

private:
    PageLedger::Owner mapOwner_;
    RowSet maps_; // maps that already have an owner
};

} // namespace jet
