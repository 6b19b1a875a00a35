// Waits with the event loop running, as the program does.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <chrono>
#include <thread>

namespace tolvex::tests {

// Runs events until the condition holds; false if it does not within `milliseconds`.
template<typename Condition>
bool waitFor(Condition condition, int milliseconds = 10000) {
    const QDeadlineTimer end(milliseconds);
    while (!condition()) {
        if (end.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Runs events for a while, for things that must not happen.
inline void runEvents(int milliseconds) {
    waitFor([] { return false; }, milliseconds);
}

} // namespace tolvex::tests
