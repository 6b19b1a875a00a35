// Reads what is readable in a damaged database: walks that continue after damage.
#pragma once

#include "jet/base/Error.h"
#include "jet/table/Table.h"

#include <functional>

namespace jet {

// True for corrupt content, false for an I/O failure.
inline bool IsDamage(const Error& error) {
    return error.code() == ErrorNumber::ReadVerification || error.code() == ErrorNumber::Corrupt;
}

using OnDamage = std::function<void(PageNumber, const Error&)>;

// Runs a step and reports damage at a page to
// `damaged(PageNumber, const Error&)`. False: there was some.
template<typename Damaged, typename Step>
bool DespiteDamage(PageNumber page, const Damaged& damaged, const Step& step) {
    try {
        step();
        return true;
    } catch (const Error& error) {
        if (!IsDamage(error))
            throw;
        damaged(page, error);
        return false;
    }
}

// Passes every row of a table that can be found to `visit(RowPointer, const RowView&)`, and every damage to
// `damaged`.
template<typename Visit>
void WalkReadable(const Table& table, Visit visit, const OnDamage& damaged) {
    RowPointer at;
    for (;;) {
        const RowPointer before = at;
        try {
            RowView row;
            if (!table.next(at, row))
                return;
            visit(at, row);
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            damaged(at.page, error);
            if (at == before)
                return;
        }
    }
}

} // namespace jet
