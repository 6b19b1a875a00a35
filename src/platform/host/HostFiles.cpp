#include "platform/host/HostFiles.h"

#include <chrono>

namespace tolvex::platform {

namespace {

// As many links as the kernel itself follows.
constexpr int mostLinks = 40;

} // namespace

qint64 NowInNanoseconds() {
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

bool IsHostFolder(const QString& hostPath) {
    const std::optional<HostStatus> status = StatusOf(HostName(hostPath));
    return status && status->isFolder();
}

std::optional<QString> FollowLinks(const QString& hostPath) {
    QString path = hostPath;
    for (int i = 0; i < mostLinks; ++i) {
        const QString target = QString::fromUtf8(LinkTarget(HostName(path)));
        if (target.isEmpty())
            return path;
        path = target.startsWith(u'/') ? target : HostFolder(path) + u'/' + target;
    }
    return std::nullopt;
}

QString HostFolder(const QString& hostPath) {
    const qsizetype slash = hostPath.lastIndexOf(u'/');
    return slash > 0 ? hostPath.left(slash) : QStringLiteral("/");
}

} // namespace tolvex::platform
