#include "platform/files/Trash.h"

#include "platform/paths/Paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace tolvex::platform {

namespace {

// The user's own trash, which takes what no drive's trash takes. Qt assumes that its folder can be made, and
// otherwise moves the file into the current folder.
bool hasHomeTrash() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir::isAbsolutePath(data) && QDir().mkpath(data + QStringLiteral("/Trash/files")) &&
           QDir().mkpath(data + QStringLiteral("/Trash/info"));
}

} // namespace

bool MoveToTrash(const QString& path) {
    const QString host = HostPath(path);
    return !host.isEmpty() && hasHomeTrash() && QFile::moveToTrash(host);
}

} // namespace tolvex::platform
