// Database files copied, renamed and removed as a whole: with what their users have written and not yet
// brought into the file, and never while anybody has them open. (Off Windows the system would let all of that
// happen to an open file without a word, and lose what its users write.)
//
// Each routine throws DatabaseError; one of a file in use names the computers that use it. Nothing has
// changed then.
#pragma once

#include "databases/store/SuiteDatabase.h"

namespace tolvex {

// Copies a database to a path where there is none. `step` is called before each block with the bytes done and
// the length, and stops the copy when it gives false. False: it was stopped, and there is no copy.
bool CopyDatabaseFile(const QString& from, const QString& to,
                      const std::function<bool(qint64 done, qint64 total)>& step);

// Gives a database another name in its folder.
void RenameDatabaseFile(const QString& from, const QString& to);

// Removes a database and its lock file: to the desktop's trash where its drive has one, else for good. True:
// it lies in the trash.
bool RemoveDatabaseFile(const QString& path);

// The computers that have a database open, each once, "another program" for one without a name. None for a
// file that cannot be opened.
QStringList ComputersUsing(const QString& path);

} // namespace tolvex
