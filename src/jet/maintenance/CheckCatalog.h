// The integrity of the catalogue: names, permissions, properties and relationships.
#pragma once

#include "jet/maintenance/CheckContext.h"
#include "jet/table/Catalog.h"

namespace jet {

// `objects`: those that can be read.
void CheckCatalog(CheckContext& context, const Catalog& catalog, const std::vector<CatalogObject>& objects);

} // namespace jet
