// Checks the indexes of one table against its rows: each tree by itself, and that it holds exactly one entry
// with the right key for every row.
#pragma once

#include "jet/index/IndexTree.h"
#include "jet/index/KeyEncoding.h"
#include "jet/maintenance/CheckContext.h"
#include "jet/table/Table.h"

namespace jet {

class IndexesCheck {
public:
    IndexesCheck(CheckContext& context, const Table& table);

    // Adds the keys of a row. Throws the errors of reading its columns.
    void addRow(RowPointer at, const RowView& row);
    // Walks over the trees after all rows were added.
    void run();

private:
    // A sum over entries, independent of their order, so that rows and tree can be compared without keeping
    // either in memory.
    struct Sum {
        std::uint64_t entries = 0;
        std::uint64_t hashes = 0;
        void add(std::span<const std::uint8_t> key, RowPointer row);
        bool operator==(const Sum&) const = default;
    };
    struct Index {
        std::string name;
        const RealIndex* definition = nullptr;
        KeyEncoder encoder;
        bool comparable = true; // its keys can be built here
        Sum rows;
    };
    // The key of a row; false: the index has no entry for it, or `index` is not (or no longer) comparable.
    bool keyOf(Index& index, RowPointer at, const RowView& row);
    void checkTree(Index& index);
    void locate(Index& index, const IndexTree& tree);

    CheckContext& context_;
    const Table& table_;
    std::vector<Index> indexes_;
    std::vector<Value> values_;
    Bytes key_;
    bool reportNulls_ = true;
};

} // namespace jet
