// Time as one seam: now, a wait that keeps events running, and setting the system clock. Tests install a
// clock of their own.
#pragma once

#include <QDateTime>

namespace tolvex::platform {

class Clock {
public:
    virtual ~Clock() = default;
    // Local date and time, with milliseconds.
    virtual QDateTime now() const = 0;
    // Waits, running pending events meanwhile.
    virtual void sleep(double seconds) = 0;
    // Sets the machine's clock; false when the system refuses.
    virtual bool set(const QDateTime& time) = 0;
};

Clock& clock();
// Installs another clock (not owned); null brings the machine's back. Gives the one that was in force.
Clock* setClock(Clock* clock);

} // namespace tolvex::platform
