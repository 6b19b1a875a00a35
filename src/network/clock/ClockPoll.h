// The poll of the radio time receiver: which request goes out when. A request is a letter and, a moment
// later, a carriage return. Each step is a single shot of the clock seam: nothing waits, and a test owns the
// time.
#pragma once

#include <QDateTime>
#include <QObject>

#include <functional>

namespace tolvex {

class ClockPoll {
public:
    enum class Mode {
        Off,
        Running, // every 10 s: "o" for the time, 300 s after the last one
        Testing, // every 250 ms: "i" and "g" for the strength
        Form,    // the same, for the test of a receiver: a first "i" at once
        Measure, // strength and time, once a second
    };

    // `send` puts a byte onto the line; false when the port is not open.
    explicit ClockPoll(std::function<bool(char)> send);

    // Starts a mode and drops what another one had under way.
    void start(Mode mode);
    void stop() { start(Mode::Off); }
    Mode mode() const { return mode_; }

    // The computer's clock was moved by so many milliseconds: the time of the last request moves with it.
    void clockMoved(qint64 milliseconds);

private:
    void tick();
    void ask(char letter, int pause, const std::function<void()>& then);
    void after(int milliseconds, const std::function<void()>& step);
    void tickAfter(int milliseconds);
    bool isTooLate() const;
    void askForStrength(const std::function<void()>& then);

    std::function<bool(char)> send_;
    Mode mode_ = Mode::Off;
    int generation_ = 0; // steps of an earlier start do nothing
    QDateTime lastTimeRequest_;
    QObject context_; // destroying it drops the steps under way
};

} // namespace tolvex
