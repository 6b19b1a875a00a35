// The machine folder in force and what is remembered about it. Only the sources behind Paths.h use it.
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
    // Put in place by tests.
    QHash<QChar, DriveType> driveTypes;
    QByteArray mountTable = "/proc/self/mountinfo";
};

// The state, after the default machine folder was chosen where nobody chose one. A thread beside the main one
// has a state of its own.
PathState& pathState();

// Puts a state in force for the present thread, for its life. What only looks (Files.h, HostPath, the type of
// a drive) may then be used there; what sets something stays with the main thread.
class OwnPathState {
public:
    explicit OwnPathState(PathState& own);
    ~OwnPathState();
    OwnPathState(const OwnPathState&) = delete;
    OwnPathState& operator=(const OwnPathState&) = delete;
};

} // namespace tolvex::platform
