#include "platform/paths/Paths.h"

#include "platform/host/HostFiles.h"
#include "platform/paths/FolderCache.h"
#include "platform/paths/NetworkMounts.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/PathState.h"

#include <QDir>

#include <QFile>

#include <algorithm>

namespace tolvex::platform {

namespace {

constexpr int longestShortPath = 1023;

bool isThere(const QByteArray& hostPath) {
    return StatusOf(hostPath).has_value();
}

// The pieces of a path; a bare name goes to the Windows folder if that rule applies.
std::optional<PathParts> partsOf(const QString& path, BareName bareName) {
    if (bareName == BareName::WindowsFolder && IsBareName(path))
        return SplitPath(WindowsFolder() + u'\\' + path, pathState().current);
    return SplitPath(path, pathState().current);
}

// The root of a drive, share or device, if it leads somewhere.
std::optional<QByteArray> resolveRoot(const QStringList& root) {
    QByteArray folder = pathState().devices;
    for (const QString& name : root) {
        const std::optional<QByteArray> found = pathState().folders.find(folder, name);
        if (!found)
            return std::nullopt;
        folder += '/' + *found;
    }
    if (!isThere(folder))
        return std::nullopt;
    return folder;
}

// Canonical host path of an existing one, without a trailing slash.
std::optional<QByteArray> canonical(const QByteArray& hostPath) {
    std::optional<QByteArray> path = CanonicalName(hostPath);
    if (path == "/")
        path->clear();
    return path;
}

// Which links lead to network file systems, judged by their text: no server is asked.
class NetworkLinks {
public:
    NetworkLinks() {
        QFile table(QString::fromUtf8(pathState().mountTable));
        if (table.open(QIODevice::ReadOnly))
            mounts_ = NetworkMounts(table.readAll());
    }
    // Whether `link` leads to a network file system that does not contain `path`.
    bool leadsAwayFrom(const QByteArray& path, const QByteArray& link) const {
        if (mounts_.isEmpty())
            return false;
        const QByteArray written = LinkTarget(link);
        const QByteArray target =
            QDir::cleanPath(QString::fromUtf8(written.startsWith('/') ? written : link + "/../" + written))
                .toUtf8();
        return std::any_of(mounts_.begin(), mounts_.end(), [&](const QByteArray& mount) {
            return IsBelow(target, mount) && !IsBelow(path, mount);
        });
    }

private:
    QByteArrayList mounts_;
};

// The same for a path whose last names may not exist.
QByteArray canonicalAsFarAsThere(const QByteArray& hostPath) {
    if (hostPath.size() >= LongestHostPath)
        return hostPath;
    for (qsizetype end = hostPath.size(); end > 0; end = hostPath.lastIndexOf('/', end - 1))
        if (const std::optional<QByteArray> folder = canonical(hostPath.left(end)))
            return *folder + hostPath.mid(end);
    return hostPath;
}

// Keeps the root with the deepest folder that contains a path.
class ClosestRoot {
public:
    explicit ClosestRoot(QByteArray path)
        : path_(std::move(path)) {}
    void offer(const QByteArray& folder, const QString& windowsRoot) {
        const std::optional<QByteArray> root = canonical(folder);
        if (!root || root->size() <= length_ || !IsBelow(path_, *root))
            return;
        length_ = root->size();
        windowsRoot_ = windowsRoot;
    }
    QString windowsPath() const {
        if (length_ < 0)
            return {};
        QString below = QString::fromUtf8(path_.mid(length_));
        below.replace(u'/', u'\\');
        return windowsRoot_ + (below.isEmpty() && windowsRoot_.endsWith(u':') ? QStringLiteral("\\") : below);
    }

private:
    QByteArray path_;
    qsizetype length_ = -1;
    QString windowsRoot_;
};

} // namespace

QString HostPath(const QString& path, BareName bareName) {
    const std::optional<PathParts> parts = partsOf(path, bareName);
    if (!parts || pathState().devices.isEmpty())
        return {};
    // Most paths are spelled as they are on disk, and one call settles them. It also gives the exact spelling
    // its precedence.
    QByteArray spelled = pathState().devices;
    for (const QStringList* names : {&parts->root, &parts->names})
        for (const QString& name : *names)
            spelled += '/' + name.toUtf8();
    if (isThere(spelled))
        return QString::fromUtf8(spelled);

    // The same for its folder: usually only the last name is new, or spelled differently.
    if (!parts->names.isEmpty()) {
        const QByteArray folder = spelled.left(spelled.lastIndexOf('/'));
        bool isFolder = false;
        const std::optional<QByteArray> found =
            pathState().folders.find(folder, parts->names.last(), &isFolder);
        if (isFolder)
            return QString::fromUtf8(folder + '/' + found.value_or(parts->names.last().toUtf8()));
    }

    std::optional<QByteArray> host = resolveRoot(parts->root);
    if (!host)
        return {};
    bool exists = true;
    for (const QString& name : parts->names) {
        std::optional<QByteArray> found;
        if (exists)
            found = pathState().folders.find(*host, name);
        exists = found.has_value();
        *host += '/' + found.value_or(name.toUtf8());
    }
    return QString::fromUtf8(*host);
}

QString WindowsPath(const QString& hostPath) {
    if (hostPath.isEmpty())
        return {};
    const QByteArray path = canonicalAsFarAsThere(HostName(hostPath));
    const NetworkLinks network;
    ClosestRoot closest(path);
    const auto offer = [&](const QByteArray& folder, const QString& windowsRoot) {
        if (!network.leadsAwayFrom(path, folder))
            closest.offer(folder, windowsRoot);
    };
    PathState& paths = pathState();
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
        const QString drive = QString(letter) + u':';
        if (const auto name = paths.folders.find(paths.devices, drive.toLower()))
            offer(paths.devices + '/' + *name, drive);
    }
    const QString shares = QString::fromUtf8(paths.devices) + QStringLiteral("/unc");
    for (const QString& server : QDir(shares).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        for (const QString& share :
             QDir(shares + u'/' + server).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
            offer(HostName(QStringLiteral("%1/%2/%3").arg(shares, server, share)),
                  QStringLiteral("\\\\%1\\%2").arg(server, share));
    return closest.windowsPath();
}

QString ShortPath(const QString& path) {
    const std::optional<PathParts> parts = partsOf(path, BareName::CurrentFolder);
    if (!parts)
        return {};
    const std::optional<QByteArray> root = resolveRoot(parts->root);
    if (!root)
        return {};
    QByteArray folder = *root;
    PathParts shortened{parts->root, {}};
    for (const QString& name : parts->names) {
        const std::optional<QByteArray> found = pathState().folders.find(folder, name);
        if (!found)
            return {};
        const QString spelled = QString::fromUtf8(*found);
        shortened.names += pathState().folders.hasShortName(folder, spelled) ? ShortName(spelled) : spelled;
        folder += '/' + *found;
    }
    const QString text = shortened.text();
    return text.size() <= longestShortPath && isThere(folder) ? text : QString();
}

QString CurrentFolder() {
    return pathState().current.text();
}

bool SetCurrentFolder(const QString& path) {
    const std::optional<PathParts> parts = partsOf(path, BareName::CurrentFolder);
    const QString host = HostPath(path);
    if (!parts || host.isEmpty() || !IsHostFolder(host))
        return false;
    pathState().current = *parts;
    return true;
}

} // namespace tolvex::platform
