// A set of rows of a file, as jobs over a whole database keep one of those that they met.
#pragma once

#include "jet/base/RowPointer.h"

#include <bitset>
#include <unordered_map>

namespace jet {

// Memory grows with the number of pages that hold one.
class RowSet {
public:
    // False: it was there.
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
    // Calls `visit` for the rows that are here and not there.
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
