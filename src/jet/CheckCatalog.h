// The integrity of the catalogue: names, permissions, properties and relationships.
#pragma once

#include "jet/Catalog.h"
#include "jet/CheckContext.h"

namespace jet {

// `objects`: those that can be read.
void CheckCatalog(CheckContext& context, const Catalog& catalog, const std::vector<CatalogObject>& objects);

} // namespace jet
