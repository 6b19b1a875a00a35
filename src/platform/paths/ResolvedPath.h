// A Windows path on its way to a call of the host: resolved (Paths.h), with the error that stands for one
// that does not resolve.
#pragma once

#include "platform/host/HostFiles.h"

namespace tolvex::platform {

struct ResolvedPath {
    explicit ResolvedPath(const QString& windowsPath);
    // The error that forbids giving it to a new file or folder; an existing one may keep any name.
    int asNew() const;

    QString host;
    QByteArray name; // the same, as the system takes it
    int error = NoError;
};

} // namespace tolvex::platform
