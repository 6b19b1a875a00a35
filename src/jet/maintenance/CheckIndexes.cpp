#include "jet/maintenance/CheckIndexes.h"

#include "jet/index/IndexIntegrity.h"
#include "jet/table/Salvage.h"

#include <algorithm>

namespace jet {

namespace {

std::string rowText(RowPointer at) {
    return "row " + std::to_string(at.row);
}

} // namespace

void IndexesCheck::Sum::add(std::span<const std::uint8_t> key, RowPointer row) {
    // FNV-1a over the key, then mixed again with the row so that sums of neighbours do not cancel out.
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const std::uint8_t byte : key)
        hash = (hash ^ byte) * 0x100000001B3;
    hash = (hash ^ (std::uint64_t{row.page} << 8 | row.row)) * 0x9E3779B97F4A7C15;
    hashes += hash ^ hash >> 29;
    ++entries;
}

IndexesCheck::IndexesCheck(CheckContext& context, const Table& table)
    : context_(context)
    , table_(table)
    , values_(table.definition().columns.size()) {
    const TableDefinition& definition = table.definition();
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        Index index;
        index.name = definition.nameOfIndex(i);
        index.definition = &definition.realIndexes[i];
        index.encoder = KeyEncoder(definition, *index.definition);
        const auto parts = index.encoder.parts();
        index.comparable = std::all_of(parts.begin(), parts.end(), [&](const KeyEncoder::Part& part) {
            return IsOrderKnown(definition.columns[static_cast<std::size_t>(part.column)]);
        });
        indexes_.push_back(std::move(index));
    }
}

bool IndexesCheck::keyOf(Index& index, RowPointer at, const RowView& row) {
    if (!index.comparable)
        return false;
    for (const KeyEncoder::Part& part : index.encoder.parts())
        table_.value(row, part.column, values_[static_cast<std::size_t>(part.column)]);
    try {
        const KeyKind kind = index.encoder.encodeRow(values_, key_);
        if (kind != KeyKind::Plain && index.definition->isRequired() && reportNulls_)
            context_.faults.fault(at.page,
                                  rowText(at) + " holds a null that " + index.name + " does not allow");
        return kind != KeyKind::AllNull || !index.definition->ignoresNulls();
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::InvalidArgument && error.code() != ErrorNumber::RecordTooLarge)
            throw;
        context_.faults.remark(at.page, rowText(at) + " has a key in " + index.name +
                                            " that cannot be compared: " + error.what());
        index.comparable = false;
        return false;
    }
}

void IndexesCheck::addRow(RowPointer at, const RowView& row) {
    for (Index& index : indexes_) {
        if (keyOf(index, at, row))
            index.rows.add(key_, at);
    }
}

void IndexesCheck::run() {
    reportNulls_ = false;
    for (Index& index : indexes_)
        context_.faults.guard(index.definition->root, [&] { checkTree(index); });
}

void IndexesCheck::checkTree(Index& index) {
    const PageNumber table = table_.definition().page;
    const RowPointer map = index.definition->pages;
    context_.readMap(map, table, "pages of " + index.name);
    if (map.page == 0 || map.page >= context_.ledger.pages())
        return;
    const IndexTree tree(context_.pager, index.definition->root, table, UsageMap(context_.pager, map));

    Sum entries;
    Bytes before;
    Bytes nullKey;
    index.encoder.encodeLeading(std::vector<Value>(index.definition->columns.size()), nullKey);
    const auto visit = [&](KeyView key, RowPointer row) {
        const bool repeated =
            entries.entries > 0 && std::equal(key.begin(), key.end(), before.begin(), before.end());
        if (repeated && index.definition->isUnique() &&
            !std::equal(key.begin(), key.end(), nullKey.begin(), nullKey.end()))
            context_.faults.fault(row.page, rowText(row) + " has the same key in the unique " + index.name +
                                                " as another row");
        entries.add(key, row);
        before.assign(key.begin(), key.end());
    };
    const auto report = [&](const IndexFault& fault) {
        context_.faults.fault(fault.page, fault.reason + " (" + index.name + ")");
    };
    const PageLedger::Owner owner = context_.ledger.add("pages of " + index.name);
    for (const PageNumber page : CheckIndex(tree, report, visit))
        context_.ledger.claim(page, owner);
    if (index.comparable && entries != index.rows)
        locate(index, tree);
}

// The tree and the rows differ: finds the entries and rows without a counterpart.
void IndexesCheck::locate(Index& index, const IndexTree& tree) {
    std::uint64_t found = 0;
    const auto fault = [&](RowPointer at, const std::string& reason) {
        context_.faults.fault(at.page, reason);
        ++found;
    };
    const auto visit = [&](KeyView key, RowPointer at) {
        context_.faults.guard(at.page, [&] {
            RowView row;
            if (!table_.fetch(at, row))
                fault(at, rowText(at) + " is none, but " + index.name + " has an entry for it");
            else if (!keyOf(index, at, row) || !std::equal(key.begin(), key.end(), key_.begin(), key_.end()))
                fault(at, rowText(at) + " has another key than its entry in " + index.name + " says");
        });
    };
    CheckIndex(
        tree, [](const IndexFault&) {}, visit);
    IndexCursor cursor(tree);
    const auto look = [&](RowPointer at, const RowView& row) {
        if (keyOf(index, at, row) && !cursor.seekEntry(key_, at))
            fault(at, rowText(at) + " has no entry in " + index.name);
    };
    WalkReadable(table_, look, [](PageNumber, const Error&) {});
    if (found == 0)
        context_.faults.fault(index.definition->root,
                              "the entries of " + index.name + " are not those of the rows that can be read");
}

} // namespace jet
