// Reading what can be read of a damaged database: walks that go on behind damage.
#pragma once

#include "jet/Catalog.h"
#include "jet/Error.h"

namespace jet {

// Whether an error says that the file holds something wrong, as against that it could not be read at all.
inline bool IsDamage(const Error& error) {
    return error.code() == ErrorNumber::ReadVerification || error.code() == ErrorNumber::Corrupt;
}

// Gives every row of a table that can be found to `visit(RowPointer, const RowView&)`, and every damage to
// `damaged(PageNumber, const Error&)`.
template<typename Visit, typename Damaged>
void WalkReadable(const Table& table, Visit visit, Damaged damaged) {
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

using OnDamage = std::function<void(PageNumber, const Error&)>;

// The objects of the catalogue that can be read.
std::vector<CatalogObject> ReadableObjects(const Catalog& catalog, const OnDamage& damaged);

} // namespace jet
