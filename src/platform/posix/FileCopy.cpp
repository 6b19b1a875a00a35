#include "platform/files/FileCopy.h"

#include "platform/host/Replacement.h"
#include "platform/paths/ResolvedPath.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr size_t blockLength = 256 * 1024;

} // namespace

int CopyInSteps(const QString& from, const QString& to,
                const std::function<bool(qint64 done, qint64 total)>& step, bool* stopped) {
    const ResolvedPath source(from);
    const ResolvedPath target(to);
    if (source.error != NoError)
        return source.error;
    if (const int error = target.asNew(); error != NoError)
        return error;
    const Descriptor input(::open(source.name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!input.open() || ::fstat(input.get(), &info) != 0)
        return FileErrorFor(errno, source.host);
    struct stat there {};
    const bool itself = ::stat(target.name.constData(), &there) == 0 && IsSameFile(there, info);
    if (!S_ISREG(info.st_mode) || itself)
        return PathFileAccess;

    Replacement replacement(target.host);
    std::vector<char> block(blockLength);
    for (qint64 done = 0; replacement.error() == NoError;) {
        if (step && !step(done, info.st_size)) {
            if (stopped)
                *stopped = true;
            return NoError;
        }
        const ssize_t got = ::read(input.get(), block.data(), block.size());
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            return FileErrorFor(errno, source.host);
        if (got > 0)
            replacement.write(block.data(), got);
        done += std::max<ssize_t>(got, 0);
    }
    return replacement.commit(HostTime{info.st_mtim.tv_sec, static_cast<qint32>(info.st_mtim.tv_nsec)});
}

} // namespace tolvex::platform
