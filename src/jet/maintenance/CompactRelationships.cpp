#include "jet/maintenance/CompactRelationships.h"

#include <algorithm>

namespace jet {

namespace {

using Role = LogicalIndex::Role;

// Removes an index by name from a table that is already copied, with its tree if no other index uses it. One
// that was not made for a relationship stays as an independent index.
void removeSide(Pager& target, TableDefinition& definition, std::size_t position) {
    auto& logical = definition.logicalIndexes;
    if (logical[position].kind != LogicalIndex::Kind::Foreign) {
        const LogicalIndex unrelated;
        logical[position].role = unrelated.role;
        logical[position].otherNumber = unrelated.otherNumber;
        logical[position].otherTable = unrelated.otherTable;
        logical[position].cascadeUpdates = unrelated.cascadeUpdates;
        logical[position].cascadeDeletes = unrelated.cascadeDeletes;
        return;
    }
    const std::uint32_t real = logical[position].real;
    logical.erase(logical.begin() + static_cast<std::ptrdiff_t>(position));
    if (std::any_of(logical.begin(), logical.end(),
                    [real](const LogicalIndex& index) { return index.real == real; }))
        return;
    UsageMap(target, definition.realIndexes[real].pages).release();
    definition.removeIndex(real);
}

} // namespace

void CompactRelationships::add(PageNumber page, std::u16string name, TableDefinition definition) {
    sides_.push_back({page, std::move(name), std::move(definition)});
}

bool CompactRelationships::hasColumn(const std::vector<CatalogObject>& objects, std::u16string_view table,
                                     std::u16string_view column) const {
    for (const Side& side : sides_)
        if (SameName(side.name, table))
            return side.definition.findColumn(column) >= 0;
    // Linked tables and queries have their columns elsewhere.
    return std::any_of(objects.begin(), objects.end(), [&](const CatalogObject& object) {
        return !object.isTable() && object.kind != CatalogObject::RelationshipKind &&
               SameName(object.name, table);
    });
}

// The index on the other side of a relationship, if the two name each other; null if not.
const LogicalIndex* CompactRelationships::partnerOf(const Side& side, const LogicalIndex& index) const {
    for (const Side& other : sides_) {
        if (other.page != index.otherTable)
            continue;
        for (const LogicalIndex& one : other.definition.logicalIndexes)
            if (one.number == index.otherNumber && one.otherTable == side.page &&
                one.otherNumber == index.number && one.role != index.role && one.role != Role::None)
                return &one;
    }
    return nullptr;
}

void CompactRelationships::settle(const Table& table, const std::vector<CatalogObject>& objects) {
    const auto damaged = [this](PageNumber, const Error&) { damaged_ = true; };
    for (const RelationshipColumn& pair : ReadRelationships(table, damaged)) {
        named_.insert(pair.name);
        if ((!hasColumn(objects, pair.table, pair.column) ||
             !hasColumn(objects, pair.referencedTable, pair.referencedColumn)) &&
            broken_.insert(pair.name).second)
            lost_({pair.row.page, table.name(),
                   "relationship '" + ToUtf8(pair.name) + "' names a table or column that is not there",
                   false});
    }
    for (const Side& side : sides_)
        for (const LogicalIndex& index : side.definition.logicalIndexes)
            if (index.role == Role::Referencing && partnerOf(side, index) == nullptr &&
                broken_.insert(index.name).second)
                lost_({side.page, side.name,
                       "lost relationship '" + ToUtf8(index.name) + "', whose other table does not know it",
                       false});
}

// One without any row is kept if all rows are readable.
bool CompactRelationships::holds(const std::u16string& name) const {
    return broken_.count(name) == 0 && (named_.count(name) != 0 || !damaged_);
}

bool CompactRelationships::isBroken(const Side& side, const LogicalIndex& index) const {
    const LogicalIndex* partner = partnerOf(side, index);
    return partner == nullptr || !holds(index.role == Role::Referencing ? index.name : partner->name);
}

void CompactRelationships::write(Pager& target, const std::map<std::int32_t, std::int32_t>& newPages) {
    const auto isRelated = [](const LogicalIndex& index) { return index.role != Role::None; };
    std::vector<std::vector<std::size_t>> broken; // all are examined before the first is changed
    for (const Side& side : sides_) {
        auto& of = broken.emplace_back();
        const auto& indexes = side.definition.logicalIndexes;
        for (std::size_t i = indexes.size(); i-- > 0;)
            if (isRelated(indexes[i]) && isBroken(side, indexes[i]))
                of.push_back(i);
    }
    for (std::size_t i = 0; i < sides_.size(); ++i) {
        TableDefinition& definition = sides_[i].definition;
        auto& indexes = definition.logicalIndexes;
        if (std::none_of(indexes.begin(), indexes.end(), isRelated))
            continue;
        for (const std::size_t position : broken[i])
            removeSide(target, definition, position);
        for (LogicalIndex& index : indexes)
            if (isRelated(index))
                index.otherTable =
                    static_cast<PageNumber>(newPages.at(static_cast<std::int32_t>(index.otherTable)));
        WriteTableDefinition(target, definition);
    }
}

} // namespace jet
