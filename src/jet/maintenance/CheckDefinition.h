// Checks the integrity of a table's definition: its pages, its columns and its indexes.
#pragma once

#include "jet/maintenance/CheckContext.h"
#include "jet/record/TableDefinition.h"

namespace jet {

// `pages`: those of the definition, in order.
void CheckDefinition(CheckContext& context, const TableDefinition& definition,
                     const std::vector<PageNumber>& pages);

} // namespace jet
