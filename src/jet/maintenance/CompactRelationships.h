// Relationships between the tables of a new file. One holds if all its tables and columns exist and, if the
// engine enforces it, the indexes of its two sides name each other. One that no longer holds is removed
// completely.
#pragma once

#include "jet/maintenance/CompactPages.h"
#include "jet/table/Catalog.h"

#include <map>
#include <set>

namespace jet {

class CompactRelationships {
public:
    explicit CompactRelationships(const OnLoss& lost)
        : lost_(lost) {}

    // Adds a copied table. `page`: of its definition in the old file, by which the relationships of
    // `definition`, the new one, still name the tables.
    void add(PageNumber page, std::u16string name, TableDefinition definition);
    // Determines which ones hold, after all tables were added. `table`: MSysRelationships; `objects`: of the
    // old file.
    void settle(const Table& table, const std::vector<CatalogObject>& objects);
    // Whether the relationship of this name is kept.
    bool holds(const std::u16string& name) const;
    // Writes the definitions with the tables' new pages in
    // place of the old ones, and without removed sides.
    void write(Pager& target, const std::map<std::int32_t, std::int32_t>& newPages);

private:
    struct Side {
        PageNumber page; // of the table
        std::u16string name;
        TableDefinition definition;
    };
    bool hasColumn(const std::vector<CatalogObject>& objects, std::u16string_view table,
                   std::u16string_view column) const;
    const LogicalIndex* partnerOf(const Side& side, const LogicalIndex& index) const;
    bool isBroken(const Side& side, const LogicalIndex& index) const;

    const OnLoss& lost_;
    std::vector<Side> sides_;
    std::set<std::u16string> named_;  // by rows
    std::set<std::u16string> broken_; // that do not hold
    bool damaged_ = false;            // some rows are unreadable
};

} // namespace jet
