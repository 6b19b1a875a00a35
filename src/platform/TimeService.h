// Sets the system's clock: through the system's time service if there is one, which knows who may do so and
// can ask the user; otherwise directly.
#pragma once

#include "platform/Clock.h"

namespace tolvex::platform {

// As Clock::set.
void SetSystemTime(const QDateTime& time, bool mayAsk, const Clock::SetDone& done);

} // namespace tolvex::platform
