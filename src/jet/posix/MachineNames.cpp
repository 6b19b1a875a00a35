#include "jet/posix/MachineNames.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace jet {

namespace {

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

void flushFoldersOf(const std::string& from, const std::string& to) {
    FlushFolderOf(to);
    if (folderOf(from) != folderOf(to))
        FlushFolderOf(from);
}

// False: this file system does not support second names.
bool makeLink(const std::string& path, const std::string& second) {
    if (::link(path.c_str(), second.c_str()) == 0)
        return true;
    const int error = errno;
    struct stat one {};
    struct stat other {};
    // A server may have succeeded and its answer been lost: the repeated call then finds the link.
    if (error == EEXIST && ::stat(path.c_str(), &one) == 0 && ::stat(second.c_str(), &other) == 0 &&
        IsSameFile(one, other))
        return true;
    if (error == EPERM || error == ENOSYS || error == ENOTSUP || error == EMLINK || error == EXDEV)
        return false;
    FailAtFile(second, "link", error, ErrorNumber::DiskIo);
}

// The three ways of publishing. The first two return false if the file system does not support them.

bool renameWithoutReplacing([[maybe_unused]] const std::string& from,
                            [[maybe_unused]] const std::string& to) {
#if defined(__linux__)
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        FailAtFile(to, "rename", errno, ErrorNumber::DiskIo);
#endif
    return false;
}

bool moveByLink(const std::string& from, const std::string& to) {
    if (!makeLink(from, to))
        return false;
    if (::unlink(from.c_str()) != 0) {
        const int error = errno;
        ::unlink(to.c_str());
        FailAtFile(from, "remove", error, ErrorNumber::DiskIo);
    }
    return true;
}

// A file that is locked while a name is given away, and goes with the lock. One that a dead process left is
// taken over.
class NamingLock {
public:
    explicit NamingLock(std::string path)
        : path_(std::move(path)) {
        while (!attempt())
            ::close(file_); // its holder removed the file
    }
    ~NamingLock() {
        ::unlink(path_.c_str());
        ::close(file_);
    }
    NamingLock(const NamingLock&) = delete;
    NamingLock& operator=(const NamingLock&) = delete;

private:
    bool attempt() {
        file_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (file_ < 0)
            FailAtFile(path_, "open", errno, ErrorNumber::CannotOpenFile);
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        while (::fcntl(file_, F_OFD_SETLKW, &whole) != 0) {
            if (errno == EINTR)
                continue;
            const int error = errno;
            ::close(file_);
            FailAtFile(path_, "lock", error, ErrorNumber::DiskIo);
        }
        struct stat ours {};
        struct stat named {};
        return ::fstat(file_, &ours) == 0 && ::stat(path_.c_str(), &named) == 0 && IsSameFile(ours, named);
    }

    std::string path_;
    int file_ = -1;
};

void renameUnderLock(const std::string& from, const std::string& to) {
    const NamingLock lock(to + "-naming");
    if (FileIsThere(to))
        FailAtFile(to, "rename", EEXIST, ErrorNumber::DatabaseExists);
    if (::rename(from.c_str(), to.c_str()) != 0)
        FailAtFile(from, "rename", errno, ErrorNumber::DiskIo);
}

} // namespace

void FailAtFile(const std::string& path, const char* what, int error, ErrorNumber otherwise) {
    ErrorNumber number = otherwise;
    switch (error) {
    case ENOENT:
        number = ErrorNumber::FileNotFound;
        break;
    case ENOTDIR:
    case ENAMETOOLONG:
        number = ErrorNumber::SearchKeyNotFound;
        break;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        number = ErrorNumber::DiskFull;
        break;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
        number = ErrorNumber::CannotOpenFile;
        break;
    case EEXIST:
        number = ErrorNumber::DatabaseExists;
        break;
    default:
        break;
    }
    throw Error(number, path + ": " + what + ": " + std::strerror(error));
}

bool IsSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Some network file systems refuse it for folders; they keep names by themselves.
void FlushFolderOf(const std::string& path) {
    const std::string folder = folderOf(path);
    const int folderFile = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFile < 0)
        return;
    const bool done = ::fsync(folderFile) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EACCES;
    const int error = errno;
    ::close(folderFile);
    if (!done)
        FailAtFile(folder, "flush", error, ErrorNumber::DiskIo);
}

std::string FollowLinks(const std::string& path) {
    constexpr int mostLinks = 40; // as many as the system itself follows
    std::string at = path;
    for (int i = 0; i < mostLinks; ++i) {
        std::array<char, 4096> target{};
        const auto length = ::readlink(at.c_str(), target.data(), target.size());
        if (length < 0)
            return at;
        const std::string to(target.data(), static_cast<std::size_t>(length));
        at = to.starts_with('/') ? to : folderOf(at) + '/' + to;
    }
    return path; // a circle: opening says so
}

// A share that has gone away is no sign that a file is not there: somebody's write-ahead log could be taken
// for none.
bool FileIsThere(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0)
        return true;
    if (errno != ENOENT && errno != ENOTDIR)
        FailAtFile(path, "look for", errno, ErrorNumber::DiskIo);
    return false;
}

void RemoveName(const std::string& path) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        FailAtFile(path, "remove", errno, ErrorNumber::DiskIo);
}

void RenameFile(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0)
        FailAtFile(from, "rename", errno, ErrorNumber::DiskIo);
    flushFoldersOf(from, to);
}

void PublishFile(const std::string& from, const std::string& to) {
    if (!renameWithoutReplacing(from, to) && !moveByLink(from, to))
        renameUnderLock(from, to);
    flushFoldersOf(from, to);
}

bool LinkFile(const std::string& path, const std::string& second) {
    if (!makeLink(path, second))
        return false;
    FlushFolderOf(second);
    return true;
}

} // namespace jet
