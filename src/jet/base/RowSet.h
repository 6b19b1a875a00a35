// A set of rows of a file, for jobs over a whole database that remember which rows they have seen.
#pragma once

#include "jet/base/RowPointer.h"

#include <bitset>
#include <unordered_map>

namespace jet {

// Memory grows with the number of pages that hold one.
class RowSet {
public:
    // False: it was already in the set.
    bool add(RowPointer at) {
        auto&& bit = pages_[at.page][at.row];
        const bool fresh = !bit;
        bit = true;
        return fresh;
    }
    bool contains(RowPointer at) const {
        const auto page = pages_.find(at.page);
        return page != pages_.end() && page->second[at.row];
    }
    // Calls `visit` for the rows that are in this set and not in the other.
    template<typename Visit>
    void forEachNotIn(const RowSet& there, Visit visit) const {
        for (const auto& [page, rows] : pages_) {
            for (std::size_t row = 0; row < rows.size(); ++row) {
                const RowPointer at{page, static_cast<std::uint8_t>(row)};
                if (rows[row] && !there.contains(at))
                    visit(at);
            }
        }
    }

private:
    std::unordered_map<PageNumber, std::bitset<256>> pages_;
};

} // namespace jet
