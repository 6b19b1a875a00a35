// The terminal that a command was started from, if any.
#pragma once

#include <QString>

#include <optional>

namespace tolvex::platform {

// Whether a user at standard input can be asked.
bool HasTerminal();
// Whether standard error is a terminal, where a line can be overwritten.
bool ErrorsAreShown();

// Writes a prompt to standard error and reads one line. Nothing at the end of input.
std::optional<QString> AskTerminal(const QString& prompt);

} // namespace tolvex::platform
