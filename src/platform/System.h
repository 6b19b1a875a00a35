// The few bare questions that the files beside this one ask the operating system.
#pragma once

#include <QString>

#include <chrono>
#include <system_error>

namespace tolvex::platform {

// The host's name in full; empty when the system has none.
QString SystemName();

// Bytes of physical memory; 0 when the system does not say.
quint64 SystemMemory();

// Time since some moment, which only runs forward: to some four milliseconds, without a system call.
std::chrono::milliseconds SystemUptime();

// Sets the clock to a time since 1970. No error, or why the system refuses.
std::error_code SetSystemClock(std::chrono::milliseconds time);
// Whether a program keeps the clock in step with other computers.
bool SystemClockKeptInStep();

// Whether standard input, or standard error, is a terminal.
bool InputIsTerminal();
bool ErrorsAreTerminal();

} // namespace tolvex::platform
