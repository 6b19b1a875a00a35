#include "platform/paths/NetworkMounts.h"

#include <algorithm>
#include <iterator>

namespace tolvex::platform {

namespace {

constexpr const char* networkSystems[] = {
    "9p",          "afs",        "ceph",           "cifs",           "coda",
    "davfs",       "fuse.davfs", "fuse.curlftpfs", "fuse.glusterfs", "fuse.gvfsd-fuse",
    "fuse.rclone", "fuse.sshfs", "lustre",         "ncpfs",          "nfs",
    "nfs4",        "smb3",       "smbfs",
};

// In the table, blanks and the like are "\" and three octal digits.
QByteArray unescaped(const QByteArray& text) {
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool octal = false;
        const int code = text[i] == '\\' ? text.mid(i + 1, 3).toInt(&octal, 8) : 0;
        plain += octal ? static_cast<char>(code) : text[i];
        i += octal ? 3 : 0;
    }
    return plain;
}

} // namespace

bool IsNetworkSystem(const QByteArray& name) {
    return std::find(std::begin(networkSystems), std::end(networkSystems), name) != std::end(networkSystems);
}

QByteArrayList NetworkMounts(const QByteArray& table) {
    // "36 35 98:0 /root /mount/point options [more fields] - type source options"
    constexpr qsizetype mountPoint = 4;
    QByteArrayList mounts;
    for (const QByteArray& line : table.split('\n')) {
        const QByteArrayList words = line.split(' ');
        const qsizetype dash = words.indexOf("-", mountPoint);
        if (dash > 0 && IsNetworkSystem(words.value(dash + 1)))
            mounts += unescaped(words[mountPoint]);
    }
    return mounts;
}

bool IsBelow(const QByteArray& path, const QByteArray& folder) {
    return path == folder || path.startsWith(folder.endsWith('/') ? folder : folder + '/');
}

} // namespace tolvex::platform
