#include "platform/devices/WaveDevices.h"

#include "platform/devices/WaveNumbers.h"
#include "platform/host/FileLock.h"
#include "platform/host/HostFiles.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"

#include <optional>

namespace tolvex::platform {

namespace {

struct Numbered {
    QList<WaveDevice> outputs;
    QList<WaveDevice> inputs;
};
std::optional<Numbered> numbered;

QList<WaveDevice> devicesOf(const QList<KnownWaveDevice>& known) {
    QList<WaveDevice> devices;
    for (const KnownWaveDevice& one : known) {
        devices += one.device;
        devices.last().place = one.place;
        if (!one.device.present)
            devices.last().formats = 0;
    }
    return devices;
}

Numbered numberDevices() {
    const KnownWaveDevices found = FindWaveDevices();
    const QString path = MachineFolder() + QStringLiteral("/wavedevices.txt");
    // If nothing can be written, the numbers hold for this run, in the order of detection.
    const FileLock lock(path);
    const QByteArray before = ReadHostFile(path, 1 << 20).value_or(QByteArray());
    KnownWaveDevices known = ReadKnownWaveDevices(before);
    known.outputs = NumberWaveDevices(known.outputs, found.outputs);
    known.inputs = NumberWaveDevices(known.inputs, found.inputs);
    const QByteArray after = WriteKnownWaveDevices(known);
    if (lock.held() && after != before)
        ReplaceHostFile(path, after);
    return {devicesOf(known.outputs), devicesOf(known.inputs)};
}

const Numbered& devices() {
    if (!numbered)
        numbered = numberDevices();
    return *numbered;
}

} // namespace

const QList<WaveDevice>& WaveOutputs() {
    return devices().outputs;
}

const QList<WaveDevice>& WaveInputs() {
    return devices().inputs;
}

void RefreshWaveDevices() {
    numbered.reset();
}

QString WaveDeviceLabel(const WaveDevice& device) {
    return device.present ? device.name : device.name + QStringLiteral(" (not there now)");
}

QString WaveMapperName() {
    return QStringLiteral("The default sound device");
}

void SetWaveDevices(const QList<WaveDevice>& outputs, const QList<WaveDevice>& inputs) {
    numbered = Numbered{outputs, inputs};
}

} // namespace tolvex::platform
