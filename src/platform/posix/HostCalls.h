// Shared by the sources of this room: the calls that make bytes durable, and the mapping of errno to the
// run-time's error numbers.
#pragma once

#include <QString>

#include <optional>

#include <sys/stat.h>
#include <sys/types.h>

namespace tolvex::platform {

// Tests replace them with ones that fail or stop half-way.
struct HostCalls {
    ssize_t (*write)(int, const void*, size_t);
    int (*flush)(int);
    int (*rename)(const char*, const char*);
};
HostCalls& hostCalls();
void RestoreHostCalls();

// Writes all bytes at the file's position. 0 or errno; *written gets the number written so far.
int WriteFully(int descriptor, const char* bytes, qint64 length, qint64* written = nullptr);

// The FileError for the errno of a call on `hostPath`: a missing name in an existing folder is FileNotFound,
// one below a missing folder PathNotFound.
int FileErrorFor(int systemError, const QString& hostPath);

// The file that a change of `hostPath` reaches through its links. Nothing, with the FileError in *error, in
// read-only mode and for a circle of links.
std::optional<QString> TargetOfChange(const QString& hostPath, int* error);

inline bool IsSameFile(const struct stat& one, const struct stat& other) {
    return one.st_ino == other.st_ino && one.st_dev == other.st_dev;
}

} // namespace tolvex::platform
