// The machine folder in force and what is remembered about it. Only the sources behind Paths.h use it.
#pragma once

#include "platform/FolderCache.h"
#include "platform/PathParts.h"
#include "platform/Paths.h"

namespace tolvex::platform {

struct PathState {
    QString machineFolder;
    QByteArray devices; // host path of its dosdevices/
    PathParts current{{QStringLiteral("c:")}, {}};
    FolderCache folders;
    QString applicationFolder;          // empty: ask the system
    QHash<QChar, DriveType> driveTypes; // put in place by tests
};

// The state, after the default machine folder was chosen where nobody chose one.
PathState& pathState();

} // namespace tolvex::platform
