#include "platform/files/Files.h"

#include "platform/files/FolderReader.h"
#include "platform/host/LookOnly.h"
#include "platform/host/Replacement.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"
#include "platform/paths/ResolvedPath.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

bool look(const QString& path, struct stat& info) {
    const ResolvedPath at(path);
    return at.error == NoError && ::stat(at.name.constData(), &info) == 0;
}

// Renames where nothing has the new name, even when another program takes it at this moment. False with the
// errno; a file system that can do neither of these two is trusted to be used by nobody else.
bool renameToNew(const QByteArray& from, const QByteArray& to) {
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return false;
    if (::link(from.constData(), to.constData()) == 0)
        return ::unlink(from.constData()) == 0;
    return errno != EEXIST && errno != EXDEV && hostCalls().rename(from.constData(), to.constData()) == 0;
}

} // namespace

qint64 FileSize(const QString& path) {
    const ResolvedPath at(path);
    struct stat info {};
    if (at.error != NoError || ::stat(at.name.constData(), &info) != 0 || S_ISDIR(info.st_mode))
        return -1;
    return ::access(at.name.constData(), R_OK) == 0 ? info.st_size : -1;
}

bool FileExists(const QString& path) {
    struct stat info {};
    return look(path, info) && !S_ISDIR(info.st_mode);
}

bool FolderExists(const QString& path) {
    struct stat info {};
    return look(path, info) && S_ISDIR(info.st_mode);
}

QDateTime FileModified(const QString& path) {
    struct stat info {};
    if (!look(path, info))
        return {};
    return QDateTime::fromMSecsSinceEpoch(qint64{info.st_mtim.tv_sec} * 1000 +
                                          info.st_mtim.tv_nsec / 1'000'000);
}

int MakeFolder(const QString& path) {
    const ResolvedPath at(path);
    if (const int error = at.asNew(); error != NoError)
        return error;
    if (::mkdir(at.name.constData(), 0777) == 0)
        return NoError;
    // What is missing is the folder above, never the folder to be made.
    return errno == EEXIST ? PathFileAccess : errno == ENOENT ? PathNotFound : at.failed();
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
    struct stat info {};
    if (LookingOnly() || (::lstat(at.name.constData(), &info) == 0 && S_ISDIR(info.st_mode)))
        return PathFileAccess;
    return ::unlink(at.name.constData()) == 0 ? NoError : at.failed();
}

int RenameFile(const QString& from, const QString& to) {
    const ResolvedPath source(from);
    const ResolvedPath target(to);
    if (source.error != NoError)
        return source.error;
    if (const int error = target.asNew(); error != NoError)
        return error;
    struct stat there {};
    struct stat ours {};
    if (::lstat(source.name.constData(), &ours) != 0)
        return source.failed();
    bool renamed = false;
    if (::lstat(target.name.constData(), &there) == 0) {
        if (there.st_ino != ours.st_ino || there.st_dev != ours.st_dev)
            return FileAlreadyExists;
        // A change of case alone finds the file itself; so does giving it the name it has.
        QByteArray name = target.name;
        const std::optional<PathParts> spelled = SplitPath(to, {});
        if (spelled && !spelled->names.isEmpty())
            name = HostName(HostFolder(target.host) + u'/' + spelled->names.last());
        renamed = hostCalls().rename(source.name.constData(), name.constData()) == 0;
    } else {
        renamed = renameToNew(source.name, target.name);
    }
    if (renamed)
        return NoError;
    if (errno != EXDEV)
        return target.failed();
    // Another disk: a file moves there by being copied.
    const int error = CopyWholeFile(from, to);
    return error == NoError ? RemoveFile(from) : error;
}

std::optional<QByteArray> ReadWholeFile(const QString& path, qint64 limit) {
    const ResolvedPath at(path);
    return at.error == NoError ? ReadHostFile(at.host, limit) : std::nullopt;
}

qint64 ReadFileStart(const QString& path, char* bytes, qint64 most) {
    const ResolvedPath at(path);
    if (at.error != NoError)
        return -1;
    const Descriptor file(::open(at.name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    qint64 done = 0;
    while (file.open() && done < most) {
        const ssize_t got = ::read(file.get(), bytes + done, static_cast<size_t>(most - done));
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            return -1;
        done += std::max<ssize_t>(got, 0);
    }
    return file.open() ? done : -1;
}

int ReplaceWholeFile(const QString& path, const QByteArray& bytes) {
    const ResolvedPath at(path);
    const int error = at.asNew();
    return error == NoError ? ReplaceHostFile(at.host, bytes) : error;
}

int AppendToFile(const QString& path, const QByteArray& bytes) {
    const ResolvedPath at(path);
    if (const int error = at.asNew(); error != NoError)
        return error;
    Descriptor file(
        ::open(at.name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!file.open())
        return at.failed();
    struct stat info {};
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return PathFileAccess;
    // One write, so that lines of several programs do not mix.
    qint64 written = 0;
    const int failed = WriteFully(file.get(), bytes.constData(), bytes.size(), &written);
    // Half a line is taken back, unless somebody wrote behind it.
    const qint64 end = ::lseek(file.get(), 0, SEEK_CUR);
    if (failed != 0 && written > 0 && ::fstat(file.get(), &info) == 0 && info.st_size == end &&
        ::ftruncate(file.get(), end - written) != 0)
        return DeviceIoError;
    return FileErrorFor(failed, at.host);
}

} // namespace tolvex::platform
