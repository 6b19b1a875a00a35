// The host's own file system, for this floor only: host paths in, error numbers of the suite's run-time out.
// What the rest of the program uses stands in files/Files.h, on top of this. Here is what looks and reads;
// HostChanges.h has what changes something.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace tolvex::platform {

// The bytes of a host path as the system takes them. Names are UTF-8.
inline QByteArray HostName(const QString& hostPath) {
    return hostPath.toUtf8();
}

// The longest host path that the system takes, in bytes, its ending zero counted.
inline constexpr qsizetype LongestHostPath = 4096;

// A time of change, as far as the file system tells it.
struct HostTime {
    qint64 seconds = 0; // since 1970
    qint32 nanoseconds = 0;

    qint64 inMilliseconds() const { return seconds * 1000 + nanoseconds / 1'000'000; }
    qint64 inNanoseconds() const { return seconds * 1'000'000'000 + nanoseconds; }
    bool operator==(const HostTime&) const = default;
};

// Nanoseconds since 1970 by the clock that file systems use.
qint64 NowInNanoseconds();

// What lies at a host path.
struct HostStatus {
    enum class Kind { File, Folder, Link, CharacterDevice, Other };
    Kind kind = Kind::Other;
    quint64 device = 0; // with the number it tells a file from every other one
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

// Links are followed. Nothing when nothing is there, or may be seen. Cost: one system call.
std::optional<HostStatus> StatusOf(const QByteArray& name);
// The same of the link itself; the FileError in *error when there is nothing.
std::optional<HostStatus> LinkStatusOf(const QByteArray& name, int* error = nullptr);

// Whether a folder lies at a host path, or at the end of its links.
bool IsHostFolder(const QString& hostPath);

// Whether something is there that this user may use so.
enum class Access { Exists, Read, Write, ReadAndWrite, Run };
bool MayAccess(const QString& hostPath, Access access);

// Where a chain of links that begins at `hostPath` ends, whether something is there or not; the path itself
// when it is not a link. Nothing when the links go round in a circle.
std::optional<QString> FollowLinks(const QString& hostPath);

// What is written in a link; empty when it is not one.
QByteArray LinkTarget(const QByteArray& name);

// The path of something that exists, with all links followed; nothing when it does not exist.
std::optional<QByteArray> CanonicalName(const QByteArray& name);

// The folder of a host path: what stands before its last separator.
QString HostFolder(const QString& hostPath);

// Names of files and folders in a folder, without "." and "..", in the order of the disk; nothing when they
// may not be read.
std::optional<QByteArrayList> HostNamesIn(const QByteArray& folder);

// Whether a file system is reached over a network (`hostPath`: any file on it).
bool OnNetwork(const QString& hostPath);

// The file of the program that runs.
QString ProgramFile();

// The whole of a regular file. Nothing, with the FileError in *error, when it cannot be read or is longer
// than `limit` bytes.
std::optional<QByteArray> ReadHostFile(const QString& hostPath, qint64 limit, int* error = nullptr);

// The first bytes of a file, at most `most` of them, into `bytes`: how many there are, or -1 when it cannot
// be read.
qint64 ReadHostFileStart(const QByteArray& name, char* bytes, qint64 most);

} // namespace tolvex::platform
