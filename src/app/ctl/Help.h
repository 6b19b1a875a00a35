// The help texts of tolvexctl, from the rows of its commands. The manual page (Manual.h) and the completion
// of words (Completion.h) use the same rows.
#pragma once

#include <QString>
#include <QStringList>

namespace tolvex::ctl {

struct Command;
struct Option;

// "--last N".
QString OptionText(const Option& option);
// "users history [--last N]".
QString UsageOf(const Command& command);

// Help for one command.
QString HelpFor(const Command& command);
// Help for all commands that begin with these words; no words: for the program.
QString HelpForGroup(const QStringList& words);

} // namespace tolvex::ctl
