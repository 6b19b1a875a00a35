// A new database in memory, and queries of tests about it.
#pragma once

#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

#include <utility>

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

// A field that allows empty text; `size` in characters.
inline FieldDesign FieldOf(const char16_t* name, ColumnType type, int size = 0) {
    FieldDesign design;
    design.name = name;
    design.type = type;
    design.size = size;
    design.allowZeroLength = true;
    return design;
}

// The error that a call throws; 0: none.
template<class Call>
ErrorNumber CodeOf(Call&& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.code();
    }
    return {};
}
template<class Call>
int ErrorOf(Call&& call) {
    return static_cast<int>(CodeOf(std::forward<Call>(call)));
}

} // namespace jet::tests
