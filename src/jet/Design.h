// The design of a database: makes a new one, and its tables, fields and indexes.
#pragma once

#include "jet/table/CreateDatabase.h" // IWYU pragma: export
#include "jet/table/TableDesign.h"    // IWYU pragma: export
