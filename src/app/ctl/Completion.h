// What may come next on a command line that is being typed: words of commands, options, and what stands for
// an argument, which the program finds out as its commands do. The scripts for the shells
// (packaging/completions/) hold nothing of this; they ask "tolvexctl --complete WORD...".
#pragma once

#include <QStringList>

namespace tolvex::ctl {

// `words`: those after the program's name, the last one as far as it was typed, perhaps empty. Gives a line
// for each candidate that begins with it: the candidate, and after a tab what it is, if there is something to
// say. A line ":files" or ":folders" means that paths of this system may stand there too. What cannot be
// found out, because a file is missing for instance, gives no candidate.
QStringList Complete(const QStringList& words);

} // namespace tolvex::ctl
