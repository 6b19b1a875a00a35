// A Windows path ready for a host call: resolved (Paths.h),
// with the error for a path that does not resolve.
#pragma once

#include "platform/host/HostFiles.h"

namespace tolvex::platform {

struct ResolvedPath {
    explicit ResolvedPath(const QString& windowsPath);
    // The error that forbids this name for a new file or folder; an existing one may keep any name.
    int asNew() const;

    QString host;
    QByteArray name; // the same, as the system takes it
    int error = NoError;
};

} // namespace tolvex::platform
