// Assigns numbers to wave devices. The settings of the suite name devices by number, so a device keeps its
// number while this machine remembers it, even when it is unplugged.
//
// The memory is "wavedevices.txt" in the machine folder: one line per device
// in the order of their numbers, outputs and inputs apart; tabs separate the
// fields: "out" or "in", place, id, formats in hexadecimal, name.
#pragma once

#include "platform/devices/WaveDevices.h"

#include <QByteArray>

namespace tolvex::platform {

// A device, as detected or as remembered.
struct KnownWaveDevice {
    WaveDevice device;
    // Where it is plugged in, which distinguishes two equal cards; empty if the system does not say.
    QString place;
    // It is present, but another program uses it, so its formats are unknown.
    bool busy = false;
};

// Merges the remembered devices with the detected ones. A detected device takes the number of the remembered
// one with the same place and id, else the same place, else the same id; a new one goes to the end. Those not
// detected stay, absent and without formats. A busy one has the formats it had last, or all of them if it was
// never asked. Beyond 64 the last absent ones are forgotten.
QList<KnownWaveDevice> NumberWaveDevices(QList<KnownWaveDevice> remembered,
                                         const QList<KnownWaveDevice>& found);

struct KnownWaveDevices {
    QList<KnownWaveDevice> outputs;
    QList<KnownWaveDevice> inputs;
};

// The devices that the sound system has now, in its order.
KnownWaveDevices FindWaveDevices();

// Parses and writes "wavedevices.txt". Lines of any other form are skipped.
QByteArray WriteKnownWaveDevices(const KnownWaveDevices& known);
KnownWaveDevices ReadKnownWaveDevices(const QByteArray& text);

} // namespace tolvex::platform
