#include "platform/process/ChildProcess.h"

#include <QProcess>

#include <unistd.h>

namespace tolvex::platform {

void SetFree(QProcess& process) {
    // Other programs must not inherit what our libraries hold open.
    ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
    // A detached program outlives the terminal anyway.
    process.setChildProcessModifier([] { ::setsid(); });
}

} // namespace tolvex::platform
