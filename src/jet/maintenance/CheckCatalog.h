// Checks the integrity of the catalogue: names, permissions, properties and relationships.
#pragma once

#include "jet/maintenance/CheckContext.h"
#include "jet/table/Catalog.h"

namespace jet {

// `objects`: the readable ones.
void CheckCatalog(CheckContext& context, const Catalog& catalog, const std::vector<CatalogObject>& objects);

} // namespace jet
