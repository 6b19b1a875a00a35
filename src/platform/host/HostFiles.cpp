#include "platform/host/HostFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

// As many links as the kernel itself follows.
constexpr int mostLinks = 40;

// File systems that <linux/magic.h> of some systems does not name.
constexpr long cifsMagic = 0xFF534D42;
constexpr long smb2Magic = 0xFE534D42;

constexpr HostCalls systemCalls{::write, ::fsync, ::rename};
HostCalls installed = systemCalls;

} // namespace

HostCalls& hostCalls() {
    return installed;
}

void RestoreHostCalls() {
    installed = systemCalls;
}

Descriptor::~Descriptor() {
    close();
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        close();
        number_ = other.number_;
        other.number_ = -1;
    }
    return *this;
}

int Descriptor::close() {
    const int number = number_;
    number_ = -1;
    return number < 0 || ::close(number) == 0 ? 0 : errno;
}

int FileErrorFor(int systemError, const QString& hostPath) {
    switch (systemError) {
    case 0:
        return NoError;
    case ENOENT:
        return IsHostFolder(HostFolder(hostPath)) ? FileNotFound : PathNotFound;
    case ENOTDIR:
    case ELOOP:
        return PathNotFound;
    case EEXIST:
        return FileAlreadyExists;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ENOTEMPTY:
        return PathFileAccess;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY:
        return PermissionDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return DiskFull;
    case ENAMETOOLONG:
    case EILSEQ:
    case EINVAL:
    case EBADF:
        return BadFileNumber;
    case ENODEV:
    case ENXIO:
    case ENOMEDIUM:
        return DiskNotReady;
    default:
        return DeviceIoError;
    }
}

bool IsHostFolder(const QString& hostPath) {
    struct stat info {};
    return ::stat(HostName(hostPath).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

QString HostFolder(const QString& hostPath) {
    const qsizetype slash = hostPath.lastIndexOf(u'/');
    return slash > 0 ? hostPath.left(slash) : QStringLiteral("/");
}

std::optional<QString> FollowLinks(const QString& hostPath) {
    QString path = hostPath;
    for (int i = 0; i < mostLinks; ++i) {
        char target[4096];
        const ssize_t length = ::readlink(HostName(path).constData(), target, sizeof target);
        if (length < 0)
            return path;
        const QString to = QString::fromUtf8(target, length);
        path = to.startsWith(u'/') ? to : HostFolder(path) + u'/' + to;
    }
    return std::nullopt;
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

int WriteFully(int descriptor, const char* bytes, qint64 length, qint64* written) {
    qint64 done = 0;
    int failed = 0;
    while (done < length && failed == 0) {
        const ssize_t now = hostCalls().write(descriptor, bytes + done, static_cast<size_t>(length - done));
        if (now > 0)
            done += now;
        else if (now == 0)
            failed = ENOSPC;
        else if (errno != EINTR)
            failed = errno;
    }
    if (written)
        *written = done;
    return failed;
}

std::optional<QByteArray> ReadHostFile(const QString& hostPath, qint64 limit, int* error) {
    const auto fail = [error](int number) {
        if (error)
            *error = number;
        return std::nullopt;
    };
    // Without O_NONBLOCK a named pipe in place of the file would wait for ever.
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
    // One byte more than it should have, so that growth meanwhile is noticed without another call.
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

} // namespace tolvex::platform
