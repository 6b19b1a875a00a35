// Time that only runs forward, for what is remembered for a while: how long pages, listings and the like are
// taken for true without asking the disk again.
#pragma once

#include <chrono>

namespace tolvex::platform {

// To some four milliseconds. No system call.
std::chrono::milliseconds SteadyTime();

// Puts that time forward; tests only, in place of waiting.
void SkipAhead(std::chrono::milliseconds time);

} // namespace tolvex::platform
