// A lock for a file that several programs and workstations change by replacing it whole.
//
// The file itself cannot carry the lock, since each replacement is another file. The lock lies on a companion
// beside it ("<name>.lock"), which is made for the lock and removed, still locked, with it; a program that
// waited for a removed one notices and starts again. If the holder dies the system frees the lock, and the
// next holder takes over the companion left behind. Whole-file locks of the system work between processes,
// within one process, and over network file systems.
//
//     const FileLock lock(hostPath);
//     if (!lock.held())
//         return lock.error();
//     ... read the file as it is now, change it, ReplaceHostFile ...
#pragma once

#include "platform/host/FileError.h"

#include <QString>

#include <memory>

namespace tolvex::platform {

class FileLock {
public:
    // Locks the file at a host path, even if the file does not exist, and waits up to `milliseconds` for
    // another holder. A link is followed, so that all names of one file share one lock. Cost: five system
    // calls.
    explicit FileLock(const QString& hostPath, int milliseconds = 3000);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Whether anybody holds the lock of a file now. Changes nothing.
    static bool isHeld(const QString& hostPath);

    bool held() const { return companion_ != nullptr; }
    // FileError: PermissionDenied if another program kept the lock all the time; PathFileAccess or
    // PathNotFound if the folder accepts no files; NoError while held.
    int error() const { return error_; }

private:
    class Companion;
    std::unique_ptr<Companion> companion_; // null while the lock is not held
    int error_ = NoError;
};

} // namespace tolvex::platform
