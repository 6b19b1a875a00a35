// Changes to the host's own file system, one call each, for this floor
// only. They do not check for a LookOnly (LookOnly.h): their callers
// do. Changes that must survive a power cut are in Replacement.h.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QString>

namespace tolvex::platform {

// Makes one folder in an existing one. FileError; PathFileAccess if something of that name exists.
int MakeHostFolder(const QString& hostPath);

// Makes a folder and its missing parents. Empty, or the
// system's reason why it cannot.
QString MakeHostFolders(const QString& hostPath);

// Makes a link; an existing one stays as it is. Empty, or the system's reason why it cannot.
QString MakeHostLink(const QByteArray& target, const QByteArray& name);

// Makes an empty file under a name that is free. FileError.
int MakeEmptyHostFile(const QString& hostPath);

// Removes a file or link. FileError.
int RemoveHostName(const QString& hostPath);

// In addition to FileError: the new name lies on another disk.
inline constexpr int LiesOnOtherDisk = -1;
// Renames a file or folder, replacing whatever has the new name. FileError or LiesOnOtherDisk.
int RenameHostFile(const QString& from, const QString& to);
// The same if nothing has the new name, even if another program takes it at this moment.
int RenameToFreeName(const QString& from, const QString& to);

// Appends to a regular file, made if missing, in one write;
// a partial write is taken back. FileError.
int AppendToHostFile(const QString& hostPath, const QByteArray& bytes);

} // namespace tolvex::platform
