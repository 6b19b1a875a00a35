// Where network file systems are mounted, read from the kernel's own table: nothing here asks a file system,
// so nothing waits for a server that is gone.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace tolvex::platform {

// Whether the kernel's name of a file system ("cifs", "nfs4") is that of one reached over a network.
bool IsNetworkSystem(const QByteArray& name);

// The mount points (host paths) of all network file systems. `table`: in the form of /proc/self/mountinfo.
QByteArrayList NetworkMounts(const QByteArray& table);

// Whether `path` is `folder` or something below it, by their spelling.
bool IsBelow(const QByteArray& path, const QByteArray& folder);

} // namespace tolvex::platform
