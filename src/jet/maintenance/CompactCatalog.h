// Transfers the catalogue to a new file: decides which objects are kept, with which numbers and names, which
// rights are kept with them, and which relationships still hold. From a sound file everything is kept, and
// only the tables have new numbers.
#pragma once

#include "jet/maintenance/CompactRelationships.h"
#include "jet/maintenance/CompactRow.h"

namespace jet {

class CompactCatalog {
public:
    // The catalogue's tables in the old file, and those of an empty database, whose objects every file has.
    // All outlive this.
    CompactCatalog(const Table& objects, const Table& permissions, const Table& queries,
                   const Table& relationships, Pager& empty, const OnLoss& lost);

    // The readable objects of the old file.
    const std::vector<CatalogObject>& objects() const { return objects_; }
    // Whether some of them are unreadable, or there are fewer rows than the catalogue counts.
    bool isDamaged() const { return damaged_ || objects_.size() < objectsTable_.definition().rowCount; }

    // Call after copying a table; `definition`: the new one, whose relationships name pages of the old file.
    // Tables that are not added are lost.
    void add(const CatalogObject& object, TableDefinition definition);
    // Decides on everything else. Call after all tables were added and before the system tables are copied.
    void settle();
    // The changes to the rows of a system table.
    RowChange changeOf(PageNumber systemTable);
    // Completes the new file: relationships between tables, and standard objects and rights that were lost.
    // `rightsLost`: some were already lost during copying.
    void complete(Pager& target, bool rightsLost);

private:
    // An object that is kept.
    struct Kept {
        CatalogObject object;                               // as it will be
        std::vector<std::pair<std::size_t, Value>> changes; // of the columns of its row
    };

    void report(PageNumber page, std::u16string table, const std::string& reason);
    void keepObjects();
    void giveParents();
    void giveNames();
    void noteChanges();
    void addStandardObjects(Pager& target);
    void addRights(Pager& target);
    Bytes administrator() const;
    void copyFresh(Pager& target, PageNumber table, RowPointer row, const Bytes& administrator);

    const Table& objectsTable_;
    const Table& permissions_;
    const Table& queries_;
    const Table& relationshipsTable_;
    Pager& empty_;
    const OnLoss& lost_;

    bool damaged_ = false;
    std::vector<CatalogObject> objects_;
    std::map<RowPointer, Kept> kept_;             // by their rows
    std::vector<CatalogObject> missing_;          // standard objects that are recreated
    std::map<std::int32_t, std::int32_t> newIds_; // of all kept objects
    CompactRelationships relationships_;
    std::set<std::int32_t> withRights_; // new Ids
    bool rightsLost_ = false;
    Value id_; // of the row being changed
};

} // namespace jet
