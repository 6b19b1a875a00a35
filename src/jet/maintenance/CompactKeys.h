// The keys that rows have in the indexes of a new file. Most are made from the row. Texts with characters of
// no known place, columns in another order, and numbers that are none have keys only in the old index: these
// are looked up there, once it is known which are wanted.
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
    // Makes the key of a row, which lies at `at` in the old table and is read through `pager` as it is there
    // or as it will be; what is damaged of it counts as null. False: it has no entry, or its key is missing
    // yet.
    bool make(Pager& pager, RowPointer at, const RowView& row, std::size_t index, Bytes& key);
    // Whether keys were asked for that must be looked up.
    bool areMissing() const;
    // Looks them up. An index that lacks one is left out of the new table: the numbers of indexes may change.
    void lookUpMissing();
    // After the last pass: an index that demands values, but met rows without, gives that up.
    void relax();

private:
    struct Index {
        std::size_t old = 0; // its number in the old table
        KeyEncoder encoder;
        bool orderKnown = true;
        bool metNull = false;             // where it demands values
        std::map<RowPointer, Bytes> kept; // keys of the old index
        std::set<RowPointer> missing;     // rows whose keys are to be looked up
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
