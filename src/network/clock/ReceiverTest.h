// Tests a radio clock's receiver on any port, before it is put in use. Measures the strength of reception and
// never sets the clock.
#pragma once

#include "network/clock/ClockLines.h"
#include "network/clock/ClockPoll.h"
#include "network/clock/StrengthPanel.h"
#include "platform/devices/SerialPort.h"

namespace tolvex {

class ReceiverTest {
public:
    enum class Scope {
        Strength, // the form: asks for the strength alone
        All       // the shell: asks for the time as well
    };
    explicit ReceiverTest(Scope scope);

    // Called from the event loop. They must not destroy the test.
    std::function<void()> onChanged;              // the strength moved
    std::function<void(const ClockLine&)> onLine; // each line, dropped ones included
    std::function<void(const QString&)>
        onError; // a fault of the port, a sentence; isOpen says whether it is lost

    // Closes the port and opens another one; below 1 there is none. The fault's text is what the form shows
    // after "Error opening Com Port : ".
    platform::SerialFault setPort(int number);
    void close() { setPort(0); }
    bool isOpen() const { return serial_.isOpen(); }

    const StrengthPanel& strength() const { return strength_; }
    int level() const { return level_; } // as it came last; -1 before that

private:
    void receive(const QByteArray& bytes);

    Scope scope_;
    platform::SerialPort serial_;
    ClockLineReader reader_;
    ClockPoll poll_;
    StrengthPanel strength_;
    int level_ = -1;
};

} // namespace tolvex
