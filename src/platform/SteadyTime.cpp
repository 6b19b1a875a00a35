#include "platform/SteadyTime.h"

#include <atomic>

#include <time.h>

namespace tolvex::platform {

namespace {

std::atomic<std::chrono::milliseconds::rep> skipped = 0;

} // namespace

std::chrono::milliseconds SteadyTime() {
    struct timespec now {};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    const std::chrono::nanoseconds time =
        std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
    return std::chrono::duration_cast<std::chrono::milliseconds>(time) +
           std::chrono::milliseconds(skipped.load(std::memory_order_relaxed));
}

void SkipAhead(std::chrono::milliseconds time) {
    skipped += time.count();
}

} // namespace tolvex::platform
