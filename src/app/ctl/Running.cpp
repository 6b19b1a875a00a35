#include "app/ctl/Running.h"

#include <QTimer>

namespace tolvex::ctl {

std::optional<int> SecondsOption(const Call& call) {
    if (!call.has("--seconds"))
        return 0;
    constexpr int mostSeconds = 1'000'000;
    bool isNumber = false;
    const int seconds = call.option("--seconds").toInt(&isNumber);
    return isNumber && seconds >= 1 && seconds <= mostSeconds ? std::optional(seconds) : std::nullopt;
}

Run::Run()
    : request_([this] { end(); }) {}

void Run::end() {
    ended_ = true;
    loop_.quit();
}

void Run::go(int seconds) {
    if (ended_)
        return;
    if (seconds > 0)
        QTimer::singleShot(seconds * 1000, &loop_, &QEventLoop::quit);
    loop_.exec();
}

} // namespace tolvex::ctl
