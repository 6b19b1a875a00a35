#include "network/clock/ClockPoll.h"

#include "platform/Clock.h"

namespace tolvex {

namespace {

// Milliseconds.
constexpr int runningInterval = 10000;
constexpr int testingInterval = 250;
constexpr int measureInterval = 1000;
constexpr int letterPause = 200;      // between a letter and its carriage return
constexpr int firstLetterPause = 500; // after the first letter of a receiver's test
constexpr int strengthPause = 1000;   // between the two halves of a strength request
constexpr qint64 betweenTimeRequests = 300'000;

// No request goes out after this time of the day.
constexpr int lastRequest = 86'395'000;
// A receiver's test goes on until here.
constexpr int lastTestRequest = 86'399'000;

constexpr char carriageReturn = '\r';

} // namespace

ClockPoll::ClockPoll(std::function<bool(char)> send)
    : send_(std::move(send)) {}

void ClockPoll::start(Mode mode) {
    mode_ = mode;
    ++generation_;
    switch (mode) {
    case Mode::Off:
        return;
    case Mode::Running:
        return tickAfter(runningInterval);
    case Mode::Testing:
        return tickAfter(testingInterval);
    case Mode::Form:
        return ask('i', firstLetterPause, [this] { tickAfter(testingInterval); });
    case Mode::Measure:
        return tick();
    }
}

void ClockPoll::clockMoved(qint64 milliseconds) {
    if (lastTimeRequest_.isValid())
        lastTimeRequest_ = lastTimeRequest_.addMSecs(milliseconds);
}

void ClockPoll::after(int milliseconds, const std::function<void()>& step) {
    platform::clock().after(milliseconds, &context_, [this, step, generation = generation_] {
        if (generation == generation_)
            step();
    });
}

void ClockPoll::tickAfter(int milliseconds) {
    after(milliseconds, [this] { tick(); });
}

// A closed port is no error. Without its letter no carriage return goes out.
void ClockPoll::ask(char letter, int pause, const std::function<void()>& then) {
    if (isTooLate() || !send_(letter))
        return then();
    after(pause, [this, then] {
        send_(carriageReturn);
        then();
    });
}

bool ClockPoll::isTooLate() const {
    const int ofDay = platform::clock().now().time().msecsSinceStartOfDay();
    return mode_ == Mode::Form ? ofDay >= lastTestRequest : ofDay > lastRequest;
}

void ClockPoll::askForStrength(const std::function<void()>& then) {
    ask('i', letterPause,
        [this, then] { after(strengthPause, [this, then] { ask('g', letterPause, then); }); });
}

void ClockPoll::tick() {
    switch (mode_) {
    case Mode::Off:
        return;
    case Mode::Running: {
        tickAfter(runningInterval);
        const QDateTime now = platform::clock().now();
        const qint64 since = lastTimeRequest_.isValid() ? lastTimeRequest_.msecsTo(now) : betweenTimeRequests;
        // A clock that somebody set back must not silence the requests until it has caught up.
        if (!isTooLate() && (since >= betweenTimeRequests || since < 0) && send_('o')) {
            lastTimeRequest_ = now;
            after(letterPause, [this] { send_(carriageReturn); });
        }
        return;
    }
    case Mode::Testing:
    case Mode::Form:
        return askForStrength([this] { tickAfter(testingInterval); });
    case Mode::Measure:
        return askForStrength([this] { ask('o', letterPause, [this] { tickAfter(measureInterval); }); });
    }
}

} // namespace tolvex
