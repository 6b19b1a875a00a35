// The current machine folder and its caches. Only the sources behind Paths.h use it.
#pragma once

#include "platform/paths/FolderCache.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"

namespace tolvex::platform {

struct PathState {
    QString machineFolder;
    QByteArray devices; // host path of its dosdevices/
    PathParts current{{QStringLiteral("c:")}, {}};
    FolderCache folders;
    QString applicationFolder; // empty: ask the system
    // Set by tests.
    QHash<QChar, DriveType> driveTypes;
    QByteArray mountTable = "/proc/self/mountinfo";
};

// The state; chooses the default machine folder if none was chosen. Each thread beside the main one has a
// state of its own.
PathState& pathState();

// Installs a state for the current thread while it lives. Only reading (Files.h, HostPath, the type of a
// drive) is allowed there; changes belong to the main thread.
class OwnPathState {
public:
    explicit OwnPathState(PathState& own);
    ~OwnPathState();
    OwnPathState(const OwnPathState&) = delete;
    OwnPathState& operator=(const OwnPathState&) = delete;
};

} // namespace tolvex::platform
