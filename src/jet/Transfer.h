// Rows out of a database as text and back in.
#pragma once

#include "jet/transfer/Transfer.h" // IWYU pragma: export
