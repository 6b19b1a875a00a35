// Replaces a file of the host as a whole: written beside, flushed, renamed over it, folder flushed. Whenever
// the machine stops, the file is either the old one or the new one.
//
// The file beside (".tolvex-<process>-<n>.new") is locked while its writer lives, so that the next writer in
// the folder recognises what a dead one left behind, and removes it.
#pragma once

#include "platform/host/HostFiles.h"

#include <memory>

namespace tolvex::platform {

// Links are followed and stay links; mode and, where allowed, owner of the old file stay. Without a commit
// the old file stays and nothing is left beside it.
class Replacement {
public:
    explicit Replacement(const QString& hostPath);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    // Adds bytes; the FileError of the first failure so far, here and below.
    int write(const char* bytes, qint64 length);
    // Makes the new bytes durable, with another time of change if one is given. After this only the rename is
    // missing: a full or broken disk has shown itself by now.
    int prepare(const std::optional<HostTime>& modified = {});
    // Puts the file in place, after preparing it if necessary. After an error the old file is there, with one
    // exception: if the folder cannot be flushed the new one is there, and the result is DeviceIoError.
    int commit(const std::optional<HostTime>& modified = {});
    int error() const { return error_; }

private:
    class Beside;
    QString target_;
    std::unique_ptr<Beside> beside_; // null if it could not be made
    int error_ = NoError;
};

int ReplaceHostFile(const QString& hostPath, const QByteArray& bytes);

// Removes a file durably: it does not come back after a power cut. FileError.
int RemoveHostFile(const QString& hostPath);

} // namespace tolvex::platform
