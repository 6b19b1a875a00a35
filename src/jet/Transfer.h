// Exports rows of a database as text and imports them.
#pragma once

#include "jet/transfer/Transfer.h" // IWYU pragma: export
