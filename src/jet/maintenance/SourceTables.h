// Opens tables of a file that may be damaged, so that their rows can be saved.
#pragma once

#include "jet/maintenance/CompactPages.h"
#include "jet/table/Table.h"

#include <map>
#include <set>

namespace jet {

class SourceTables {
public:
    // `empty`: a database without user tables. All arguments outlive this and the tables.
    SourceTables(Pager& source, Pager& empty, const OnLoss& lost)
        : source_(source)
        , empty_(empty)
        , lost_(lost) {}

    // A table of the catalogue. Its design is known: if the definition deviates, that of an empty database is
    // used, and this is reported.
    Table openSystem(PageNumber page, const std::u16string& name);
    // Any other table, without its broken columns and indexes, which are reported; nothing if no definition
    // can be read. `related`: with its relationships.
    std::optional<Table> open(PageNumber page, const std::u16string& name, bool related);
    // A table with fewer rows than it counts, with the pages that belong to it by their heads but are missing
    // in its list; nothing if there are none or they hold more rows than that.
    std::optional<Table> withUnlistedPages(const Table& table);
    // Definitions of user tables that lie on none of these pages.
    std::vector<PageNumber> findDefinitions(const std::set<PageNumber>& known);
    // Whether a sound definition of a user table begins here.
    bool isDefinition(PageNumber page);

private:
    bool isFree(PageNumber page);
    // All pages of rows in use whose heads name an owner.
    std::vector<PageNumber> pagesOf(PageNumber owner);
    // The pages to walk over; nothing: the table's own list.
    std::optional<std::vector<PageNumber>> pagesIfUnlisted(const TableDefinition& definition);

    Pager& source_;
    Pager& empty_;
    const OnLoss& lost_;
    std::optional<std::map<PageNumber, std::vector<PageNumber>>> byOwner_; // filled by the first search
};

} // namespace jet
