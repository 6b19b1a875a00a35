// Checks a table's definition before it is used to read rows: each number in it later becomes a subscript or
// an offset.
#pragma once

#include "jet/record/TableDefinition.h"

namespace jet {

// What is wrong with one column, as the end of a sentence; null: nothing.
const char* FaultOfColumn(const TableDefinition& definition, const Column& column);

// What is wrong with a tree of keys: it has no columns, or names a missing one. Null: nothing.
const char* FaultOfIndex(const TableDefinition& definition, const RealIndex& index);

// The first fault of a definition, with the name of the column or index; empty: there is none.
std::string FaultOfDefinition(const TableDefinition& definition);

// Whether two columns have one place in the row.
bool Overlap(const Column& a, const Column& b);

} // namespace jet
