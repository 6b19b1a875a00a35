// Starting other programs.
#pragma once

#include <QString>

namespace tolvex {

// Values of StartProgram's wait mode; any other value above 0 is WaitForIdle.
enum StartWait : int {
    NoWait = 0,
    WaitForEnd = -1,
    WaitForIdle = 1,
    WaitForIdleThenEnd = 9999,
};

// Starts a program in a normal window; the wait pointer shows until the routine returns. A wait for the end
// goes in steps of `timeout` milliseconds with events between. False, with a reason in *why, if the program
// could not be started.
bool StartProgram(const QString& path, const QString& arguments, int waitMode = NoWait, int timeout = 100,
                  QString* why = nullptr);

} // namespace tolvex
