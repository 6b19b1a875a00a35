#include "platform/Machine.h"

#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr int longestName = 128;

// What a program of the suite is shown by the last version of the system that it was made for.
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
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0)
        return {};
    return QString::fromUtf8(name).section(u'.', 0, 0).toUpper().left(longestName);
}

quint64 PhysicalMemory() {
    if (memory != 0)
        return memory;
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(pageSize) : 0;
}

void SetPhysicalMemory(quint64 bytes) {
    memory = bytes;
}

} // namespace tolvex::platform
