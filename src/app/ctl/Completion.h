// Completes a command line being typed: words of commands, options, and values of arguments, which the
// program determines as its commands do. The scripts for the shells (packaging/completions/) only ask
// "tolvexctl --complete WORD...".
#pragma once

#include <QStringList>

namespace tolvex::ctl {

// `words`: those after the program's name, the last one as far as it was typed, perhaps empty. Returns a line
// for each candidate that begins with it: the candidate and, after a tab, its description if there is one. A
// line ":files" or ":folders" means that paths of this system are possible too. If something cannot be
// determined, for instance because a file is missing, there are no candidates.
QStringList Complete(const QStringList& words);

} // namespace tolvex::ctl
