// Time as one seam: now, a wait that keeps events running, a step that is put off, and setting the system
// clock. Tests install a clock of their own.
#pragma once

#include <QDateTime>

#include <functional>

class QObject;

namespace tolvex::platform {

// Why the clock was not set: numbers of the system, which the suite's run-time has no text for, and a
// sentence without its full stop.
enum ClockError : int {
    ClockKeptByNetwork = 50,  // a program keeps it in step with other computers
    NoRightToSetClock = 1314, // or any other reason
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
    // Waits, running pending events meanwhile.
    virtual void sleep(double seconds) = 0;
    // Does some work once from the event loop, after so many milliseconds, unless `context` is destroyed
    // before.
    virtual void after(int milliseconds, QObject* context, std::function<void()> work);
    // Sets the machine's clock. With `mayAsk` the system may ask the user for the right to, so the answer may
    // take a while: `done` gets it, once, at once or from the event loop.
    using SetDone = std::function<void(const ClockRefusal&)>;
    virtual void set(const QDateTime& time, bool mayAsk, SetDone done) = 0;
};

Clock& clock();
// Installs another clock (not owned); null brings the machine's back. Gives the one that was in force.
Clock* setClock(Clock* clock);

} // namespace tolvex::platform
