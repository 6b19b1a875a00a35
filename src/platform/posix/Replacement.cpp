#include "platform/host/Replacement.h"

#include "platform/host/LookOnly.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr char besideStart[] = ".tolvex-";
constexpr char besideEnd[] = ".new";

// As many names as dead writers' files that cannot be removed may take.
constexpr int mostNames = 1000;

// On a share, locks may hold on this machine only. A file changed there within this time, in seconds, may
// belong to a running writer on another machine.
constexpr qint64 atRestOnShare = 24 * 60 * 60;

// Keeps mode and owner of the file that is replaced. A foreign owner cannot always be kept; then the file is
// at least ours with the same rights.
void takeOver(int descriptor, const struct stat& old) {
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0)
        errno = 0;
    if (::fchmod(descriptor, old.st_mode & 07777) != 0)
        errno = 0;
}

int flushFolder(const QString& folder) {
    const Descriptor descriptor(::open(HostName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.open() || hostCalls().flush(descriptor.get()) == 0)
        return NoError;
    // Network file systems that cannot flush a folder report it; they keep names durable by themselves.
    return errno == EINVAL || errno == EBADF || errno == ENOTSUP ? NoError : DeviceIoError;
}

bool hasName(int descriptor, const QByteArray& name) {
    struct stat ours {};
    struct stat there {};
    return ::fstat(descriptor, &ours) == 0 && ::stat(name.constData(), &there) == 0 &&
           IsSameFile(ours, there);
}

// Whether the writer of a file beside is gone: its lock is free. On a file system without locks this is not
// known.
bool isAbandoned(const Descriptor& file, bool onShare) {
    struct stat info {};
    if (!file.open() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    if (onShare && ::time(nullptr) - info.st_mtim.tv_sec < atRestOnShare)
        return false;
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

void removeAbandoned(const QString& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(HostName(folder).constData()), &::closedir);
    const bool onShare = stream && OnNetwork(folder);
    while (const struct dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
        const QByteArray name(entry->d_name);
        if (!name.startsWith(besideStart) || !name.endsWith(besideEnd))
            continue;
        const QByteArray path = HostName(folder) + '/' + name;
        const Descriptor file(::open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        if (isAbandoned(file, onShare) && hasName(file.get(), path))
            ::unlink(path.constData());
    }
}

} // namespace

// The file with the new bytes, until it is renamed.
class Replacement::Beside {
public:
    Beside(QByteArray name, Descriptor file, Descriptor alive)
        : name_(std::move(name))
        , file_(std::move(file))
        , alive_(std::move(alive)) {}
    ~Beside() {
        if (!placed_)
            ::unlink(name_.constData());
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    // Makes the file under a short name of its own, so that a long file name leaves room for it. Null if that
    // name is taken, for instance by a file of a dead process with our number, or if another writer took the
    // file for abandoned before it was locked; *error is set if no other name would help.
    static std::unique_ptr<Beside> make(const QString& target, int* error);

    int descriptor() const { return file_.get(); }
    bool isOpen() const { return file_.open(); }
    // 0 or errno, both.
    int finish(const std::optional<HostTime>& modified);
    int place(const QString& target);

private:
    QByteArray name_;
    Descriptor file_;
    Descriptor alive_; // holds the lock
    bool placed_ = false;
};

std::unique_ptr<Replacement::Beside> Replacement::Beside::make(const QString& target, int* error) {
    static int counter = 0;
    const QByteArray name = HostName(HostFolder(target)) + '/' + besideStart +
                            QByteArray::number(qint64{::getpid()}) + '-' + QByteArray::number(++counter) +
                            besideEnd;
    Descriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file.open()) {
        if (errno != EEXIST)
            *error = FileErrorFor(errno, target);
        return nullptr;
    }
    Descriptor alive(::fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    const bool lost = ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (lost || !hasName(file.get(), name))
        return nullptr;
    return std::make_unique<Beside>(name, std::move(file), std::move(alive));
}

int Replacement::Beside::finish(const std::optional<HostTime>& modified) {
    constexpr struct timespec unchanged { 0, UTIME_OMIT };
    const struct timespec times[2] = {unchanged, modified ? timespec{modified->seconds, modified->nanoseconds}
                                                          : unchanged};
    int failed = ::futimens(file_.get(), times) == 0 || errno == EPERM ? 0 : errno;
    if (failed == 0 && hostCalls().flush(file_.get()) != 0)
        failed = errno;
    const int closing = file_.close();
    return failed != 0 ? failed : closing;
}

int Replacement::Beside::place(const QString& target) {
    if (hostCalls().rename(name_.constData(), HostName(target).constData()) != 0)
        return errno;
    placed_ = true;
    alive_.close();
    return 0;
}

Replacement::Replacement(const QString& hostPath) {
    const std::optional<QString> target = TargetOfChange(hostPath, &error_);
    if (!target)
        return;
    target_ = *target;
    const QByteArray name = HostName(target_);
    struct stat old {};
    const bool replaces = ::stat(name.constData(), &old) == 0;
    if (replaces && (!S_ISREG(old.st_mode) || ::access(name.constData(), W_OK) != 0)) {
        error_ = PathFileAccess;
        return;
    }
    removeAbandoned(HostFolder(target_));
    for (int tried = 0; tried < mostNames && error_ == NoError && !beside_; ++tried)
        beside_ = Beside::make(target_, &error_);
    if (error_ == NoError && !beside_)
        error_ = FileAlreadyExists;
    if (error_ == NoError && replaces)
        takeOver(beside_->descriptor(), old);
}

Replacement::~Replacement() = default;

int Replacement::write(const char* bytes, qint64 length) {
    if (error_ == NoError)
        error_ = FileErrorFor(WriteFully(beside_->descriptor(), bytes, length), target_);
    return error_;
}

int Replacement::prepare(const std::optional<HostTime>& modified) {
    if (error_ == NoError && beside_->isOpen())
        error_ = FileErrorFor(beside_->finish(modified), target_);
    return error_;
}

int Replacement::commit(const std::optional<HostTime>& modified) {
    if (prepare(modified) != NoError)
        return error_;
    if (const int failed = beside_->place(target_); failed != 0)
        return error_ = FileErrorFor(failed, target_);
    return error_ = flushFolder(HostFolder(target_));
}

int ReplaceHostFile(const QString& hostPath, const QByteArray& bytes) {
    Replacement replacement(hostPath);
    replacement.write(bytes.constData(), bytes.size());
    return replacement.commit();
}

int RemoveHostFile(const QString& hostPath) {
    if (LookingOnly())
        return PathFileAccess;
    if (::unlink(HostName(hostPath).constData()) != 0)
        return FileErrorFor(errno, hostPath);
    return flushFolder(HostFolder(hostPath));
}

} // namespace tolvex::platform
