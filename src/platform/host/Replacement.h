// Replacing a file of the host as a whole: written beside, flushed, renamed over it, folder flushed. The file
// is the old one or the new one whenever the machine stops.
//
// The file beside (".tolvex-<process>-<n>.new") is locked for as long as its writer lives, so that the next
// writer in the folder can tell what a dead one left behind, and removes it.
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

    // Adds bytes; the FileError of the first failure of all, here and below.
    int write(const char* bytes, qint64 length);
    // Makes the new bytes lasting, with another time of change if one is given. Then only the name is
    // missing: a full or broken disk has shown itself by now.
    int prepare(const std::optional<HostTime>& modified = {});
    // Puts the file in place, prepared if need be. On an error the old file is there, but for a folder that
    // would not be flushed: then the new one is, and DeviceIoError is the result.
    int commit(const std::optional<HostTime>& modified = {});
    int error() const { return error_; }

private:
    class Beside;
    QString target_;
    std::unique_ptr<Beside> beside_; // null when it could not be made
    int error_ = NoError;
};

int ReplaceHostFile(const QString& hostPath, const QByteArray& bytes);

// Removes a file, so that it does not come back when the machine stops. FileError.
int RemoveHostFile(const QString& hostPath);

} // namespace tolvex::platform
