#include "platform/host/HostFiles.h"

#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

static_assert(LongestHostPath == PATH_MAX);

// File systems that <linux/magic.h> of some systems lacks.
constexpr long cifsMagic = 0xFF534D42;
constexpr long smb2Magic = 0xFE534D42;

HostStatus::Kind kindOf(mode_t mode) {
    using Kind = HostStatus::Kind;
    return S_ISREG(mode)   ? Kind::File
           : S_ISDIR(mode) ? Kind::Folder
           : S_ISLNK(mode) ? Kind::Link
           : S_ISCHR(mode) ? Kind::CharacterDevice
                           : Kind::Other;
}

HostTime timeOf(const struct timespec& time) {
    return {time.tv_sec, static_cast<qint32>(time.tv_nsec)};
}

HostStatus statusFrom(const struct stat& info) {
    return {kindOf(info.st_mode), info.st_dev,          info.st_ino,
            info.st_size,         timeOf(info.st_mtim), timeOf(info.st_ctim)};
}

int modeOf(Access access) {
    switch (access) {
    case Access::Exists:
        return F_OK;
    case Access::Read:
        return R_OK;
    case Access::Write:
        return W_OK;
    case Access::ReadAndWrite:
        return R_OK | W_OK;
    case Access::Run:
        return X_OK;
    }
    return F_OK;
}

} // namespace

std::optional<HostStatus> StatusOf(const QByteArray& name) {
    struct stat info {};
    return ::stat(name.constData(), &info) == 0 ? std::optional(statusFrom(info)) : std::nullopt;
}

std::optional<HostStatus> LinkStatusOf(const QByteArray& name, int* error) {
    struct stat info {};
    const int failed = ::lstat(name.constData(), &info) == 0 ? 0 : errno;
    if (error)
        *error = FileErrorFor(failed, QString::fromUtf8(name));
    return failed == 0 ? std::optional(statusFrom(info)) : std::nullopt;
}

bool MayAccess(const QString& hostPath, Access access) {
    return ::access(HostName(hostPath).constData(), modeOf(access)) == 0;
}

QByteArray LinkTarget(const QByteArray& name) {
    char target[LongestHostPath];
    const ssize_t length = ::readlink(name.constData(), target, sizeof target);
    return {target, std::max<ssize_t>(length, 0)};
}

std::optional<QByteArray> CanonicalName(const QByteArray& name) {
    char resolved[PATH_MAX];
    return ::realpath(name.constData(), resolved) ? std::optional(QByteArray(resolved)) : std::nullopt;
}

std::optional<QByteArrayList> HostNamesIn(const QByteArray& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.constData()), &::closedir);
    if (!stream)
        return std::nullopt;
    QByteArrayList names;
    while (const struct dirent* entry = ::readdir(stream.get())) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names += name;
    }
    return names;
}

bool OnNetwork(const QString& hostPath) {
    struct statfs info {};
    if (::statfs(HostName(hostPath).constData(), &info) != 0)
        return false;
    const auto type = static_cast<unsigned long>(info.f_type) & 0xFFFFFFFFUL;
    for (const unsigned long remote : {0UL + NFS_SUPER_MAGIC, 0UL + SMB_SUPER_MAGIC, 0UL + cifsMagic,
                                       0UL + smb2Magic, 0UL + AFS_SUPER_MAGIC, 0UL + CODA_SUPER_MAGIC,
                                       0UL + V9FS_MAGIC, 0UL + FUSE_SUPER_MAGIC, 0UL + NCP_SUPER_MAGIC})
        if (type == (remote & 0xFFFFFFFFUL))
            return true;
    return false;
}

QString ProgramFile() {
    return FollowLinks(QStringLiteral("/proc/self/exe")).value_or(QStringLiteral("/"));
}

std::optional<QByteArray> ReadHostFile(const QString& hostPath, qint64 limit, int* error) {
    const auto fail = [error](int number) {
        if (error)
            *error = number;
        return std::nullopt;
    };
    // Without O_NONBLOCK opening a named pipe would block for ever.
    const Descriptor file(::open(HostName(hostPath).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.open())
        return fail(FileErrorFor(errno, hostPath));
    struct stat info {};
    if (::fstat(file.get(), &info) != 0)
        return fail(FileErrorFor(errno, hostPath));
    if (!S_ISREG(info.st_mode))
        return fail(PathFileAccess);
    if (info.st_size > limit)
        return fail(DeviceIoError);
    // One byte more than the file should have, so that growth shows without another call.
    QByteArray bytes(info.st_size + 1, Qt::Uninitialized);
    qint64 length = 0;
    for (;;) {
        const ssize_t got =
            ::read(file.get(), bytes.data() + length, static_cast<size_t>(bytes.size() - length));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return fail(FileErrorFor(errno, hostPath));
        length += got;
        if (got == 0)
            break;
        if (length > limit)
            return fail(DeviceIoError);
        if (length == bytes.size())
            bytes.resize(length * 2);
    }
    bytes.resize(length);
    if (error)
        *error = NoError;
    return bytes;
}

qint64 ReadHostFileStart(const QByteArray& name, char* bytes, qint64 most) {
    const Descriptor file(::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    qint64 done = 0;
    while (file.open() && done < most) {
        const ssize_t got = ::read(file.get(), bytes + done, static_cast<size_t>(most - done));
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            return -1;
        done += std::max<ssize_t>(got, 0);
    }
    return file.open() ? done : -1;
}

} // namespace tolvex::platform
