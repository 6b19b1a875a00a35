// Wave outputs and inputs as the suite numbers them, and the 16-bit formats each can do. A machine without a
// sound system has none.
#pragma once

#include <QList>
#include <QString>

namespace tolvex::platform {

// Format flags of the suite's wave interface: rate 1 is 11025, 2 is 22050, 4 is 44100 hertz; M one channel, S
// two.
enum WaveFormatFlag : quint32 {
    WaveFormat1M16 = 0x00000004,
    WaveFormat1S16 = 0x00000008,
    WaveFormat2M16 = 0x00000040,
    WaveFormat2S16 = 0x00000080,
    WaveFormat4M16 = 0x00000400,
    WaveFormat4S16 = 0x00000800,
};

struct WaveDevice {
    QString name;             // what the user sees
    QString id;               // the system's own name of the device
    quint16 manufacturer = 0; // 0 where the system does not tell
    quint32 formats = 0;      // WaveFormatFlag; none of a device that is not there now
    bool present = true;      // false: it keeps its number and is not there now
    QString place = {};       // where it is plugged in; empty where the system does not tell
};

// In the order of their numbers, from 0. The numbering is stable from start to start: docs/platform.md says
// how. Asked of the system once and kept; RefreshWaveDevices asks again.
const QList<WaveDevice>& WaveOutputs();
const QList<WaveDevice>& WaveInputs();
void RefreshWaveDevices();
// What a list shows of a device: its name, and that it is not there now.
QString WaveDeviceLabel(const WaveDevice& device);
// The name of the wave mapper, device number -1: whatever the system plays on by itself.
QString WaveMapperName();
// Tests put other devices in place, until the next RefreshWaveDevices.
void SetWaveDevices(const QList<WaveDevice>& outputs, const QList<WaveDevice>& inputs);

} // namespace tolvex::platform
