// Facts about this computer.
#pragma once

#include <QString>

namespace tolvex::platform {

// The operating system version record. Off Windows it tells the version that the suite's programs are shown
// there: platform 2 (the professional line), 10.0.
struct SystemVersion {
    quint32 major = 0;
    quint32 minor = 0;
    quint32 build = 0;
    quint32 platform = 0; // 1 the old consumer line, 2 the professional line
    QString service;
};
SystemVersion OperatingSystem();
// Tests put another version in place; nothing else may.
void SetOperatingSystem(const SystemVersion& version);

// At most 128 characters; the part of the host name before its first point, upper-cased as the platform shows
// it.
QString ComputerName();

// Bytes of physical memory; tests may put another figure in place, 0 brings the machine's back.
quint64 PhysicalMemory();
void SetPhysicalMemory(quint64 bytes);

} // namespace tolvex::platform
