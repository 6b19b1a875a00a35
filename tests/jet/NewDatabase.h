// A fresh database in memory, and what tests ask of it.
#pragma once

#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

namespace jet::tests {

struct NewDatabase {
    MemoryPager pager{FreshDatabase(Date{45000})};
    Catalog catalog{pager};

    // Pages that are not free.
    PageNumber usedPages() {
        const FreeMap map(pager, {1, 0});
        PageNumber used = 0;
        for (PageNumber page = 0; page < pager.pageCount(); ++page)
            used += map.isFree(page) ? 0u : 1u;
        return used;
    }
};

// The number of the error that a call throws; 0: none.
template<class Call>
int ErrorOf(Call&& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.number();
    }
    return 0;
}

} // namespace jet::tests
