// The seam for time: the current time, a wait that keeps events running, delayed calls, and setting the
// system clock. Tests install a clock of their own.
#pragma once

#include <QDateTime>

#include <functional>

class QObject;

namespace tolvex::platform {

// Why the clock was not set: numbers of the system, for which the suite's run-time has no text, and a
// sentence without its full stop.
enum ClockError : int {
    ClockKeptByNetwork = 50,  // a program keeps it synchronised with other computers
    NoRightToSetClock = 1314, // also any other reason
};
struct ClockRefusal {
    int number = 0;
    QString text;
    explicit operator bool() const { return number != 0; }
};

class Clock {
public:
    virtual ~Clock() = default;
    // Local date and time, with milliseconds.
    virtual QDateTime now() const = 0;
    // Waits while pending events run.
    virtual void sleep(double seconds) = 0;
    // Runs `work` once from the event loop after the given number of milliseconds, unless `context` is
    // destroyed first.
    virtual void after(int milliseconds, QObject* context, std::function<void()> work);
    // Sets the machine's clock. With `mayAsk` the system may ask the user for the right to, which can take a
    // while. `done` gets the result once, at once or from the event loop.
    using SetDone = std::function<void(const ClockRefusal&)>;
    virtual void set(const QDateTime& time, bool mayAsk, SetDone done) = 0;
};

Clock& clock();
// Installs another clock (not owned); null restores the machine's. Returns the one that was installed.
Clock* setClock(Clock* clock);

} // namespace tolvex::platform
