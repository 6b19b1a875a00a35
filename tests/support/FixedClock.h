// A clock of a test's own: stands still until the test or a wait moves it. Installed for its life.
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
    platform::ClockRefusal refusal; // what an attempt to set it gets
    QList<bool> attempts;           // whether the user could have been asked, for each
    double slept = 0;               // seconds, in all

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
