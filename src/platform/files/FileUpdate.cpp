#include "platform/files/FileUpdate.h"

#include "platform/host/FileLock.h"
#include "platform/host/LookOnly.h"
#include "platform/host/Replacement.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

// The file as it is, what becomes of it, and the bytes of that; nothing when there is nothing to write.
struct Step {
    std::optional<QByteArray> now;
    std::optional<QByteArray> next;
    int error = NoError;
};

Step readAndChange(const QString& hostPath, qint64 limit, const FileChanger& change) {
    Step step;
    int error = NoError;
    step.now = ReadHostFile(hostPath, limit, &error);
    if (!step.now && error != FileNotFound) {
        step.error = error;
        return step;
    }
    FileChange result = change(step.now);
    step.error = result.error;
    if (result.error == NoError && result.bytes && (!step.now || *step.now != *result.bytes))
        step.next = std::move(result.bytes);
    return step;
}

bool canOnlyBeOverwritten(const QString& hostPath) {
    return ::access(HostName(HostFolder(hostPath)).constData(), W_OK) != 0 &&
           ::access(HostName(hostPath).constData(), W_OK) == 0;
}

bool lockFile(int descriptor) {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + 3s;
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return true; // a file system without locks
        if (steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

// Room first, then the bytes that differ, then the length: a full disk leaves the file as it was.
int overwrite(int descriptor, const QByteArray& now, const QByteArray& next) {
    if (next.size() > now.size()) {
        if (const int full = ::posix_fallocate(descriptor, now.size(), next.size() - now.size()); full != 0) {
            if (::ftruncate(descriptor, now.size()) != 0)
                return errno;
            return full;
        }
    }
    const auto [from, end] = std::mismatch(next.cbegin(), next.cend(), now.cbegin(), now.cend());
    const qint64 same = from - next.cbegin();
    if (::lseek(descriptor, same, SEEK_SET) < 0)
        return errno;
    if (const int failed = WriteFully(descriptor, next.constData() + same, next.size() - same); failed != 0)
        return failed;
    if (::ftruncate(descriptor, next.size()) != 0 || hostCalls().flush(descriptor) != 0)
        return errno;
    return 0;
}

int updateInPlace(const QString& hostPath, qint64 limit, const FileChanger& change) {
    const Descriptor file(::open(HostName(hostPath).constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
    if (!file.open())
        return FileErrorFor(errno, hostPath);
    if (!lockFile(file.get()))
        return PermissionDenied;
    const Step step = readAndChange(hostPath, limit, change);
    if (step.error != NoError || !step.next)
        return step.error;
    return FileErrorFor(overwrite(file.get(), *step.now, *step.next), hostPath);
}

} // namespace

int UpdateHostFile(const QString& hostPath, qint64 limit, const FileChanger& change) {
    const FileLock lock(hostPath);
    if (!lock.held()) {
        const std::optional<QString> target = FollowLinks(hostPath);
        if (lock.error() == PathFileAccess && !LookingOnly() && target && canOnlyBeOverwritten(*target))
            return updateInPlace(*target, limit, change);
        return lock.error();
    }
    const Step step = readAndChange(hostPath, limit, change);
    if (step.error != NoError || !step.next)
        return step.error;
    return ReplaceHostFile(hostPath, *step.next);
}

} // namespace tolvex::platform
