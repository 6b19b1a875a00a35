#include "platform/host/FileLock.h"

#include "platform/host/LookOnly.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tolvex::platform {

FileLock::FileLock(const QString& hostPath, int milliseconds) {
    using namespace std::chrono;
    if (LookingOnly()) {
        error_ = PathFileAccess;
        return;
    }
    const std::optional<QString> target = FollowLinks(hostPath);
    if (!target) {
        error_ = PathNotFound;
        return;
    }
    path_ = *target;
    companion_ = HostName(path_) + ".lock";
    const auto deadline = steady_clock::now() + milliseconds * 1ms;
    auto pause = 1ms;
    while (!attempt() && error_ == PermissionDenied && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, 4ms);
    }
}

bool FileLock::isHeld(const QString& hostPath) {
    const std::optional<QString> target = FollowLinks(hostPath);
    const Descriptor companion(target ? ::open((HostName(*target) + ".lock").constData(),
                                               O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)
                                      : -1);
    return companion.open() && ::flock(companion.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

// One try. PermissionDenied in error_ means that another one has it; other errors last.
bool FileLock::attempt() {
    Descriptor file(
        ::open(companion_.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666));
    if (!file.open()) {
        error_ = FileErrorFor(errno, path_);
        return false;
    }
    // Another user of this machine may have to take over what a crash leaves behind.
    if (::fchmod(file.get(), 0666) != 0)
        errno = 0;
    error_ = PermissionDenied;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK || errno == EINTR)
            return false;
        // A file system without locks: go on as if alone rather than refuse every change.
        if (errno != ENOTSUP && errno != ENOSYS && errno != ENOLCK && errno != EINVAL) {
            error_ = FileErrorFor(errno, path_);
            return false;
        }
    }
    struct stat ours {};
    struct stat there {};
    if (::fstat(file.get(), &ours) != 0 || ::stat(companion_.constData(), &there) != 0 ||
        ours.st_dev != there.st_dev || ours.st_ino != there.st_ino)
        return false; // its holder removed it before we had it
    error_ = NoError;
    file_ = std::move(file);
    return true;
}

FileLock::~FileLock() {
    if (held())
        ::unlink(companion_.constData());
}

} // namespace tolvex::platform
