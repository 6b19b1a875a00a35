// The terminal that a command was started from, if any.
#pragma once

#include <QString>

#include <optional>

namespace tolvex::platform {

// Whether somebody sits at standard input who can be asked.
bool HasTerminal();
// Whether standard error is shown on a terminal, where a line may be written over.
bool ErrorsAreShown();

// Writes a prompt to standard error and reads one line; nothing at the end of input.
std::optional<QString> AskTerminal(const QString& prompt);

} // namespace tolvex::platform
