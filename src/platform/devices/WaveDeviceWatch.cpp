#include "platform/devices/WaveDeviceWatch.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace tolvex::platform {

namespace {

constexpr int quietMilliseconds = 300;
QString folderOfTests;

// What the folder shows; nothing while it is missing.
QStringList namesShown() {
    const QDir folder(SoundDeviceFolder());
    return folder.exists() ? folder.entryList(QDir::AllEntries | QDir::System) : QStringList();
}

} // namespace

QString SoundDeviceFolder() {
    return folderOfTests.isNull() ? QStringLiteral("/dev/snd") : folderOfTests;
}

void SetSoundDeviceFolder(const QString& hostPath) {
    folderOfTests = hostPath;
}

WaveDeviceWatch::WaveDeviceWatch(std::function<void()> changed)
    : changed_(std::move(changed))
    , names_(namesShown()) {
    quiet_.setSingleShot(true);
    quiet_.setInterval(quietMilliseconds);
    QObject::connect(&quiet_, &QTimer::timeout, &quiet_, [this] { look(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &quiet_, [this] {
        watch();
        quiet_.start();
    });
    watch();
}

void WaveDeviceWatch::look() {
    if (const QStringList now = namesShown(); std::exchange(names_, now) != now)
        changed_();
}

// While the folder is missing the one above it is watched, where other devices come and go as well.
void WaveDeviceWatch::watch() {
    const QString folder = SoundDeviceFolder();
    const QString above = QFileInfo(folder).path();
    const bool there = QFileInfo::exists(folder);
    const QString path = there ? folder : above;
    if (QFileInfo::exists(path) && !watcher_.directories().contains(path))
        watcher_.addPath(path);
    if (there && watcher_.directories().contains(above))
        watcher_.removePath(above);
}

} // namespace tolvex::platform
