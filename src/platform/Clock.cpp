#include "platform/Clock.h"

#include "platform/Prompts.h"
#include "platform/TimeService.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <thread>

namespace tolvex::platform {

namespace {

// A wait checks for events this often: short enough for a click to feel immediate.
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
            if (!(left > 0)) // also NaN
                return;
            std::this_thread::sleep_for(Seconds(std::min(left, restSeconds)));
            prompts().processEvents();
        }
    }

    void set(const QDateTime& time, bool mayAsk, SetDone done) override { SetSystemTime(time, mayAsk, done); }
};

MachineClock machineClock;
Clock* installed = &machineClock;

} // namespace

void Clock::after(int milliseconds, QObject* context, std::function<void()> work) {
    QTimer::singleShot(milliseconds, context, std::move(work));
}

Clock& clock() {
    return *installed;
}

Clock* setClock(Clock* clock) {
    Clock* before = installed;
    installed = clock ? clock : &machineClock;
    return before;
}

} // namespace tolvex::platform
