// What a compaction could not save from one table.
#pragma once

#include "jet/base/RowPointer.h"
#include "jet/maintenance/CompactPages.h"

#include <set>
#include <utility>
#include <vector>

namespace jet {

// Rows may be read and copied more than once until the table is final; each loss is reported once.
class TableLosses {
public:
    // `page`: losses of the table as a whole are reported with this one. `lost` outlives this.
    TableLosses(PageNumber page, std::u16string table, const OnLoss& lost)
        : page_(page)
        , table_(std::move(table))
        , lost_(lost) {}

    void ofTable(const std::string& reason) { add(page_, reason); }
    void ofPage(PageNumber page, const std::string& reason) { add(page, reason); }

    // Holds losses back until it is known whether this pass is the last one; release() reports or discards
    // them.
    void hold() { holding_ = true; }
    std::size_t held() const { return held_.size(); }
    void release(bool tell) {
        holding_ = false;
        for (const auto& [page, reason] : std::exchange(held_, {}))
            if (tell)
                add(page, reason);
    }

private:
    void add(PageNumber page, const std::string& reason) {
        if (holding_)
            held_.emplace_back(page, reason);
        else if (told_.emplace(page, reason).second)
            lost_({page, table_, reason, false});
    }

    PageNumber page_;
    std::u16string table_;
    const OnLoss& lost_;
    std::set<std::pair<PageNumber, std::string>> told_;
    std::vector<std::pair<PageNumber, std::string>> held_;
    bool holding_ = false;
};

// The name of a row by its place: "row 7".
inline std::string RowText(RowPointer at) {
    return "row " + std::to_string(at.row);
}

} // namespace jet
