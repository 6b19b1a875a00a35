#include "platform/SteadyTime.h"

#include "platform/System.h"

#include <atomic>

namespace tolvex::platform {

namespace {

std::atomic<std::chrono::milliseconds::rep> skipped = 0;

} // namespace

std::chrono::milliseconds SteadyTime() {
    return SystemUptime() + std::chrono::milliseconds(skipped.load(std::memory_order_relaxed));
}

void SkipAhead(std::chrono::milliseconds time) {
    skipped += time.count();
}

} // namespace tolvex::platform
