// Tests for and makes folders and files by Windows path, for all parts of the system.
#pragma once

#include "platform/files/FileCopy.h"

#include <QString>

namespace tolvex {

using platform::CopyFileWithProgress;

// Whether a folder exists. A share without a folder after it, and a bare drive, get a trailing backslash
// first. False for an empty path and on errors.
bool DirectoryExists(const QString& path);

// Makes a folder with all of its parents (on a share, the one folder only); true if it exists afterwards.
// Reports failures unless `quiet`. The current drive and folder stay as they are.
bool CreatePath(const QString& path, bool quiet = false);

// Length of a file in bytes, -1 if it cannot be read. A file counts as present if this is above 0.
qint64 FileLength(const QString& path);

// The folder picker, starting at `start`; empty on Cancel. A root loses its backslash ("C:").
QString BrowseForFolder(const QString& prompt, const QString& start);

// A free file name in `folder` (the temporary folder if empty): up to three characters of `prefix`, in upper
// case without blanks, a number of four digits, the extension (TMP if empty). Empty, after a stop box, if no
// name is free in that folder.
QString TempFileName(const QString& folder, const QString& prefix, const QString& extension = {});

// The folders of every data location, in the order in which they are made.
inline constexpr const char* DataFolders[] = {"USERS", "SCHEDULE", "Logs", "Commands", "Scripts"};

// Makes the missing ones in a data location. Does nothing
// for an empty path; stops if USERS cannot be made.
void CreateDataDirectories(const QString& path);

} // namespace tolvex
