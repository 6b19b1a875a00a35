#include "core/system/Programs.h"

#include "platform/Prompts.h"
#include "platform/process/Processes.h"

namespace tolvex {

using platform::ProcessWait;

namespace {

ProcessWait waitOf(int mode) {
    switch (mode) {
    case WaitForEnd:
        return ProcessWait::End;
    case WaitForIdleThenEnd:
        return ProcessWait::IdleThenEnd;
    default:
        return mode > 0 ? ProcessWait::InputIdle : ProcessWait::None;
    }
}

} // namespace

bool StartProgram(const QString& path, const QString& arguments, int waitMode, int timeout, QString* why) {
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    return platform::StartProcess(path, arguments, waitOf(waitMode), timeout, why);
}

} // namespace tolvex
