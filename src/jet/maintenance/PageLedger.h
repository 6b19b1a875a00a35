// The memory of an integrity check: who owns each page, and which rows were visited.
#pragma once

#include "jet/base/Fault.h"
#include "jet/base/RowSet.h"

#include <functional>
#include <vector>

namespace jet {

// Receives faults and counts them.
class FaultSink {
public:
    explicit FaultSink(const std::function<void(const Fault&)>& report)
        : report_(report) {}
    // The table whose pages and rows are checked from now on.
    void setTable(std::u16string table) { table_ = std::move(table); }
    const std::u16string& table() const { return table_; }
    void fault(PageNumber page, const std::string& reason) { give({page, table_, reason, false}); }
    void remark(PageNumber page, const std::string& reason) { give({page, table_, reason, true}); }
    // Damage that a reader found: `page` is where it was reading.
    void damage(PageNumber page, const Error& error);
    std::uint64_t count() const { return count_; }

    // Runs `step` and turns damage that it finds into a fault. False: there was some.
    template<typename Step>
    bool guard(PageNumber page, Step step) {
        try {
            step();
            return true;
        } catch (const Error& error) {
            damage(page, error);
            return false;
        }
    }

private:
    void give(const Fault& fault) {
        count_ += fault.harmless ? 0 : 1;
        report_(fault);
    }

    const std::function<void(const Fault&)>& report_;
    std::u16string table_;
    std::uint64_t count_ = 0;
};

// Every page belongs to one owner. An owner is a thing of a table: its rows, an index, a column, ...
class PageLedger {
public:
    using Owner = std::uint32_t;
    static constexpr Owner Nobody = 0;

    PageLedger(PageNumber pages, FaultSink& faults)
        : faults_(faults)
        , owners_(pages, Nobody) {}

    PageNumber pages() const { return static_cast<PageNumber>(owners_.size()); }
    // A new owner, of the table being checked. `shared`: owners of the same name may claim its pages again
    // (usage maps of several tables lie on one page).
    Owner add(const std::string& name, bool shared = false);
    // Claims a page for this owner. False, and a fault: it lies beyond the end or belongs to another.
    bool claim(PageNumber page, Owner owner);
    bool isOwn(PageNumber page, Owner owner) const { return page < pages() && owners_[page] == owner; }
    bool isClaimed(PageNumber page) const { return owners_[page] != Nobody; }
    // "rows of table 'Carts'"
    std::string describe(PageNumber page) const;

private:
    struct Name {
        std::u16string table;
        std::string what;
        bool shared = false;
    };
    FaultSink& faults_;
    std::vector<Owner> owners_;
    std::vector<Name> names_;
};

} // namespace jet
