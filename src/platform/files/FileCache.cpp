#include "platform/files/FileCache.h"

namespace tolvex::platform {

namespace {

// The coarsest file systems count in steps of 2 seconds; a server's clock may differ a little on top.
constexpr qint64 freshFor = 3'000'000'000; // nanoseconds

} // namespace

std::optional<FileStamp> StampOf(const QString& hostPath) {
    const std::optional<HostStatus> status = StatusOf(HostName(hostPath));
    if (!status || !status->isFile())
        return std::nullopt;
    return FileStamp{status->device, status->number, status->size, status->modified, status->changed};
}

bool IsFresh(const FileStamp& stamp) {
    return stamp.modified.inNanoseconds() > NowInNanoseconds() - freshFor;
}

} // namespace tolvex::platform
