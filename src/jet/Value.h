// The values of fields, and conversions between them.
#pragma once

#include "jet/base/Convert.h" // IWYU pragma: export
#include "jet/base/Value.h"   // IWYU pragma: export
