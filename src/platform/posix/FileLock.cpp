#include "platform/host/FileLock.h"

#include "platform/host/HostFiles.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

QByteArray companionOf(const QString& path) {
    return HostName(path) + ".lock";
}

} // namespace

// The locked file beside another one; removed with this object, while still locked.
class FileLock::Companion {
public:
    Companion(Descriptor file, QByteArray name)
        : file_(std::move(file))
        , name_(std::move(name)) {}
    ~Companion() { ::unlink(name_.constData()); }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    // One try; null without the lock. PermissionDenied in *error means that another program holds it; other
    // errors are permanent.
    static std::unique_ptr<Companion> lock(const QString& path, int* error);

private:
    Descriptor file_;
    QByteArray name_;
};

std::unique_ptr<FileLock::Companion> FileLock::Companion::lock(const QString& path, int* error) {
    const QByteArray name = companionOf(path);
    Descriptor file(::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666));
    if (!file.open()) {
        *error = FileErrorFor(errno, path);
        return nullptr;
    }
    // Another user of this machine may have to take over what a crash left behind.
    if (::fchmod(file.get(), 0666) != 0)
        errno = 0;
    *error = PermissionDenied;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK || errno == EINTR)
            return nullptr;
        // A file system without locks: continue as if alone rather than refuse every change.
        if (errno != ENOTSUP && errno != ENOSYS && errno != ENOLCK && errno != EINVAL) {
            *error = FileErrorFor(errno, path);
            return nullptr;
        }
    }
    struct stat ours {};
    struct stat there {};
    if (::fstat(file.get(), &ours) != 0 || ::stat(name.constData(), &there) != 0 || !IsSameFile(ours, there))
        return nullptr; // its holder removed it before we had it
    *error = NoError;
    return std::make_unique<Companion>(std::move(file), name);
}

FileLock::FileLock(const QString& hostPath, int milliseconds) {
    using namespace std::chrono;
    const std::optional<QString> target = TargetOfChange(hostPath, &error_);
    if (!target)
        return;
    const auto deadline = steady_clock::now() + milliseconds * 1ms;
    auto pause = 1ms;
    for (;;) {
        companion_ = Companion::lock(*target, &error_);
        if (held() || error_ != PermissionDenied || steady_clock::now() >= deadline)
            return;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, 4ms);
    }
}

FileLock::~FileLock() = default;

bool FileLock::isHeld(const QString& hostPath) {
    const std::optional<QString> target = FollowLinks(hostPath);
    const Descriptor companion(
        target ? ::open(companionOf(*target).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)
               : -1);
    return companion.open() && ::flock(companion.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace tolvex::platform
