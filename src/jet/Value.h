// The values that fields hold, and how they become one another.
#pragma once

#include "jet/base/Convert.h" // IWYU pragma: export
#include "jet/base/Value.h"   // IWYU pragma: export
