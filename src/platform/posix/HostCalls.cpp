#include "platform/posix/HostCalls.h"

#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr HostCalls systemCalls{::write, ::fsync, ::rename};
HostCalls installed = systemCalls;

} // namespace

HostCalls& hostCalls() {
    return installed;
}

void RestoreHostCalls() {
    installed = systemCalls;
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

std::optional<QString> TargetOfChange(const QString& hostPath, int* error) {
    if (LookingOnly()) {
        *error = PathFileAccess;
        return std::nullopt;
    }
    const std::optional<QString> target = FollowLinks(hostPath);
    if (!target)
        *error = PathNotFound;
    return target;
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

} // namespace tolvex::platform
