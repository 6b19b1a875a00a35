// Reads what is readable in a damaged database.
#pragma once

#include "jet/table/Salvage.h" // IWYU pragma: export
