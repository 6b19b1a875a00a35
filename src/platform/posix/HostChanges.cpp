#include "platform/host/HostChanges.h"

#include "platform/host/HostFiles.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

QString systemText(int error) {
    return error == 0 ? QString() : QString::fromLocal8Bit(std::strerror(error));
}

// 0, or the errno that prevents a folder at `path`.
int makeFolders(const QString& path) {
    const QByteArray name = HostName(path);
    struct stat info {};
    if (::stat(name.constData(), &info) == 0)
        return S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
    if (errno != ENOENT)
        return errno;
    if (const QString parent = HostFolder(path); parent != path)
        if (const int error = makeFolders(parent); error != 0)
            return error;
    // EEXIST: another program was quicker, or a link that leads nowhere holds the name.
    if (::mkdir(name.constData(), 0777) == 0)
        return 0;
    const int error = errno;
    if (error == EEXIST && ::stat(name.constData(), &info) == 0 && S_ISDIR(info.st_mode))
        return 0;
    return error == EEXIST ? ENOENT : error;
}

// False with the errno. A file system that supports neither of the two is assumed to have no other user.
bool renameToNew(const QByteArray& from, const QByteArray& to) {
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return false;
    if (::link(from.constData(), to.constData()) == 0)
        return ::unlink(from.constData()) == 0;
    return errno != EEXIST && errno != EXDEV && hostCalls().rename(from.constData(), to.constData()) == 0;
}

// The result of a rename, from its errno.
int renameError(bool renamed, const QString& to) {
    return renamed ? NoError : errno == EXDEV ? LiesOnOtherDisk : FileErrorFor(errno, to);
}

} // namespace

int MakeHostFolder(const QString& hostPath) {
    if (::mkdir(HostName(hostPath).constData(), 0777) == 0)
        return NoError;
    // The missing one is the parent folder, never the folder to be made.
    return errno == EEXIST ? PathFileAccess : errno == ENOENT ? PathNotFound : FileErrorFor(errno, hostPath);
}

QString MakeHostFolders(const QString& hostPath) {
    return systemText(makeFolders(hostPath));
}

QString MakeHostLink(const QByteArray& target, const QByteArray& name) {
    const bool made = ::symlink(target.constData(), name.constData()) == 0;
    return systemText(made || errno == EEXIST ? 0 : errno);
}

int MakeEmptyHostFile(const QString& hostPath) {
    const Descriptor file(
        ::open(HostName(hostPath).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return file.open() ? NoError : FileErrorFor(errno, hostPath);
}

int RemoveHostName(const QString& hostPath) {
    return ::unlink(HostName(hostPath).constData()) == 0 ? NoError : FileErrorFor(errno, hostPath);
}

int RenameHostFile(const QString& from, const QString& to) {
    return renameError(hostCalls().rename(HostName(from).constData(), HostName(to).constData()) == 0, to);
}

int RenameToFreeName(const QString& from, const QString& to) {
    return renameError(renameToNew(HostName(from), HostName(to)), to);
}

int AppendToHostFile(const QString& hostPath, const QByteArray& bytes) {
    Descriptor file(
        ::open(HostName(hostPath).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!file.open())
        return FileErrorFor(errno, hostPath);
    struct stat info {};
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return PathFileAccess;
    // One write, so that lines of several programs do not mix.
    qint64 written = 0;
    const int failed = WriteFully(file.get(), bytes.constData(), bytes.size(), &written);
    // Take half a line back, unless another program wrote after it.
    const qint64 end = ::lseek(file.get(), 0, SEEK_CUR);
    if (failed != 0 && written > 0 && ::fstat(file.get(), &info) == 0 && info.st_size == end &&
        ::ftruncate(file.get(), end - written) != 0)
        return DeviceIoError;
    return FileErrorFor(failed, hostPath);
}

} // namespace tolvex::platform
