// Changes a file in place because its folder accepts no new files.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace tolvex::platform {

class FileInPlace {
public:
    // Opens the file at a host path and locks it; waits up to 3 seconds for another holder.
    explicit FileInPlace(const QString& hostPath);
    ~FileInPlace();
    FileInPlace(const FileInPlace&) = delete;
    FileInPlace& operator=(const FileInPlace&) = delete;

    // NoError if it is open and locked; PermissionDenied if another program kept the lock all the time.
    int error() const { return error_; }

    // Changes the file, which holds `now`, to hold `next`: from the first byte that differs, once the disk
    // has room for it. FileError; a full disk leaves the file unchanged.
    int overwrite(const QByteArray& now, const QByteArray& next);

private:
    class Opened;
    QString path_;
    std::unique_ptr<Opened> file_;
    int error_ = NoError;
};

} // namespace tolvex::platform
