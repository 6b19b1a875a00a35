// Which sound device each stored number meant. The suite's files name devices by number alone; beside them
// this program remembers, in a file of its own in the machine folder, which device a number was when it was
// saved, and says so when the number later means another one.
//
// The file is "audiodevices.txt": a line for each use of a device, fields between tabs: the local ini file,
// "player" or "record", the player's number (0 for recording), the stored number, place, id, name.
#pragma once

#include "audio/SetupOutcome.h"
#include "core/settings/Settings.h"

#include <QStringList>

#include <bitset>

namespace tolvex {

// A stored number that means another device now.
struct MovedDevice {
    int player = 0; // 0: the recording device
    QString name;   // of the device that was meant
    int now = -1;   // its number today, from 0; -1: it is not there

    // "Player 2 was 'X', which is now number 4".
    QString text() const;
};

// Uses of a device: of the players by their number, 0 of recording.
using DeviceUses = std::bitset<CartPlayerCount + 1>;

// Remembers the devices of the settings as they are stored: of the players, where they are assigned by hand,
// and of recording. A number that means another device now keeps what is remembered, unless the user has
// `chosen` the device anew. Called by every OK. A file that cannot be written is no reason to fail.
void RememberDevices(const Settings& settings, DeviceUses chosen = {});

// Those of the settings' devices that are not what was remembered. A number that was changed since stands for
// itself, but for that of a recording device that is gone: loading pulls it down to the last one.
QList<MovedDevice> FindMovedDevices(const Settings& settings);
QStringList MovedDeviceTexts(const Settings& settings);

// Gives each moved device that is there its number of today, and stores the settings. Those that are gone
// keep theirs. Does nothing where none has moved.
SetupOutcome RepairDevices(Settings& settings);

} // namespace tolvex
