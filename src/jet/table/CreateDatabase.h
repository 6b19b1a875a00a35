// The bytes of a new, empty database: General order, code page 1252, no password.
#pragma once

#include "jet/base/Value.h"

namespace jet {

// A whole file image (16 pages). `created` is entered into the catalogue.
Bytes FreshDatabase(Date created);

} // namespace jet
