// Commands that run until they are stopped.
#pragma once

#include "app/ctl/Command.h"
#include "platform/process/Service.h"

#include <QEventLoop>

#include <optional>

namespace tolvex::ctl {

// The option --seconds; 0 if it is missing, nothing if it is not a number from 1 up.
std::optional<int> SecondsOption(const Call& call);

// One run of the event loop. While it lives, a request to end the program (terminate, interrupt, hang-up)
// ends the run, and the command finishes normally.
class Run {
public:
    Run();
    // Runs until the program is asked to end, `end` is called, or so many seconds have passed (0: no limit).
    // Returns at once if it has already ended.
    void go(int seconds);
    void end();

private:
    QEventLoop loop_;
    bool ended_ = false;
    platform::TerminationRequest request_;
};

} // namespace tolvex::ctl
