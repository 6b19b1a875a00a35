// What every routine of the engine may throw.
#pragma once

#include "jet/base/Error.h" // IWYU pragma: export
