// The few questions that the files beside this one ask the operating system.
#pragma once

#include <QString>

#include <chrono>
#include <system_error>

namespace tolvex::platform {

// The full host name; empty if the system has none.
QString SystemName();

// Bytes of physical memory; 0 if the system does not say.
quint64 SystemMemory();

// Time since an arbitrary moment; only runs forward. Accurate to about four milliseconds, no system call.
std::chrono::milliseconds SystemUptime();

// Sets the clock to a time since 1970. No error, or the reason why the system refuses.
std::error_code SetSystemClock(std::chrono::milliseconds time);
// Whether a program keeps the clock synchronised with other computers.
bool SystemClockKeptInStep();

// Whether standard input, or standard error, is a terminal.
bool InputIsTerminal();
bool ErrorsAreTerminal();

} // namespace tolvex::platform
