// Reading what can be read of a damaged database.
#pragma once

#include "jet/table/Salvage.h" // IWYU pragma: export
