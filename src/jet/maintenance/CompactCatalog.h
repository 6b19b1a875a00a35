// The catalogue on its way into a new file: which objects go over, with which numbers and names, whose rights
// go with them, and which relationships still hold. Of a sound file everything goes over, and only the tables
// have new numbers.
#pragma once

#include "jet/maintenance/CompactRelationships.h"
#include "jet/maintenance/CompactRow.h"

namespace jet {

class CompactCatalog {
public:
    // The catalogue's tables in the old file, and those of an empty database, whose objects no file is
    // without. All outlive this.
    CompactCatalog(const Table& objects, const Table& permissions, const Table& queries,
                   const Table& relationships, Pager& empty, const OnLoss& lost);

    // The objects of the old file that can be read.
    const std::vector<CatalogObject>& objects() const { return objects_; }
    // Whether something of them cannot, or there are fewer rows than the catalogue counts.
    bool isDamaged() const { return damaged_ || objects_.size() < objectsTable_.definition().rowCount; }

    // A table was copied; `definition`: the new one, whose relationships name pages of the old file. Tables
    // that are not added are lost.
    void add(const CatalogObject& object, TableDefinition definition);
    // Decides on everything else when all tables were added. Before the system tables are copied.
    void settle();
    // What becomes of the rows of a system table.
    RowChange changeOf(PageNumber systemTable);
    // Completes the new file: relationships between tables, standard objects and rights that were lost.
    // `rightsLost`: some were lost already when they were copied.
    void complete(Pager& target, bool rightsLost);

private:
    // An object that goes over.
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
    std::vector<CatalogObject> missing_;          // standard objects that are made anew
    std::map<std::int32_t, std::int32_t> newIds_; // of everything that is kept
    CompactRelationships relationships_;
    std::set<std::int32_t> withRights_; // new Ids
    bool rightsLost_ = false;
    Value id_; // of the row that is being changed
};

} // namespace jet
