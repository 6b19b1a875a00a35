// Files of a POSIX system. The locks are those of open file descriptions, so that two users in one process
// exclude each other and closing some other descriptor of the file releases nothing.
#include "jet/base/Error.h"
#include "jet/base/Storage.h"
#include "jet/posix/MachineNames.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace jet {

namespace {

class MachineFile final : public StorageFile {
public:
    MachineFile(int file, std::string path, bool created)
        : file_(file)
        , path_(std::move(path))
        , folderPending_(created) {}
    ~MachineFile() override { ::close(file_); }
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;

    std::uint64_t size() override {
        struct stat status {};
        if (::fstat(file_, &status) != 0)
            FailAtFile(path_, "size", errno, ErrorNumber::DiskIo);
        return static_cast<std::uint64_t>(status.st_size);
    }

    std::size_t read(std::uint64_t offset, void* into, std::size_t length) override {
        std::size_t done = 0;
        while (done < length) {
            const auto got = ::pread(file_, static_cast<char*>(into) + done, length - done,
                                     static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                FailAtFile(path_, "read", errno, ErrorNumber::DiskIo);
            if (got == 0)
                break;
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

    void write(std::uint64_t offset, const void* from, std::size_t length) override {
        std::size_t done = 0;
        while (done < length) {
            const auto put = ::pwrite(file_, static_cast<const char*>(from) + done, length - done,
                                      static_cast<off_t>(offset + done));
            if (put < 0 && errno == EINTR)
                continue;
            if (put <= 0)
                FailAtFile(path_, "write", put < 0 ? errno : ENOSPC, ErrorNumber::DiskIo);
            done += static_cast<std::size_t>(put);
        }
    }

    void truncate(std::uint64_t size) override {
        if (::ftruncate(file_, static_cast<off_t>(size)) != 0)
            FailAtFile(path_, "set length", errno, ErrorNumber::DiskIo);
    }

    void flush() override {
        if (::fdatasync(file_) != 0)
            FailAtFile(path_, "flush", errno, ErrorNumber::DiskIo);
        if (folderPending_)
            FlushFolderOf(path_);
        folderPending_ = false;
    }

    void beginFlush([[maybe_unused]] std::uint64_t offset,
                    [[maybe_unused]] std::uint64_t length) noexcept override {
#if defined(__linux__)
        ::sync_file_range(file_, static_cast<off64_t>(offset), static_cast<off64_t>(length),
                          SYNC_FILE_RANGE_WRITE);
#endif
    }

    bool lock(std::uint64_t offset, std::uint64_t length, bool exclusive, bool wait) override {
        struct flock range = rangeOf(offset, length, exclusive ? F_WRLCK : F_RDLCK);
        while (::fcntl(file_, wait ? F_OFD_SETLKW : F_OFD_SETLK, &range) != 0) {
            if (errno == EINTR)
                continue;
            if (errno == EAGAIN || errno == EACCES)
                return false;
            FailAtFile(path_, "lock", errno, ErrorNumber::DiskIo);
        }
        return true;
    }

    void unlock(std::uint64_t offset, std::uint64_t length) override {
        struct flock range = rangeOf(offset, length, F_UNLCK);
        if (::fcntl(file_, F_OFD_SETLK, &range) != 0)
            FailAtFile(path_, "unlock", errno, ErrorNumber::DiskIo);
    }

    std::optional<std::uint64_t> findLock(std::uint64_t offset, std::uint64_t length) override {
        struct flock range = rangeOf(offset, length, F_WRLCK);
        if (::fcntl(file_, F_OFD_GETLK, &range) != 0)
            FailAtFile(path_, "look for locks", errno, ErrorNumber::DiskIo);
        if (range.l_type == F_UNLCK)
            return std::nullopt;
        return std::max(offset, static_cast<std::uint64_t>(range.l_start));
    }

    bool isNow(const std::string& path) override {
        struct stat ours {};
        struct stat named {};
        if (::fstat(file_, &ours) != 0)
            FailAtFile(path_, "look at", errno, ErrorNumber::DiskIo);
        if (::stat(path.c_str(), &named) != 0) {
            if (errno != ENOENT && errno != ENOTDIR)
                FailAtFile(path, "look for", errno, ErrorNumber::DiskIo);
            return false;
        }
        return IsSameFile(ours, named);
    }

    // A foreign owner cannot always be set; group and mode still can.
    void takeRightsOf(const std::string& path) override {
        struct stat other {};
        if (::stat(path.c_str(), &other) != 0)
            FailAtFile(path, "look at", errno, ErrorNumber::DiskIo);
        constexpr auto same = static_cast<uid_t>(-1);
        if (::fchown(file_, other.st_uid, other.st_gid) != 0 && errno == EPERM &&
            ::fchown(file_, same, other.st_gid) != 0 && errno != EPERM)
            FailAtFile(path_, "set group", errno, ErrorNumber::DiskIo);
        if (::fchmod(file_, other.st_mode & 07777) != 0 && errno != EPERM && errno != ENOTSUP)
            FailAtFile(path_, "set mode", errno, ErrorNumber::DiskIo);
    }

private:
    static struct flock rangeOf(std::uint64_t offset, std::uint64_t length, int type) {
        struct flock range {};
        range.l_type = static_cast<decltype(range.l_type)>(type);
        range.l_whence = SEEK_SET;
        range.l_start = static_cast<off_t>(offset);
        range.l_len = static_cast<off_t>(length);
        return range;
    }

    int file_;
    std::string path_;
    bool folderPending_; // the name is not known to be durable yet
};

class MachineFiles final : public Storage {
public:
    std::unique_ptr<StorageFile> open(const std::string& path, Open how) override {
        const int flags = how == Open::ReadOnly    ? O_RDONLY
                          : how == Open::ReadWrite ? O_RDWR
                                                   : O_RDWR | O_CREAT | O_EXCL;
        const int file = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);
        if (file < 0)
            FailAtFile(path, "open", errno, ErrorNumber::CannotOpenFile);
        struct stat status {};
        if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
            ::close(file);
            throw Error(ErrorNumber::CannotOpenFile, path + ": not a file");
        }
        // A file without any write permission is marked read-only, even for a user who may write all files.
        if (how == Open::ReadWrite && (status.st_mode & 0222) == 0) {
            ::close(file);
            throw Error(ErrorNumber::CannotOpenFile, path + ": marked read-only");
        }
        return std::make_unique<MachineFile>(file, path, how == Open::CreateNew);
    }

    std::string resolve(const std::string& path) override { return FollowLinks(path); }
    bool exists(const std::string& path) override { return FileIsThere(path); }
    void remove(const std::string& path) override { RemoveName(path); }
    void rename(const std::string& from, const std::string& to) override { RenameFile(from, to); }
    void publish(const std::string& from, const std::string& to) override { PublishFile(from, to); }
    bool link(const std::string& path, const std::string& second) override { return LinkFile(path, second); }
};

} // namespace

Storage& MachineStorage() {
    static MachineFiles files;
    return files;
}

std::string MachineName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0)
        return {};
    return name.data();
}

} // namespace jet
