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

// A stored number that means another device now. Numbers of devices count from 0.
struct MovedDevice {
    int player = 0; // 0: the recording device
    QString name;   // of the device that was meant
    int now = -1;   // its number today; -1: it is not there
    int number = 0; // the one that is in force; -1: the system's own choice
    QString other;  // the device that has this number today; empty: none has it

    // "Player 2 was 'X', which is now number 4; number 1 is now 'Y'".
    QString text() const;
};

// The uses of devices: a player by its number, 0 for recording.
using DeviceUses = std::bitset<CartPlayerCount + 1>;

// Remembers the devices of the settings as they are stored: of the players, where they are assigned by hand,
// and of recording. A number that means another device now keeps what is remembered, unless the user has
// `chosen` the device anew. Called by every OK. Where the file cannot be written, gives a sentence that says
// so, once in a run of the program; the OK succeeds all the same.
QString RememberDevices(const Settings& settings, DeviceUses chosen = {});

// Those of the settings' devices that are not what was remembered. A number that was changed since then
// counts as meant, with two exceptions, because the window cannot show a device that is gone: a recording
// device becomes the last one, and that of a player the system's own choice.
QList<MovedDevice> FindMovedDevices(const Settings& settings);
QStringList MovedDeviceTexts(const Settings& settings);

// Gives each moved device that is there its number of today, and stores the settings. Those that are gone
// keep theirs. Does nothing where none has moved.
SetupOutcome RepairDevices(Settings& settings);

} // namespace tolvex
