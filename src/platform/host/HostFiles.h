// The host's own file system, for this floor only: host paths in, error numbers of the suite's run-time out.
// What the rest of the program uses stands in files/Files.h, on top of this.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QString>

#include <optional>

#include <sys/stat.h>
#include <sys/types.h>

namespace tolvex::platform {

// The bytes of a host path as the system takes them. Names are UTF-8.
inline QByteArray HostName(const QString& hostPath) {
    return hostPath.toUtf8();
}

// The FileError for an errno that a call on `hostPath` left: a missing name in an existing folder is
// FileNotFound, one below a missing folder PathNotFound.
int FileErrorFor(int systemError, const QString& hostPath);

// Whether a folder lies at a host path, or at the end of its links.
bool IsHostFolder(const QString& hostPath);

// Where a chain of links that begins at `hostPath` ends, be something there or not; the path itself when it
// is no link. Nothing when the links go round in a circle.
std::optional<QString> FollowLinks(const QString& hostPath);

// The folder of a host path: what stands before its last separator.
QString HostFolder(const QString& hostPath);

// Whether a file system is reached over a network (device of `stat`, any file on it).
bool OnNetwork(const QString& hostPath);

// The whole of a regular file. Nothing, with the FileError in *error, when it cannot be read or is longer
// than `limit` bytes.
std::optional<QByteArray> ReadHostFile(const QString& hostPath, qint64 limit, int* error = nullptr);

// Writes all bytes at the file's position. 0 or errno, with what was written until then in *written.
int WriteFully(int descriptor, const char* bytes, qint64 length, qint64* written = nullptr);

// The calls by which bytes become lasting. Tests put others in place, which fail or stop half-way.
struct HostCalls {
    ssize_t (*write)(int, const void*, size_t);
    int (*flush)(int);
    int (*rename)(const char*, const char*);
};
HostCalls& hostCalls();
void RestoreHostCalls();

// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int number = -1)
        : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept
        : number_(other.number_) {
        other.number_ = -1;
    }
    Descriptor& operator=(Descriptor&& other) noexcept;
    int get() const { return number_; }
    bool open() const { return number_ >= 0; }
    // Closes now; the errno of it, or 0.
    int close();

private:
    int number_;
};

} // namespace tolvex::platform
