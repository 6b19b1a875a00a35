// Copies, renames and removes database files as a whole, with what is still in the log beside them, and never
// while anybody has them open. (Off Windows the system lets a program rename or remove an open file without a
// word, and what its users then write is lost.)
//
// Each routine throws DatabaseError and has then changed nothing. The error of a file in use names the
// computers that use it.
#pragma once

#include "databases/store/SuiteDatabase.h"

namespace tolvex {

// Copies a database, also a read-only one, to a path where there is no file. `step` is called before each
// block with the bytes done and the length of the file; false stops the copy. Result: false when it was
// stopped; there is no copy then.
bool CopyDatabaseFile(const QString& from, const QString& to,
                      const std::function<bool(qint64 done, qint64 total)>& step);

// Gives a database another name in its folder.
void RenameDatabaseFile(const QString& from, const QString& to);

// Removes a database and its lock file: to the desktop's trash if its drive has one, else for good. True when
// it is in the trash.
bool RemoveDatabaseFile(const QString& path);

// The computers that have a database open, each once; "another program" stands for one without a name. Empty
// for a file that cannot be opened.
QStringList ComputersUsing(const QString& path);

} // namespace tolvex
