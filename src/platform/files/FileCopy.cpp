#include "platform/files/FileCopy.h"

#include "platform/Prompts.h"
#include "platform/host/Replacement.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/ResolvedPath.h"

#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr size_t blockLength = 256 * 1024;

// The system's own error numbers for those of the run-time.
int systemNumber(int fileError) {
    switch (fileError) {
    case NoError:
        return ShellCopied;
    case FileNotFound:
        return 2;
    case PathNotFound:
        return 3;
    case PathFileAccess:
        return 5;
    case DiskNotReady:
        return 21;
    case PermissionDenied:
        return 32;
    case FileAlreadyExists:
        return 80;
    case DiskFull:
        return 112;
    case BadFileNumber:
        return 123;
    default:
        return 1117; // a device that failed
    }
}

// Makes the folders above a path that are missing.
void makeFoldersAbove(const QString& path) {
    const qsizetype slash = std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/'));
    const QString folder = path.left(std::max<qsizetype>(slash, 0));
    if (folder.isEmpty() || folder.endsWith(u':') || FolderExists(folder) || folder == path)
        return;
    makeFoldersAbove(folder);
    MakeFolder(folder); // a failure shows when the file is made
}

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
        return source.failed();
    struct stat there {};
    const bool itself = ::stat(target.name.constData(), &there) == 0 && there.st_ino == info.st_ino &&
                        there.st_dev == info.st_dev;
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
            return source.failed();
        if (got > 0)
            replacement.write(block.data(), got);
        done += std::max<ssize_t>(got, 0);
    }
    return replacement.commit(&info.st_mtim);
}

int CopyWholeFile(const QString& from, const QString& to) {
    return CopyInSteps(from, to, {});
}

int CopyFileWithProgress(const QString& from, const QString& to, const QString& title, bool noConfirmation,
                         bool silent) {
    const std::optional<PathParts> source = SplitPath(from, {});
    const QString name = source && !source->names.isEmpty() ? source->names.last() : QString();
    const QString target = FolderExists(to) && !name.isEmpty() ? to + u'\\' + name : to;
    if (!FileExists(from))
        return systemNumber(FolderExists(from) ? PathFileAccess : FileNotFound);
    if (!noConfirmation && FileExists(target)) {
        const Message question{
            QStringLiteral("\"%1\" is there already.\n\nDo you want to replace it?").arg(target),
            Icon::Question, Buttons::YesNo, Answer::No, title};
        if (prompts().ask(question) != Answer::Yes)
            return ShellCancelled;
    }
    makeFoldersAbove(target);
    std::unique_ptr<Progress> progress;
    if (!silent)
        progress = prompts().beginProgress(title, true);
    bool stopped = false;
    const int error = CopyInSteps(
        from, target,
        [&](qint64 done, qint64 total) {
            prompts().processEvents();
            return !progress || progress->step(done, total, name);
        },
        &stopped);
    return stopped ? ShellCancelled : systemNumber(error);
}

} // namespace tolvex::platform
