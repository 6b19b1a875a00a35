#include "platform/files/Files.h"

#include "platform/files/FolderReader.h"
#include "platform/host/HostChanges.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/host/Replacement.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/ResolvedPath.h"

#include <algorithm>
#include <optional>

namespace tolvex::platform {

namespace {

std::optional<HostStatus> look(const QString& path) {
    const ResolvedPath at(path);
    return at.error == NoError ? StatusOf(at.name) : std::nullopt;
}

} // namespace

qint64 FileSize(const QString& path) {
    const ResolvedPath at(path);
    const std::optional<HostStatus> status = at.error == NoError ? StatusOf(at.name) : std::nullopt;
    if (!status || status->isFolder())
        return -1;
    return MayAccess(at.host, Access::Read) ? status->size : -1;
}

bool FileExists(const QString& path) {
    const std::optional<HostStatus> status = look(path);
    return status && !status->isFolder();
}

bool FolderExists(const QString& path) {
    const std::optional<HostStatus> status = look(path);
    return status && status->isFolder();
}

QDateTime FileModified(const QString& path) {
    const std::optional<HostStatus> status = look(path);
    return status ? QDateTime::fromMSecsSinceEpoch(status->modified.inMilliseconds()) : QDateTime();
}

int MakeFolder(const QString& path) {
    const ResolvedPath at(path);
    const int error = at.asNew();
    return error == NoError ? MakeHostFolder(at.host) : error;
}

QStringList FolderNames(const QString& path) {
    QStringList names;
    FolderReader folder(path);
    for (QString name; folder.next(name);)
        names += name;
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

int RemoveFile(const QString& path) {
    const ResolvedPath at(path);
    if (at.error != NoError)
        return at.error;
    const std::optional<HostStatus> status = LinkStatusOf(at.name);
    if (LookingOnly() || (status && status->isFolder()))
        return PathFileAccess;
    return RemoveHostName(at.host);
}

int RenameFile(const QString& from, const QString& to) {
    const ResolvedPath source(from);
    const ResolvedPath target(to);
    if (source.error != NoError)
        return source.error;
    int error = target.asNew();
    if (error != NoError)
        return error;
    const std::optional<HostStatus> ours = LinkStatusOf(source.name, &error);
    if (!ours)
        return error;
    if (const std::optional<HostStatus> there = LinkStatusOf(target.name)) {
        if (!there->isSameFile(*ours))
            return FileAlreadyExists;
        // A change of case alone finds the file itself, and so does renaming it to its own name.
        const std::optional<PathParts> spelled = SplitPath(to, {});
        const bool isNamed = spelled && !spelled->names.isEmpty();
        error = RenameHostFile(source.host, isNamed ? HostFolder(target.host) + u'/' + spelled->names.last()
                                                    : target.host);
    } else {
        error = RenameToFreeName(source.host, target.host);
    }
    if (error != LiesOnOtherDisk)
        return error;
    // A move to another disk is a copy.
    error = CopyWholeFile(from, to);
    return error == NoError ? RemoveFile(from) : error;
}

std::optional<QByteArray> ReadWholeFile(const QString& path, qint64 limit) {
    const ResolvedPath at(path);
    return at.error == NoError ? ReadHostFile(at.host, limit) : std::nullopt;
}

qint64 ReadFileStart(const QString& path, char* bytes, qint64 most) {
    const ResolvedPath at(path);
    return at.error == NoError ? ReadHostFileStart(at.name, bytes, most) : -1;
}

int ReplaceWholeFile(const QString& path, const QByteArray& bytes) {
    const ResolvedPath at(path);
    const int error = at.asNew();
    return error == NoError ? ReplaceHostFile(at.host, bytes) : error;
}

int AppendToFile(const QString& path, const QByteArray& bytes) {
    const ResolvedPath at(path);
    const int error = at.asNew();
    return error == NoError ? AppendToHostFile(at.host, bytes) : error;
}

} // namespace tolvex::platform
