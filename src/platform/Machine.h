// Facts about this computer.
#pragma once

#include <QString>

namespace tolvex::platform {

// The operating system version record. Off Windows it is the version that the suite's programs see there:
// platform 2 (the professional line), 10.0.
struct SystemVersion {
    quint32 major = 0;
    quint32 minor = 0;
    quint32 build = 0;
    quint32 platform = 0; // 1 the old consumer line, 2 the professional line
    QString service;
};
SystemVersion OperatingSystem();
// For tests only: replaces the version.
void SetOperatingSystem(const SystemVersion& version);

// The part of the host name before its first point, in upper case as the platform shows it, at most 128
// characters.
QString ComputerName();

// Bytes of physical memory. Tests may set another figure; 0 restores the machine's.
quint64 PhysicalMemory();
void SetPhysicalMemory(quint64 bytes);

} // namespace tolvex::platform
