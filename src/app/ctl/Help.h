// What tolvexctl says of itself, from the rows of its commands: help, manual page, shell completion.
#pragma once

#include <QString>
#include <QStringList>

namespace tolvex::ctl {

struct Command;

// Help for one command.
QString HelpFor(const Command& command);
// Help for all commands that begin with these words; no words: for the program.
QString HelpForGroup(const QStringList& words);

// Section 1 of the manual, in the man macros.
QString ManualPage();
// A script for bash.
QString BashCompletion();

} // namespace tolvex::ctl
