#include "platform/files/FileCopy.h"

#include "platform/Prompts.h"
#include "platform/paths/PathParts.h"

#include <algorithm>

namespace tolvex::platform {

namespace {

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

// Makes the missing parent folders of a path.
void makeFoldersAbove(const QString& path) {
    const qsizetype slash = std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/'));
    const QString folder = path.left(std::max<qsizetype>(slash, 0));
    if (folder.isEmpty() || folder.endsWith(u':') || FolderExists(folder) || folder == path)
        return;
    makeFoldersAbove(folder);
    MakeFolder(folder); // a failure shows when the file is made
}

} // namespace

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
