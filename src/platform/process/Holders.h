// Finds the program that holds a device or a network port.
#pragma once

#include <QString>

#include <optional>

namespace tolvex::platform {

struct Holder {
    qint64 process = 0;
    QString program; // its name as the system lists it

    // "minicom (process 412)".
    QString text() const { return QStringLiteral("%1 (process %2)").arg(program).arg(process); }
};

// A program that has the device open, or that listens on the TCP port; this program is not considered.
// Nothing if there is none, or if it belongs to another user and the system does not say. Reads the system's
// list of processes: some milliseconds.
std::optional<Holder> HolderOfDevice(const QString& hostPath);
std::optional<Holder> HolderOfTcpPort(quint16 port);

} // namespace tolvex::platform
