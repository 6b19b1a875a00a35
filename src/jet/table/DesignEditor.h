// Changes one table's definition: columns, indexes, and the maps and trees behind them. The routines of
// TableDesign use it.
#pragma once

#include "jet/table/TableDesign.h"

namespace jet {

class DesignEditor {
public:
    // Both are changed; save() writes the definition. The caller stores the properties.
    DesignEditor(Pager& pager, TableDefinition& definition, PropertyBlob& properties)
        : pager_(pager)
        , definition_(definition)
        , properties_(properties) {}

    // The maps of a new table.
    void makeMaps();

    void addField(const FieldDesign& field);
    // Frees the pages of its long values.
    void dropField(int column);
    void renameField(int column, std::u16string_view name);

    // Returns the position of the real index, whose tree is empty.
    int addIndex(const IndexDesign& index);
    // The tree is removed with the last index that uses it.
    void dropIndex(std::u16string_view name);
    void renameIndex(std::u16string_view name, std::u16string_view to);

    // Frees everything that belongs to the table, including its definition.
    void destroy();
    // Writes the definition so that earlier Table objects notice that they are stale.
    void save();

private:
    RowPointer makeMap();
    void dropMap(RowPointer map);
    // `owner`: as in their heads.
    void freeMapAndDataPages(RowPointer map, std::uint32_t owner);
    void freeTree(const RealIndex& index);
    void freePages(RowPointer map, const std::vector<PageNumber>& pages);
    void makeTree(RealIndex& index);
    LogicalIndex& logicalIndex(std::u16string_view name);
    void sortIndexes();

    Pager& pager_;
    TableDefinition& definition_;
    PropertyBlob& properties_;
};

// Throws InvalidArgument for an invalid name of a table, field or index.
void CheckName(std::u16string_view name);

} // namespace jet
