// The name of the operating system for the about box.
#pragma once

#include "platform/Machine.h"

namespace tolvex {

// Empty for a system outside the table: the form then keeps its own text.
QString PlatformText(const platform::SystemVersion& version);

} // namespace tolvex
