// Statements that change rows, and conditions that rows meet or do not.
#pragma once

#include "jet/sql/Execute.h"   // IWYU pragma: export
#include "jet/sql/Predicate.h" // IWYU pragma: export
