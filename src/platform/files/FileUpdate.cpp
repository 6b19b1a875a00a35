#include "platform/files/FileUpdate.h"

#include "platform/host/FileInPlace.h"
#include "platform/host/FileLock.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/host/Replacement.h"

namespace tolvex::platform {

namespace {

// The file as it is, what becomes of it, and the bytes of that; nothing when there is nothing to write.
struct Step {
    std::optional<QByteArray> now;
    std::optional<QByteArray> next;
    int error = NoError;
};

Step readAndChange(const QString& hostPath, qint64 limit, const FileChanger& change) {
    Step step;
    int error = NoError;
    step.now = ReadHostFile(hostPath, limit, &error);
    if (!step.now && error != FileNotFound) {
        step.error = error;
        return step;
    }
    FileChange result = change(step.now);
    step.error = result.error;
    if (result.error == NoError && result.bytes && (!step.now || *step.now != *result.bytes))
        step.next = std::move(result.bytes);
    return step;
}

bool canOnlyBeOverwritten(const QString& hostPath) {
    return !MayAccess(HostFolder(hostPath), Access::Write) && MayAccess(hostPath, Access::Write);
}

// Without the lock, which a folder that takes no files does not give: the file to be overwritten where it
// lies; nothing when that cannot be done either.
std::optional<QString> fileToOverwrite(const QString& hostPath, const FileLock& lock) {
    const std::optional<QString> target = FollowLinks(hostPath);
    const bool can =
        lock.error() == PathFileAccess && !LookingOnly() && target && canOnlyBeOverwritten(*target);
    return can ? target : std::nullopt;
}

int updateInPlace(const QString& hostPath, qint64 limit, const FileChanger& change) {
    FileInPlace file(hostPath);
    if (file.error() != NoError)
        return file.error();
    const Step step = readAndChange(hostPath, limit, change);
    return step.error != NoError || !step.next ? step.error : file.overwrite(*step.now, *step.next);
}

} // namespace

int UpdateHostFile(const QString& hostPath, qint64 limit, const FileChanger& change) {
    const FileLock lock(hostPath);
    if (!lock.held()) {
        const std::optional<QString> target = fileToOverwrite(hostPath, lock);
        return target ? updateInPlace(*target, limit, change) : lock.error();
    }
    const Step step = readAndChange(hostPath, limit, change);
    if (step.error != NoError || !step.next)
        return step.error;
    return ReplaceHostFile(hostPath, *step.next);
}

int CheckUpdate(const QString& hostPath, qint64 limit) {
    const FileLock lock(hostPath);
    if (!lock.held())
        return fileToOverwrite(hostPath, lock) ? NoError : lock.error();
    int error = NoError;
    if (!ReadHostFile(hostPath, limit, &error) && error != FileNotFound)
        return error;
    return Replacement(hostPath).error();
}

} // namespace tolvex::platform
