#include "support/FileFaults.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using tolvex::tests::Fault;

namespace {

constexpr int failedChecks = 255;

struct Plan {
    Fault fault = Fault::None;
    int at = 0;
    int operations = 0;
};
// Shared with the process that runs the job; null in all others.
Plan* plan = nullptr;

tolvex::tests::DiskAbilities disk;

enum class Kind { TakesRoom, Other };

// Counts an operation. Returns 0, or the error for it to fail with; does not return if the process dies,
// after `half` of it was done.
template<typename Half>
int meet(Kind kind, Half half) {
    if (!plan)
        return 0;
    const int number = ++plan->operations;
    if (plan->fault == Fault::Kill && number == plan->at) {
        half();
        ::raise(SIGKILL);
    }
    if (plan->fault == Fault::Error && number == plan->at)
        return EIO;
    return plan->fault == Fault::NoRoom && number >= plan->at && kind == Kind::TakesRoom ? ENOSPC : 0;
}
int meet(Kind kind) {
    return meet(kind, [] {});
}

template<typename Call>
auto guarded(int error, Call call) {
    if (error == 0)
        return call();
    errno = error;
    return static_cast<decltype(call())>(-1);
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list more;
        va_start(more, flags);
        mode = va_arg(more, mode_t);
        va_end(more);
    }
    const bool makes = flags & O_CREAT && ::access(path, F_OK) != 0;
    const int error = makes ? meet(Kind::TakesRoom) : 0;
    return guarded(error, [&] { return int(::syscall(SYS_openat, AT_FDCWD, path, flags, mode)); });
}

ssize_t write(int file, const void* bytes, size_t length) {
    const auto go = [&](size_t count) { return ::syscall(SYS_write, file, bytes, count); };
    const int error = file > STDERR_FILENO ? meet(Kind::TakesRoom, [&] { go(length / 2); }) : 0;
    return guarded(error, [&] { return ssize_t(go(length)); });
}

ssize_t pwrite(int file, const void* bytes, size_t length, off_t offset) {
    const auto go = [&](size_t count) { return ::syscall(SYS_pwrite64, file, bytes, count, offset); };
    const int error = meet(Kind::TakesRoom, [&] { go(length / 2); });
    return guarded(error, [&] { return ssize_t(go(length)); });
}

int posix_fallocate(int file, off_t offset, off_t length) {
    if (const int error = meet(Kind::TakesRoom))
        return error;
    return ::syscall(SYS_fallocate, file, 0, offset, length) == 0 ? 0 : errno;
}

int ftruncate(int file, off_t length) noexcept {
    return guarded(meet(Kind::Other), [&] { return int(::syscall(SYS_ftruncate, file, length)); });
}

// A process's writes survive its death: flushing is counted, and the disk spared.
int fsync(int) {
    return guarded(meet(Kind::Other), [] { return 0; });
}

int fdatasync(int) {
    return guarded(meet(Kind::Other), [] { return 0; });
}

int mkdir(const char* path, mode_t mode) noexcept {
    const bool makes = ::access(path, F_OK) != 0;
    const int error = makes ? meet(Kind::TakesRoom) : 0;
    return guarded(error, [&] { return int(::syscall(SYS_mkdirat, AT_FDCWD, path, mode)); });
}

int rename(const char* from, const char* to) noexcept {
    return guarded(meet(Kind::Other),
                   [&] { return int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0)); });
}

int renameat2(int, const char* from, int, const char* to, unsigned how) noexcept {
    const int unable = disk.renamesWithoutReplacing ? 0 : EINVAL;
    return guarded(unable != 0 ? unable : meet(Kind::Other),
                   [&] { return int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, how)); });
}

int link(const char* path, const char* second) noexcept {
    return guarded(disk.links ? meet(Kind::Other) : EPERM,
                   [&] { return int(::syscall(SYS_linkat, AT_FDCWD, path, AT_FDCWD, second, 0)); });
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
    return guarded(meet(Kind::Other), [&] { return int(::syscall(SYS_fchown, file, owner, group)); });
}

int fchmod(int file, mode_t mode) noexcept {
    return guarded(meet(Kind::Other), [&] { return int(::syscall(SYS_fchmod, file, mode)); });
}

int unlink(const char* path) noexcept {
    return guarded(meet(Kind::Other), [&] { return int(::syscall(SYS_unlinkat, AT_FDCWD, path, 0)); });
}

} // extern "C"

namespace tolvex::tests {

FaultyRun RunWithFault(const std::function<int()>& job, Fault fault, int at) {
    void* shared = ::mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto* ours = new (shared) Plan{fault, at, 0};
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        plan = ours;
        const int result = job();
        plan = nullptr;
        std::fflush(nullptr);
        ::_exit(testing::Test::HasFailure() ? failedChecks : result);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    const bool ended = WIFEXITED(status) && WEXITSTATUS(status) != failedChecks;
    const FaultyRun run{ours->operations, WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
                        ended ? WEXITSTATUS(status) : -1};
    ::munmap(shared, sizeof(Plan));
    return run;
}

PlainDisk::PlainDisk(DiskAbilities abilities) {
    disk = abilities;
}

PlainDisk::~PlainDisk() {
    disk = {};
}

} // namespace tolvex::tests
