#include "platform/devices/WaveDeviceWatch.h"

#include <QFileInfo>

namespace tolvex::platform {

namespace {

constexpr int quietMilliseconds = 300;
QString folderOfTests;

} // namespace

QString SoundDeviceFolder() {
    return folderOfTests.isNull() ? QStringLiteral("/dev/snd") : folderOfTests;
}

void SetSoundDeviceFolder(const QString& hostPath) {
    folderOfTests = hostPath;
}

WaveDeviceWatch::WaveDeviceWatch(std::function<void()> changed) {
    quiet_.setSingleShot(true);
    quiet_.setInterval(quietMilliseconds);
    QObject::connect(&quiet_, &QTimer::timeout, &quiet_, std::move(changed));
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &quiet_, [this] {
        watch();
        quiet_.start();
    });
    watch();
}

// A folder that was removed is watched no more, and has to be found again from the one above it.
void WaveDeviceWatch::watch() {
    const QString folder = SoundDeviceFolder();
    for (const QString& path : {folder, QFileInfo(folder).path()})
        if (QFileInfo::exists(path) && !watcher_.directories().contains(path))
            watcher_.addPath(path);
}

} // namespace tolvex::platform
