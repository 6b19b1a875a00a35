// The settings of the audiowall window as one record: size and looks of the carts, jump buttons, what happens
// at logon, highlighting, fades, the search's defaults. The window shows it, the shell changes it, and
// StoreAudiowallSetup is the one way back into the settings and their files.
#pragma once

#include "audio/CartLooks.h"
#include "audio/LocalKeys.h"
#include "audio/SetupOutcome.h"
#include "core/settings/Settings.h"

#include <memory>

namespace tolvex {

inline constexpr int MostJumpButtons = 10;
inline constexpr int LongestJumpDescription = 25;
inline constexpr int MostCarts = 99999;
// Twips; 15 are a pixel.
inline constexpr int LowestCartHeight = 950;
inline constexpr int LowestCartWidth = 1900;

// What the window holds.
struct AudiowallSetup {
    // At logon: 0 the user's instant carts, 1 the global ones.
    bool showInstantCarts = false;
    int instantCarts = 0;
    bool showPad = false;

    bool displayExtros = false;
    bool autoUpdate = false;
    qint32 updateInterval = 0; // seconds
    bool dragDropMoveCarts = false;
    bool displayInstantCartText = false;
    bool searchCartNotes = false;
    bool searchFromBeginning = false;
    bool useLevelTrigger = false;
    qint32 triggerLevel = 0;
    bool alwaysUseLevelTrigger = false;

    bool highlight = false;
    bool highlightByTimes = false; // else for seconds
    qint32 highlightSeconds = 0;
    qint32 highlightTimes = 0;
    bool keyboardFade = false;
    bool mouseFade = false;
    qint32 fadeSeconds = 0;

    CartLooks looks;
    qint32 cartHeight = LowestCartHeight; // twips
    qint32 cartWidth = LowestCartWidth;

    // One for each row of the grid; cart 0: a blank row.
    QList<JumpCartButton> jumps;

    // These two lie in Audwall.ini, which all workstations share: with them, what they were when the record
    // was filled.
    qint32 numberCarts = 0;
    int pictureType = 0; // of PictureTypes
    qint32 loadedNumberCarts = 0;
    int loadedPictureType = 0;

    // The record as it was filled, what the local ini file held then, and whether there was an Audwall.ini.
    std::shared_ptr<const AudiowallSetup> loaded;
    LocalKeys localKeys;
    bool wallFileExisted = false;
};

struct PictureType {
    const char* extension;
    const char* text;
};
inline constexpr PictureType PictureTypes[] = {
    {"JPG", "\".JPG\" - JPEG format compressed pictures."},
    {"BMP", "\".BMP\" - Bitmap format uncompressed pictures."},
};

// Fills a record from the settings; number of carts and type of pictures as Audwall.ini has them now.
AudiowallSetup LoadAudiowallSetup(const Settings& settings);

// The OK: checks the record, takes it into the settings, and writes them to Audwall.ini, where the first part
// of the audiowall has a location, and to the local ini file. In both, keys that the user did not change stay
// as the file has them now (LocalKeys.h, AudiowallKeys.h). Notices go through the prompts. A record
// that is refused and a file that cannot be written leave settings and files as they are, but for
// HighlightPlayedCarts, which a refused highlight time leaves at 1.
SetupOutcome StoreAudiowallSetup(const AudiowallSetup& shown, Settings& settings);

// The number of carts in force, by which OK clears jump buttons: that of Audwall.ini as it is now, else that
// of the settings.
qint32 CartsInForce(const Settings& settings);

// What OK does to jump buttons whose cart lies beyond the number of carts, as a sentence; empty when it
// clears none.
QString ClearedJumpsText(const QList<JumpCartButton>& jumps, qint32 cartsInForce);

// Clamps a number of jump buttons to 1 to MostJumpButtons; a message says so when it is above.
int TakeJumpButtonCount(qint32 wanted);

// An estimate of how many carts of a size (twips, above 0) fit the primary screen. Halves round to the even
// number, as every number of the suite does.
struct CartGrid {
    qint32 columns = 0;
    qint32 rows = 0;
};
CartGrid EstimateCartGrid(const Settings& settings, qint32 cartWidth, qint32 cartHeight);

} // namespace tolvex
