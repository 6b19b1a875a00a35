#include "platform/files/Trash.h"

#include "platform/paths/Paths.h"

#include <QFile>

namespace tolvex::platform {

bool MoveToTrash(const QString& path) {
    const QString host = HostPath(path);
    return !host.isEmpty() && QFile::moveToTrash(host);
}

} // namespace tolvex::platform
