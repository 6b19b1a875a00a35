// A clock of a test's own: stands still until the test or a wait moves it. Installed while it lives.
#pragma once

#include "platform/Clock.h"
#include "platform/Prompts.h"

namespace tolvex::tests {

class FixedClock : public platform::Clock {
public:
    explicit FixedClock(const QDateTime& start)
        : time(start)
        , before_(platform::setClock(this)) {}
    ~FixedClock() override { platform::setClock(before_); }
    FixedClock(const FixedClock&) = delete;
    FixedClock& operator=(const FixedClock&) = delete;

    QDateTime time;
    platform::ClockRefusal refusal; // the result of an attempt to set it
    QList<bool> attempts;           // for each, whether the user could have been asked
    double slept = 0;               // total seconds

    QDateTime now() const override { return time; }
    void sleep(double seconds) override {
        slept += seconds;
        time = time.addMSecs(qRound64(seconds * 1000));
        platform::prompts().processEvents();
    }
    void set(const QDateTime& value, bool mayAsk, SetDone done) override {
        attempts += mayAsk;
        if (!refusal)
            time = value;
        done(refusal);
    }

private:
    platform::Clock* before_;
};

} // namespace tolvex::tests
