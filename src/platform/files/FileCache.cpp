#include "platform/files/FileCache.h"

#include <ctime>

namespace tolvex::platform {

namespace {

constexpr qint64 second = 1'000'000'000;
// The coarsest file systems count in steps of 2 seconds; a server's clock may differ a little on top.
constexpr qint64 freshFor = 3 * second;

qint64 nanoseconds(const timespec& time) {
    return static_cast<qint64>(time.tv_sec) * second + time.tv_nsec;
}

} // namespace

std::optional<FileStamp> StampOf(const QString& hostPath) {
    struct stat info {};
    if (::stat(HostName(hostPath).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    return FileStamp{info.st_dev, info.st_ino, info.st_size, nanoseconds(info.st_mtim),
                     nanoseconds(info.st_ctim)};
}

bool IsFresh(const FileStamp& stamp) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return stamp.modified > nanoseconds(now) - freshFor;
}

} // namespace tolvex::platform
