#include "jet/record/DefinitionFaults.h"

#include <algorithm>
#include <vector>

namespace jet {

namespace {

// A Numeric in a variable column may have a size derived from its precision; its values have the full one.
bool hasSize(const Column& column) {
    const int size = StoredSize(column.type);
    if (size != 0 && (column.isFixed() || column.type != ColumnType::Numeric))
        return column.size == size;
    return !column.isFixed() || column.type != ColumnType::Text || column.size % 2 == 0;
}

} // namespace

const char* FaultOfColumn(const TableDefinition& definition, const Column& column) {
    if (column.number >= definition.columnNumbers)
        return "has a bad number";
    if (!hasSize(column))
        return "has a bad size";
    if (column.isFixed() && (column.isLong() || column.fixedOffset + column.size > int{PageSize}))
        return "lies outside the row";
    if (!column.isFixed() && column.variableIndex >= definition.variableColumns)
        return "has a bad place in the row";
    return nullptr;
}

const char* FaultOfIndex(const TableDefinition& definition, const RealIndex& index) {
    if (index.columns.empty())
        return "has no columns";
    const bool missing =
        std::any_of(index.columns.begin(), index.columns.end(),
                    [&](const IndexColumn& part) { return definition.findColumnNumber(part.number) < 0; });
    return missing ? "names a column that is not there" : nullptr;
}

std::string FaultOfDefinition(const TableDefinition& definition) {
    std::vector<bool> seen(definition.columnNumbers);
    for (const Column& column : definition.columns) {
        const char* fault = FaultOfColumn(definition, column);
        if (fault == nullptr && seen[column.number])
            fault = "has the number of another";
        if (fault != nullptr)
            return "column '" + ToUtf8(column.name) + "' " + fault;
        seen[column.number] = true;
    }
    for (const LogicalIndex& index : definition.logicalIndexes)
        if (index.real >= definition.realIndexes.size())
            return "index '" + ToUtf8(index.name) + "' has no tree";
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i)
        if (const char* fault = FaultOfIndex(definition, definition.realIndexes[i]); fault != nullptr)
            return definition.nameOfIndex(i) + ' ' + fault;
    return {};
}

bool Overlap(const Column& a, const Column& b) {
    if (a.isFixed() != b.isFixed())
        return false;
    if (!a.isFixed())
        return a.variableIndex == b.variableIndex;
    if (a.type == ColumnType::Boolean || b.type == ColumnType::Boolean)
        return false;
    return a.fixedOffset < b.fixedOffset + b.size && b.fixedOffset < a.fixedOffset + a.size;
}

} // namespace jet
