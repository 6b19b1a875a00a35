// The name of the operating system as the about box shows it.
#pragma once

#include "platform/Machine.h"

namespace tolvex {

// Empty for a system outside the table: the form then keeps its own text.
QString PlatformText(const platform::SystemVersion& version);

} // namespace tolvex
