// The seam to the disk: a file of pages. The engine reads and writes through this interface only, so that
// tests can cut the power between any two writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace jet {

// A file of bytes with positional access, flush and
// byte-range locks. Every call throws jet::Error (DiskIo,
// DiskFull, ...) on failure.
class StorageFile {
public:
    virtual ~StorageFile() = default;
    virtual std::uint64_t size() = 0;
    // Reads up to `length` bytes at `offset`; returns how many there were.
    virtual std::size_t read(std::uint64_t offset, void* into, std::size_t length) = 0;
    virtual void write(std::uint64_t offset, const void* from, std::size_t length) = 0;
    virtual void truncate(std::uint64_t size) = 0;
    // Returns when everything written so far survives a power cut.
    virtual void flush() = 0;
    // A hint that these bytes will not be written again soon: the system may begin to write them to disk, so
    // that a later flush() waits less. Promises nothing, and never fails.
    virtual void beginFlush(std::uint64_t offset, std::uint64_t length) noexcept {
        static_cast<void>(offset);
        static_cast<void>(length);
    }
    // Byte-range lock beyond or inside the file, held by this open file (not by the process) until it is
    // closed. Locking again changes the kind of the lock. False: a conflicting lock exists.
    virtual bool lock(std::uint64_t offset, std::uint64_t length, bool exclusive, bool wait) = 0;
    virtual void unlock(std::uint64_t offset, std::uint64_t length) = 0;
    // A byte of the range on which another open file holds any lock (not always the first one).
    virtual std::optional<std::uint64_t> findLock(std::uint64_t offset, std::uint64_t length) = 0;
    // Whether `path` still refers to this open file: it may have been removed, or replaced.
    virtual bool isNow(const std::string& path) = 0;
    // Sets this file's owner, group and mode to those of another file, as far as the system permits.
    virtual void takeRightsOf(const std::string& path) = 0;
};

// Opens, makes, renames and removes files. Paths are host paths in UTF-8.
class Storage {
public:
    virtual ~Storage() = default;
    enum class Open { ReadOnly, ReadWrite, CreateNew };
    // CreateNew throws DatabaseExists if the file exists; the others FileNotFound or CannotOpenFile. The
    // first flush() of a new file also makes its name durable.
    virtual std::unique_ptr<StorageFile> open(const std::string& path, Open how) = 0;
    // The canonical path of a file: two names of one file
    // must not lead to two write-ahead logs.
    virtual std::string resolve(const std::string& path) { return path; }
    // Throws if this cannot be determined.
    virtual bool exists(const std::string& path) = 0;
    // Does nothing if there is none.
    virtual void remove(const std::string& path) = 0;
    // Replaces `to` atomically; durable on return.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    // Renames, and never replaces: throws DatabaseExists if `to` exists,
    // which then stays as it is. If several programs publish under one
    // name exactly one succeeds, on whatever machine. Durable on return.
    virtual void publish(const std::string& from, const std::string& to) = 0;
    // Gives a file a second name. Throws DatabaseExists if that is taken. False: this disk does not support
    // second names. Durable on return.
    virtual bool link(const std::string& path, const std::string& second) = 0;
};

// The machine's own files.
Storage& MachineStorage();

// The name of this computer, for the list of users of a database.
std::string MachineName();

} // namespace jet
