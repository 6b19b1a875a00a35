#include "platform/Machine.h"

#include "platform/System.h"

namespace tolvex::platform {

namespace {

constexpr int longestName = 128;

// The version that a program of the suite sees on the newest system it was made for.
SystemVersion version{10, 0, 19045, 2, {}};
quint64 memory = 0; // 0: the machine's

} // namespace

SystemVersion OperatingSystem() {
    return version;
}

void SetOperatingSystem(const SystemVersion& other) {
    version = other;
}

QString ComputerName() {
    return SystemName().section(u'.', 0, 0).toUpper().left(longestName);
}

quint64 PhysicalMemory() {
    return memory != 0 ? memory : SystemMemory();
}

void SetPhysicalMemory(quint64 bytes) {
    memory = bytes;
}

} // namespace tolvex::platform
