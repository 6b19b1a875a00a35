// What the sources of this room share: the calls by which bytes become lasting, and the error numbers that
// calls of the system leave.
#pragma once

#include <QString>

#include <sys/stat.h>
#include <sys/types.h>

namespace tolvex::platform {

// Tests put others in place, which fail or stop half-way.
struct HostCalls {
    ssize_t (*write)(int, const void*, size_t);
    int (*flush)(int);
    int (*rename)(const char*, const char*);
};
HostCalls& hostCalls();
void RestoreHostCalls();

// Writes all bytes at the file's position. 0 or errno, with what was written until then in *written.
int WriteFully(int descriptor, const char* bytes, qint64 length, qint64* written = nullptr);

// The FileError for an errno that a call on `hostPath` left: a missing name in an existing folder is
// FileNotFound, one below a missing folder PathNotFound.
int FileErrorFor(int systemError, const QString& hostPath);

inline bool IsSameFile(const struct stat& one, const struct stat& other) {
    return one.st_ino == other.st_ino && one.st_dev == other.st_dev;
}

} // namespace tolvex::platform
