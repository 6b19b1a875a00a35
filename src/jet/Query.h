// Statements that change rows, and predicates on rows.
#pragma once

#include "jet/sql/Execute.h"   // IWYU pragma: export
#include "jet/sql/Predicate.h" // IWYU pragma: export
