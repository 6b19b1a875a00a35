// The number of sockets this process has open. Its other files vary: the threads that ask drives have some.
#pragma once

#include <QDir>

namespace tolvex::tests {

inline qsizetype openSockets() {
    qsizetype sockets = 0;
    for (const QFileInfo& file : QDir("/proc/self/fd").entryInfoList(QDir::AllEntries | QDir::System))
        sockets += file.symLinkTarget().contains("socket:");
    return sockets;
}

} // namespace tolvex::tests
