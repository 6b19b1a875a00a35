// A clock whose time passes only when the test moves it, and which runs delayed calls at their time.
#pragma once

#include "support/FixedClock.h"

#include <QPointer>

#include <algorithm>
#include <functional>
#include <vector>

namespace tolvex::tests {

class VirtualClock : public FixedClock {
public:
    using FixedClock::FixedClock;

    // Milliseconds since the start, independent of setting the clock.
    qint64 passed = 0;

    void after(int milliseconds, QObject* context, std::function<void()> work) override {
        steps_.push_back({passed + milliseconds, context, std::move(work)});
    }
    // Moves to the time of the next call and runs it; false if that is after `end`, which is then reached.
    bool step(qint64 end) {
        const auto next = std::min_element(steps_.begin(), steps_.end(),
                                           [](const Step& a, const Step& b) { return a.due < b.due; });
        if (next == steps_.end() || next->due > end) {
            moveTo(end);
            return false;
        }
        const Step now = *next;
        steps_.erase(next);
        moveTo(now.due);
        if (now.context)
            now.work();
        return true;
    }
    void advance(qint64 milliseconds) {
        const qint64 end = passed + milliseconds;
        while (step(end)) {
        }
    }

private:
    struct Step {
        qint64 due;
        QPointer<QObject> context;
        std::function<void()> work;
    };
    void moveTo(qint64 moment) {
        time = time.addMSecs(moment - passed);
        passed = moment;
    }

    std::vector<Step> steps_;
};

} // namespace tolvex::tests
