// Mount points of network file systems, read from the kernel's own table: this asks no file system, so it
// never waits for a server that is gone.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace tolvex::platform {

// Whether the kernel's name of a file system ("cifs", "nfs4") is that of a network file system.
bool IsNetworkSystem(const QByteArray& name);

// The mount points (host paths) of all network file systems; `table` is as in /proc/self/mountinfo.
QByteArrayList NetworkMounts(const QByteArray& table);

// Whether `path` is `folder` or lies below it, judged by spelling.
bool IsBelow(const QByteArray& path, const QByteArray& folder);

} // namespace tolvex::platform
