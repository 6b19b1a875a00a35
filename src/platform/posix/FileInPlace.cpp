#include "platform/host/FileInPlace.h"

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

// Reserves space, writes the differing bytes, sets the length: a full disk changes nothing. 0 or errno.
int overwriteFile(int descriptor, const QByteArray& now, const QByteArray& next) {
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

} // namespace

class FileInPlace::Opened : public Descriptor {
public:
    using Descriptor::Descriptor;
};

FileInPlace::FileInPlace(const QString& hostPath)
    : path_(hostPath)
    , file_(
          std::make_unique<Opened>(::open(HostName(hostPath).constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK))) {
    if (!file_->open())
        error_ = FileErrorFor(errno, path_);
    else if (!lockFile(file_->get()))
        error_ = PermissionDenied;
}

FileInPlace::~FileInPlace() = default;

int FileInPlace::overwrite(const QByteArray& now, const QByteArray& next) {
    return error_ == NoError ? FileErrorFor(overwriteFile(file_->get(), now, next), path_) : error_;
}

} // namespace tolvex::platform
