// The settings of the audio setup window as one record: cart players, volumes, the recording format, the
// audio editor, and how carts are stored. The window shows it, the shell changes it, and StoreAudioSetup is
// the one way back into the settings and their files.
#pragma once

#include "audio/DeviceIdentity.h"
#include "audio/LocalKeys.h"
#include "audio/SetupOutcome.h"
#include "core/settings/Settings.h"

#include <memory>

namespace tolvex {

// What the window holds. A member of type int is the selected entry of a list, from 0; -1: none.
struct AudioSetup {
    struct Player {
        int device = 0; // entry 0 is the wave mapper, then the wave outputs: it equals CartPlayer::Device
        qint32 backColor = 0;
        qint32 foreColor = 0;
    };

    // The product for split transmissions: it has volumes of its own, and no instant carts.
    bool zqs = false;

    // Cart players.
    bool automatic = true;
    qint32 players = 0;
    NumberedTable<Player, CartPlayerCount> player;
    int instant = -1;    // "Player 1", ...
    int recordInto = -1; // the wave inputs
    DeviceUses chosen;   // uses whose device the user has chosen here, even if it is the same one
    bool playersAsToolbars = false;

    // Playing.
    bool onlyEjectStopped = false;
    int firstInOrder = -1; // "Cart Player 1" to "Cart Player 5", "the last Cart Player!"
    int lastInOrder = -1;
    bool playInstantly = false;
    qint32 fadePercent = 0; // volumes in percent
    bool ducking = true;
    qint32 generalVolume = 0;
    qint32 duckVolume = 0;
    qint32 sweeperVolume = 0;
    qint32 cartVolume = 0; // for split transmissions, in place of the three above
    qint32 cartGroupVolume = 0;
    qint32 advertVolume = 0;

    // Recording and editing.
    qint32 format = 1; // tag, channels and hertz of the recording format
    qint32 channels = 2;
    qint32 rate = 44100;
    bool allowDifferentFormat = false;
    bool recordLocal = false;
    QString audioEditor;
    int editPlayer = -1; // "the last player", "Player 1", ...
    qint32 editorPriority = 0;
    bool editorAtIdleSpeed = false;

    // Advanced.
    bool individualCartFiles = false;
    bool maintainLegacy = true;
    bool lockPlayer = false;
    int lockedPlayer = 0; // "Cart Player 1", ...
    bool allowAudioFileLinking = false;
    bool useLargeBuffers = false;
    int debugMode = 0;
    bool useLegacyCopyMode = false;
    bool useCopyright = false;

    // The record as it was filled, what the local ini file held then, and whether there was an Audwall.ini.
    std::shared_ptr<const AudioSetup> loaded;
    LocalKeys localKeys;
    bool wallFileExisted = false;
};

// The highest AudioEditorPriority that the window offers; a higher stored value is kept.
inline constexpr int HighestEditorPriority = 20;

// Fills a record from the settings. Players, orders and devices beyond those that exist are clamped.
AudioSetup LoadAudioSetup(const Settings& settings, bool zqs = false);

// The OK: checks the record, takes it into the settings, and writes them to the local ini file and, where the
// first part of the audiowall has a location, two keys to its Audwall.ini. In both, keys that the user did
// not change stay as the file has them now (LocalKeys.h, AudiowallKeys.h). Warnings and notices go through
// the prompts. A refused record, or a file that is known before to take no change, changes nothing; a message
// about a write that failed says what was stored.
SetupOutcome StoreAudioSetup(const AudioSetup& shown, Settings& settings);

// The warning for more players than suitable outputs; empty when there are enough.
QString TooFewOutputsText(int players);

// The tool for the advanced settings of the suite's audio driver; it need not be installed.
QString TunelaneProgram();

} // namespace tolvex
