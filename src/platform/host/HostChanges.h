// Changes of the host's own file system, one call each, for this floor only. They do not ask whether the
// machine is only looked at (LookOnly.h): their callers do. What is to survive a power cut stands in
// Replacement.h.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QString>

namespace tolvex::platform {

// Makes one folder in an existing one. FileError; PathFileAccess when something of that name is there.
int MakeHostFolder(const QString& hostPath);

// Makes a folder with those above it, as far as they are missing. Empty, or what the system says stands in
// the way.
QString MakeHostFolders(const QString& hostPath);

// Makes a link; one that is there already stays as it is. Empty, or what the system says stands in the way.
QString MakeHostLink(const QByteArray& target, const QByteArray& name);

// Makes a file without bytes where nothing has its name. FileError.
int MakeEmptyHostFile(const QString& hostPath);

// Removes a file or link. FileError.
int RemoveHostName(const QString& hostPath);

// Beside a FileError: the new name lies on another disk.
inline constexpr int LiesOnOtherDisk = -1;
// Gives a file or folder another name, in place of what has that name. FileError or LiesOnOtherDisk.
int RenameHostFile(const QString& from, const QString& to);
// The same where nothing has the new name, even when another program takes it at this moment.
int RenameToFreeName(const QString& from, const QString& to);

// Appends to a regular file, made if missing, in one write; what does not fit as a whole is taken back.
// FileError.
int AppendToHostFile(const QString& hostPath, const QByteArray& bytes);

} // namespace tolvex::platform
