#include "platform/Clock.h"

#include "platform/Prompts.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <time.h>

namespace tolvex::platform {

namespace {

// Between two looks at the events a wait rests this long: short enough for a click to feel immediate.
constexpr double restSeconds = 0.01;

class MachineClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }

    void sleep(double seconds) override {
        using Seconds = std::chrono::duration<double>;
        const auto begin = std::chrono::steady_clock::now();
        prompts().processEvents();
        for (;;) {
            const double left = seconds - Seconds(std::chrono::steady_clock::now() - begin).count();
            if (!(left > 0)) // also for what is no number
                return;
            std::this_thread::sleep_for(Seconds(std::min(left, restSeconds)));
            prompts().processEvents();
        }
    }

    bool set(const QDateTime& time) override {
        if (!time.isValid())
            return false;
        const qint64 milliseconds = time.toMSecsSinceEpoch();
        if (milliseconds < 0)
            return false;
        const struct timespec moment {
            static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1'000'000)
        };
        return ::clock_settime(CLOCK_REALTIME, &moment) == 0;
    }
};

MachineClock machineClock;
Clock* installed = &machineClock;

} // namespace

Clock& clock() {
    return *installed;
}

Clock* setClock(Clock* clock) {
    Clock* before = installed;
    installed = clock ? clock : &machineClock;
    return before;
}

} // namespace tolvex::platform
