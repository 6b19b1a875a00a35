// Time that only runs forward, for what is cached for a while: how long pages, listings and the like are used
// without asking the disk again.
#pragma once

#include <chrono>

namespace tolvex::platform {

// Accurate to about four milliseconds. No system call.
std::chrono::milliseconds SteadyTime();

// Moves that time forward; for tests, in place of waiting.
void SkipAhead(std::chrono::milliseconds time);

} // namespace tolvex::platform
