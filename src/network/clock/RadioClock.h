// The radio clock of a workstation: asks the receiver for the time every five minutes and sets the computer's
// clock, watches the receiver's battery, and measures the strength of reception during a test. A form shows
// what the getters return; its buttons call pressButton and connectTo.
#pragma once

#include "network/clock/ClockLines.h"
#include "network/clock/ClockPoll.h"
#include "network/clock/StrengthPanel.h"
#include "platform/Clock.h"
#include "platform/devices/SerialPort.h"

namespace tolvex {

class RadioClock {
public:
    // What went over the line so far.
    struct Counts {
        int requests = 0; // letters with their carriage returns
        int good = 0;     // time lines that the clock is set by
        int unusable = 0; // other time lines
        int dropped = 0;  // lines of neither kind
    };

    RadioClock();
    ~RadioClock();

    // Called from the event loop. They must not destroy the clock.
    std::function<void()> onChanged;                      // something that the getters return
    std::function<void(const ClockLine&)> onLine;         // each line, dropped ones included
    std::function<void(double difference)> onClockSet;    // by so many seconds
    std::function<void(const QString& sentence)> onError; // the port failed, or the clock cannot be set

    // Connects to a serial port; below 1 there is no clock. A failure is reported. Does nothing after close.
    void connectTo(int port);
    // The button: connects if the port is not open, then starts or ends a test. Without a port no test
    // starts.
    void pressButton();
    void endTest();
    // Closes the port for good.
    void close();

    const QString& status() const { return status_; } // " Enabled", " Disabled", " Error - ..."
    QString buttonCaption() const;                    // "Test", "Testing", "Connect"
    bool buttonEnabled() const { return port_ >= 1; }
    bool testing() const { return poll_.mode() == ClockPoll::Mode::Testing; }
    const StrengthPanel& strength() const { return strength_; }
    bool lowBattery() const { return lowBattery_; }
    // The last time line and when it came; invalid before the first.
    const ClockLine& lastTime() const { return lastTime_; }
    const QDateTime& lastTimeCame() const { return lastTimeCame_; }
    // By how many seconds the last time line moved the clock. Nothing if it did not, or not yet.
    std::optional<double> difference() const { return difference_; }
    const Counts& counts() const { return counts_; }

private:
    bool send(char byte);
    void receive(const QByteArray& bytes);
    void takeTime(const ClockLine& line);
    void setClock(const ClockLine& line);
    void clockSet(const platform::ClockRefusal& refusal, double difference);
    void fail(const QString& what);
    void changed();

    platform::SerialPort serial_;
    ClockLineReader reader_;
    ClockPoll poll_;
    StrengthPanel strength_;
    int port_ = 0;
    bool closed_ = false;
    QString status_ = QStringLiteral(" Disabled");
    bool lowBattery_ = false;
    ClockLine lastTime_;
    QDateTime lastTimeCame_;
    std::optional<double> difference_;
    Counts counts_;
    bool setting_ = false; // the system was asked to set the clock and has not answered
    bool mayAsk_ = true;   // whether the system may ask the user for the right to do so
    QString refusal_;      // why the clock was not set, as it was reported last
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tolvex
