// Folders and files by Windows path, as every part of the system tests for them and makes them.
#pragma once

#include "platform/files/FileCopy.h"

#include <QString>

namespace tolvex {

using platform::CopyFileWithProgress;

// Whether a folder is there. A share without a folder behind it and a bare drive get
// their trailing backslash first. Empty paths and errors are false.
bool DirectoryExists(const QString& path);

// Makes a folder with all of its parents (of a share, the one folder only); true when it is there afterwards.
// Says what went wrong unless `quiet`. The current drive and folder stay as they are.
bool CreatePath(const QString& path, bool quiet = false);

// Length of a file in bytes, -1 when it cannot be read. A file counts as present when this is above 0.
qint64 FileLength(const QString& path);

// The folder picker, starting at `start`; empty on Cancel. A root loses its backslash ("C:").
QString BrowseForFolder(const QString& prompt, const QString& start);

// A free file name in `folder` (the temporary folder when empty): up to three characters of `prefix`,
// upper-cased without blanks, a number of four digits, the extension (TMP when empty). No file of that name
// is there. Empty, after a stop box, when none can be made in that folder.
QString TempFileName(const QString& folder, const QString& prefix, const QString& extension = {});

// The folders that every data location has, in the order in which they are made.
inline constexpr const char* DataFolders[] = {"USERS", "SCHEDULE", "Logs", "Commands", "Scripts"};

// Makes those of a data location that are missing. Nothing for an empty path; stops when USERS cannot be
// made.
void CreateDataDirectories(const QString& path);

} // namespace tolvex
