// Which wave device has which number. The settings of the suite name devices by number, so a device keeps its
// number for as long as this machine remembers it, whether it is there or not.
//
// What is remembered lies in the machine folder, in "wavedevices.txt": a line a device in the order of their
// numbers, outputs and inputs apart, fields between tabs: "out" or "in", place, id, formats in hexadecimal,
// name.
#pragma once

#include "platform/devices/WaveDevices.h"

#include <QByteArray>

namespace tolvex::platform {

// A device as it is found or remembered.
struct KnownWaveDevice {
    WaveDevice device;
    // Where it is plugged in, which tells two cards of one make apart; empty where the system does not tell.
    QString place;
    // It is there, but another program has it, so that its formats could not be asked.
    bool busy = false;
};

// The remembered devices with those found now. A found one takes the number of the remembered one in the same
// place with the same id, else in the same place, else of the same id; a new one comes last. Those not found
// stay, absent and without formats. A busy one has the formats it had last, all of them when it was never
// asked. Beyond 64 the last absent ones are forgotten.
QList<KnownWaveDevice> NumberWaveDevices(QList<KnownWaveDevice> remembered,
                                         const QList<KnownWaveDevice>& found);

struct KnownWaveDevices {
    QList<KnownWaveDevice> outputs;
    QList<KnownWaveDevice> inputs;
};

// The devices that the sound system has now, in its order.
KnownWaveDevices FindWaveDevices();

// The text of "wavedevices.txt" and back. Lines that are not of its form are passed over.
QByteArray WriteKnownWaveDevices(const KnownWaveDevices& known);
KnownWaveDevices ReadKnownWaveDevices(const QByteArray& text);

} // namespace tolvex::platform
