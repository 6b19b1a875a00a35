// The drives, and the kind of each.
#include "platform/paths/PathState.h"
#include "platform/paths/Paths.h"

#include "platform/host/HostFiles.h"
#include "platform/paths/NetworkMounts.h"

#include <QStorageInfo>

#include <algorithm>
#include <iterator>

namespace tolvex::platform {

namespace {

// File systems by their names in the kernel.
constexpr const char* opticalSystems[] = {"cdfs", "iso9660", "udf"};

template<size_t count>
bool holds(const char* const (&names)[count], const QByteArray& name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

} // namespace

quint32 LogicalDrives() {
    quint32 mask = 0;
    for (int bit = 0; bit < 26; ++bit)
        if (IsHostFolder(HostPath(QChar(u'A' + bit) + QStringLiteral(":\\"))))
            mask |= 1U << bit;
    return mask;
}

DriveType TypeOfDrive(QChar letter) {
    const QString root = HostPath(letter.toUpper() + QStringLiteral(":\\"));
    if (letter.toUpper() < u'A' || letter.toUpper() > u'Z' || root.isEmpty())
        return DriveType::NoRoot;
    if (const auto placed = pathState().driveTypes.constFind(letter.toUpper());
        placed != pathState().driveTypes.constEnd())
        return *placed;
    // A root that is missing from the list of mounts, as in a container, has no file system name: it belongs
    // to this machine.
    const QByteArray system = QStorageInfo(root).fileSystemType();
    if (IsNetworkSystem(system))
        return DriveType::Remote;
    return holds(opticalSystems, system) ? DriveType::CdRom : DriveType::Fixed;
}

void SetTypeOfDrive(QChar letter, DriveType type) {
    pathState().driveTypes.insert(letter.toUpper(), type);
}

} // namespace tolvex::platform
