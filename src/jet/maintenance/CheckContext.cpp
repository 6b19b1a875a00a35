#include "jet/maintenance/CheckContext.h"

#include "jet/base/LittleEndian.h"
#include "jet/page/DataPage.h"
#include "jet/page/UsageMap.h"

#include <algorithm>

namespace jet {

std::vector<PageNumber> CheckContext::readMap(RowPointer map, PageNumber definition,
                                              const std::string& name) {
    std::vector<PageNumber> pages;
    if (map.page == 0 || map.page >= ledger.pages()) {
        faults.fault(definition, "names page " + std::to_string(map.page) + " as the map of the " + name);
        return pages;
    }
    if (!maps_.add(map))
        faults.fault(map.page, "holds a usage map that serves for the " + name + " and for others");
    ledger.claim(map.page, mapOwner_);
    faults.guard(map.page, [&] {
        datapage::Check(pager.read(map.page), map.page);
        const UsageMap usage(pager, map);
        const PageLedger::Owner bitmaps = ledger.add("map pages of the " + name);
        for (const PageNumber page : usage.bitmapPages())
            ledger.claim(page, bitmaps);
        for (PageNumber page = usage.next(0); page != 0; page = usage.next(page + 1)) {
            pages.push_back(page);
            if (page >= ledger.pages())
                return; // and so does all that follows
        }
    });
    return pages;
}

CheckContext::Owned CheckContext::claimMaps(RowPointer ownedMap, RowPointer freeMap, PageNumber definition,
                                            const std::string& name) {
    Owned owned;
    owned.owner = ledger.add(name);
    for (const PageNumber page : readMap(ownedMap, definition, name)) {
        if (ledger.claim(page, owned.owner))
            owned.pages.push_back(page);
    }
    if (freeMap.page == 0)
        return owned; // some columns have no such map
    for (const PageNumber page : readMap(freeMap, definition, name + " with room")) {
        if (!std::binary_search(owned.pages.begin(), owned.pages.end(), page))
            faults.fault(page, "is listed as having room but is not listed among the " + name);
    }
    return owned;
}

bool CheckContext::checkDataPage(PageNumber page, std::uint32_t owner) {
    constexpr int freeField = 2;
    return faults.guard(page, [&] {
        const std::uint8_t* bytes = pager.read(page);
        datapage::Check(bytes, page);
        if (datapage::Owner(bytes) != owner)
            faults.fault(page, "names another owner in its head");
        const int free = Load16(bytes + freeField);
        if (free != datapage::FreeBytes(bytes))
            faults.fault(page, "says that it has " + std::to_string(free) + " free bytes instead of " +
                                   std::to_string(datapage::FreeBytes(bytes)));
    });
}

} // namespace jet
