// The host's own file system, for this floor only: host paths in, error numbers of the suite's run-time out.
// The rest of the program uses files/Files.h, which is built on this. This header reads; HostChanges.h has
// the changes.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace tolvex::platform {

// The bytes of a host path for system calls. Names are UTF-8.
inline QByteArray HostName(const QString& hostPath) {
    return hostPath.toUtf8();
}

// The longest host path that the system accepts, in bytes, with its terminating zero.
inline constexpr qsizetype LongestHostPath = 4096;

// A time of change, as precise as the file system has it.
struct HostTime {
    qint64 seconds = 0; // since 1970
    qint32 nanoseconds = 0;

    qint64 inMilliseconds() const { return seconds * 1000 + nanoseconds / 1'000'000; }
    qint64 inNanoseconds() const { return seconds * 1'000'000'000 + nanoseconds; }
    bool operator==(const HostTime&) const = default;
};

// Nanoseconds since 1970 by the clock that file systems use.
qint64 NowInNanoseconds();

// What a host path leads to.
struct HostStatus {
    enum class Kind { File, Folder, Link, CharacterDevice, Other };
    Kind kind = Kind::Other;
    quint64 device = 0; // together with `number` it identifies a file
    quint64 number = 0;
    qint64 size = 0; // bytes
    HostTime modified;
    HostTime changed; // the last change of bytes, name, mode or owner

    bool isFile() const { return kind == Kind::File; }
    bool isFolder() const { return kind == Kind::Folder; }
    bool isSameFile(const HostStatus& other) const {
        return number == other.number && device == other.device;
    }
};

// Links are followed. Nothing if nothing is there or visible. Cost: one system call.
std::optional<HostStatus> StatusOf(const QByteArray& name);
// The same for the link itself; the FileError in *error if there is nothing.
std::optional<HostStatus> LinkStatusOf(const QByteArray& name, int* error = nullptr);

// Whether a host path is a folder, or a link to one.
bool IsHostFolder(const QString& hostPath);

// Whether it exists and this user may use it in this way.
enum class Access { Exists, Read, Write, ReadAndWrite, Run };
bool MayAccess(const QString& hostPath, Access access);

// The end of the chain of links that begins at `hostPath`, whether it exists or not; the path itself if it is
// not a link. Nothing if the links form a circle.
std::optional<QString> FollowLinks(const QString& hostPath);

// The target written in a link; empty if it is not one.
QByteArray LinkTarget(const QByteArray& name);

// The path with all links followed; nothing if it does not exist.
std::optional<QByteArray> CanonicalName(const QByteArray& name);

// The folder of a host path: the text before its last separator.
QString HostFolder(const QString& hostPath);

// Names of files and folders in a folder, without "." and "..", in disk order; nothing if they are
// unreadable.
std::optional<QByteArrayList> HostNamesIn(const QByteArray& folder);

// Whether a path lies on a network file system (`hostPath`: any file on it).
bool OnNetwork(const QString& hostPath);

// The path of the running program.
QString ProgramFile();

// The whole of a regular file. Nothing, with the FileError in *error, if it cannot be read or is longer than
// `limit` bytes.
std::optional<QByteArray> ReadHostFile(const QString& hostPath, qint64 limit, int* error = nullptr);

// Reads up to `most` of the first bytes of a file into `bytes` and returns their number, or -1 if it cannot
// be read.
qint64 ReadHostFileStart(const QByteArray& name, char* bytes, qint64 most);

} // namespace tolvex::platform
