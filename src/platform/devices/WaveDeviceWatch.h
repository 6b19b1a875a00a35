// Reports when a sound device may have been plugged in or out: the folder in which the system shows them
// holds other names than before. Devices take a moment to come up, so it waits until the folder has been
// quiet for a while.
#pragma once

#include <QFileSystemWatcher>
#include <QStringList>
#include <QTimer>

#include <functional>

namespace tolvex::platform {

class WaveDeviceWatch {
public:
    // `changed` runs on the event loop. The folder may be missing and come later.
    explicit WaveDeviceWatch(std::function<void()> changed);

private:
    void watch();
    void look();

    std::function<void()> changed_;
    QStringList names_;
    QFileSystemWatcher watcher_;
    QTimer quiet_;
};

// Where the system shows its sound devices; tests put a folder of their own in place, null takes it away.
QString SoundDeviceFolder();
void SetSoundDeviceFolder(const QString& hostPath);

} // namespace tolvex::platform
