#include "platform/System.h"

#include <cerrno>

#include <sys/timex.h>
#include <time.h>
#include <unistd.h>

namespace tolvex::platform {

QString SystemName() {
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? QString::fromUtf8(name) : QString();
}

quint64 SystemMemory() {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(pageSize) : 0;
}

std::chrono::milliseconds SystemUptime() {
    struct timespec now {};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    const std::chrono::nanoseconds time =
        std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

std::error_code SetSystemClock(std::chrono::milliseconds time) {
    const auto milliseconds = time.count();
    const struct timespec moment {
        static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1'000'000)
    };
    if (::clock_settime(CLOCK_REALTIME, &moment) == 0)
        return {};
    return {errno, std::generic_category()};
}

bool SystemClockKeptInStep() {
    struct timex state {};
    return ::adjtimex(&state) >= 0 && (state.status & STA_UNSYNC) == 0;
}

bool InputIsTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
}

bool ErrorsAreTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

} // namespace tolvex::platform
