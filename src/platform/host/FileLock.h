// A lock for a file that several programs and workstations change by replacing it whole.
//
// The file itself cannot carry the lock, since each replacement is another file. The lock lies on a companion
// beside it ("<name>.lock"), which is made for it and removed, still locked, with it; whoever waited on
// a removed one notices and starts again. When its holder dies the system frees the lock, and the companion
// that stays behind is taken over by the next. Whole-file locks of the system work between processes, within
// one process, and over network file systems.
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
    // Locks the file of a host path, whether it is there or not, and waits for another holder up to
    // `milliseconds`. A link is followed, so that all names of one file share one lock. Cost: five system
    // calls.
    explicit FileLock(const QString& hostPath, int milliseconds = 3000);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Whether somebody holds the lock of a file now. Changes nothing.
    static bool isHeld(const QString& hostPath);

    bool held() const { return companion_ != nullptr; }
    // FileError: PermissionDenied when another program kept the lock all the time; PathFileAccess or
    // PathNotFound when the folder does not take files; NoError when held.
    int error() const { return error_; }

private:
    class Companion;
    std::unique_ptr<Companion> companion_; // null while the lock is not held
    int error_ = NoError;
};

} // namespace tolvex::platform
