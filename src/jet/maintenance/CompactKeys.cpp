#include "jet/maintenance/CompactKeys.h"

#include "jet/index/IndexIntegrity.h"
#include "jet/table/Salvage.h"

#include <algorithm>

namespace jet {

CompactKeys::CompactKeys(const Table& from, TableDefinition& definition, TableLosses& losses)
    : from_(from)
    , definition_(definition)
    , losses_(losses)
    , values_(definition.columns.size()) {
    for (const RealIndex& real : definition.realIndexes) {
        Index index;
        index.old = indexes_.size();
        index.encoder = KeyEncoder(definition, real);
        const auto parts = index.encoder.parts();
        index.orderKnown = std::all_of(parts.begin(), parts.end(), [&](const KeyEncoder::Part& part) {
            return IsOrderKnown(definition.columns[static_cast<std::size_t>(part.column)]);
        });
        indexes_.push_back(std::move(index));
    }
}

void CompactKeys::begin() {
    for (Index& index : indexes_)
        index.metNull = false;
}

bool CompactKeys::make(Pager& pager, RowPointer at, const RowView& row, std::size_t number, Bytes& key) {
    Index& index = indexes_[number];
    const RealIndex& real = definition_.realIndexes[number];
    if (const auto kept = index.kept.find(at); kept != index.kept.end()) {
        key = kept->second;
        return true;
    }
    KeyKind kind = KeyKind::Plain;
    try {
        const auto damaged = [&](PageNumber, const Error&) { kind = makeOfValues(pager, row, index, key); };
        DespiteDamage(row.page(), damaged,
                      [&] { kind = index.encoder.encodeStored(pager, row, definition_.columns, key); });
        if (!index.orderKnown && kind != KeyKind::AllNull)
            throw Error(ErrorNumber::InvalidArgument);
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::InvalidArgument && error.code() != ErrorNumber::RecordTooLarge)
            throw;
        index.missing.insert(at);
        return false;
    }
    index.metNull = index.metNull || (real.isRequired() && kind != KeyKind::Plain);
    return kind != KeyKind::AllNull || !real.ignoresNulls();
}

KeyKind CompactKeys::makeOfValues(Pager& pager, const RowView& row, const Index& index, Bytes& key) {
    for (const KeyEncoder::Part& part : index.encoder.parts()) {
        const auto column = static_cast<std::size_t>(part.column);
        const auto damaged = [&](PageNumber, const Error&) { values_[column] = Value{}; };
        DespiteDamage(row.page(), damaged,
                      [&] { DecodeColumn(pager, row, definition_.columns[column], values_[column]); });
    }
    return index.encoder.encodeRow(values_, key);
}

bool CompactKeys::areMissing() const {
    return std::any_of(indexes_.begin(), indexes_.end(),
                       [](const Index& index) { return !index.missing.empty(); });
}

void CompactKeys::lookUpMissing() {
    for (std::size_t i = indexes_.size(); i-- > 0;) {
        Index& index = indexes_[i];
        if (index.missing.empty())
            continue;
        const auto take = [&](KeyView key, RowPointer row) {
            if (key.size() <= MaximumKeyLength && index.missing.erase(row) != 0)
                index.kept[row] = Bytes(key.begin(), key.end());
        };
        const auto ignore = [](const IndexFault&) {};
        CheckIndex(from_.index(static_cast<int>(index.old)), ignore, take);
        if (!index.missing.empty())
            leaveOut(i);
    }
}

void CompactKeys::leaveOut(std::size_t number) {
    const RowPointer at = *indexes_[number].missing.begin();
    losses_.ofTable("lost " + definition_.nameOfIndex(number) + ", as " + RowText(at) + " of page " +
                    std::to_string(at.page) + " has no key in it");
    definition_.removeIndex(number);
    indexes_.erase(indexes_.begin() + static_cast<std::ptrdiff_t>(number));
}

void CompactKeys::relax() {
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (!indexes_[i].metNull)
            continue;
        losses_.ofTable("has rows without a value in " + definition_.nameOfIndex(i) +
                        ", which does not demand one any more");
        definition_.realIndexes[i].flags &= static_cast<std::uint8_t>(~RealIndex::Required);
    }
}

} // namespace jet
