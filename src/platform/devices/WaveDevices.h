// Wave outputs and inputs with the suite's numbers, and the 16-bit formats each supports. A machine without a
// sound system has none.
#pragma once

#include <QList>
#include <QString>

namespace tolvex::platform {

// Format flags of the suite's wave interface: rate 1 is 11025, 2 is 22050, 4 is 44100 hertz; M is one
// channel, S is two.
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
    quint16 manufacturer = 0; // 0 if the system does not say
    quint32 formats = 0;      // WaveFormatFlag; none for a device that is absent now
    bool present = true;      // false: it keeps its number but is absent now
    QString place = {};       // where it is plugged in; empty if the system does not say
};

// In the order of their numbers, from 0. The numbering is stable from start to start (docs/platform.md). The
// system is asked once; RefreshWaveDevices asks again.
const QList<WaveDevice>& WaveOutputs();
const QList<WaveDevice>& WaveInputs();
void RefreshWaveDevices();
// What a list shows for a device: its name, and a note if it is absent.
QString WaveDeviceLabel(const WaveDevice& device);
// The name of the wave mapper, device number -1: the system's default device.
QString WaveMapperName();
// Tests set other devices, until the next RefreshWaveDevices.
void SetWaveDevices(const QList<WaveDevice>& outputs, const QList<WaveDevice>& inputs);

} // namespace tolvex::platform
