// Changing a text file that other programs change too: under its lock, from what it holds at that moment, and
// all or nothing.
#pragma once

#include "platform/files/Files.h"

#include <functional>

namespace tolvex::platform {

// What a change makes of the bytes of a file (nothing: there is no file): the new bytes, nothing to leave it
// as it is, or a FileError that ends the change.
struct FileChange {
    std::optional<QByteArray> bytes;
    int error = NoError;
};
using FileChanger = std::function<FileChange(const std::optional<QByteArray>& now)>;

// Applies `change` to the file of a host path and replaces it (ReplaceHostFile); equal bytes leave it as it
// is. A writable file in a folder that takes no new files is overwritten where it lies instead: from the
// first byte that differs, once the disk has room for it. FileError: also PermissionDenied when another
// program kept the file locked, and DeviceIoError when it is longer than `limit` bytes.
int UpdateHostFile(const QString& hostPath, qint64 limit, const FileChanger& change);

// The FileError that a change of the file would end with now; NoError when nothing stands in its way. Only a
// full or failing disk does not show before the bytes are written. Leaves everything as it is.
int CheckUpdate(const QString& hostPath, qint64 limit);

} // namespace tolvex::platform
