// The keys of rows in the indexes of a new file. Most are built from the row. Texts with characters of
// unknown order, columns in another order, and NaN have keys only in the old index: these are looked up
// there, once it is known which are needed.
#pragma once

#include "jet/index/KeyEncoding.h"
#include "jet/maintenance/TableLosses.h"
#include "jet/table/Table.h"

#include <map>
#include <set>

namespace jet {

class CompactKeys {
public:
    // `definition`: of the new table, with the indexes of the old one. All arguments outlive this.
    CompactKeys(const Table& from, TableDefinition& definition, TableLosses& losses);

    std::size_t count() const { return indexes_.size(); }
    const KeyEncoder& encoder(std::size_t index) const { return indexes_[index].encoder; }

    // Before each pass.
    void begin();
    // Builds the key of a row, which lies at `at` in the old table and is
    // read through `pager` in its old or its new form; damaged columns
    // count as null. False: it has no entry, or its key is still missing.
    bool make(Pager& pager, RowPointer at, const RowView& row, std::size_t index, Bytes& key);
    // Whether requested keys must be looked up.
    bool areMissing() const;
    // Looks them up. An index that lacks one is left out of the new table: the numbers of indexes may change.
    void lookUpMissing();
    // After the last pass: an index that requires values, but found rows without, drops that requirement.
    void relax();

private:
    struct Index {
        std::size_t old = 0; // its number in the old table
        KeyEncoder encoder;
        bool orderKnown = true;
        bool metNull = false;             // for an index that requires values
        std::map<RowPointer, Bytes> kept; // keys of the old index
        std::set<RowPointer> missing;     // rows whose keys must be looked up
    };
    KeyKind makeOfValues(Pager& pager, const RowView& row, const Index& index, Bytes& key);
    void leaveOut(std::size_t index);

    const Table& from_;
    TableDefinition& definition_;
    TableLosses& losses_;
    std::vector<Index> indexes_;
    std::vector<Value> values_;
};

} // namespace jet
