// What must hold of a table's definition before a row is read by it: each number in it is used as a subscript
// or an offset later.
#pragma once

#include "jet/record/TableDefinition.h"

namespace jet {

// What is wrong with one column by itself, as the end of a sentence; null: nothing.
const char* FaultOfColumn(const TableDefinition& definition, const Column& column);

// What is wrong with a tree of keys: it has no columns, or names one that is not there. Null: nothing.
const char* FaultOfIndex(const TableDefinition& definition, const RealIndex& index);

// The first fault of a definition, with the name of the column or index; empty: there is none.
std::string FaultOfDefinition(const TableDefinition& definition);

// Whether two columns have one place in the row.
bool Overlap(const Column& a, const Column& b);

} // namespace jet
