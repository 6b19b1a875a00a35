// The settings: everything known about this workstation while the program runs. The loaders fill the record,
// the dialogs change it, SaveLocalSettings writes it. Members are named after their settings in the files;
// SettingsTable.h declares which key of which file each one comes from.
//
// Flags are 16-bit: 0 is off, any other value is on. Colours are blue-green-red integers; with the top bit
// set they name a system colour. Measures of forms are in twips. Paths have no trailing backslash.
#pragma once

#include "platform/Machine.h"

#include <QList>
#include <QString>

#include <array>

namespace tolvex {

inline constexpr int CartPlayerCount = 6;
inline constexpr int CartPartCount = 11;

// A fixed table with entries numbered from 1, as in its owners and keys.
template<typename Entry, int entryCount>
class NumberedTable {
public:
    static constexpr int count = entryCount;
    Entry& operator[](int number) { return entries_.at(static_cast<std::size_t>(number - 1)); }
    const Entry& operator[](int number) const { return entries_.at(static_cast<std::size_t>(number - 1)); }
    auto begin() { return entries_.begin(); }
    auto end() { return entries_.end(); }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

private:
    std::array<Entry, static_cast<std::size_t>(entryCount)> entries_{};
};

struct CartPlayer {
    qint16 Device = 0; // wave output number plus one; 0: the player has no device
    qint32 BackColor = 0;
    qint32 ForeColor = 0;
    qint32 State = 0;
};

// What is known about a folder of the audiowall.
enum CartPartState : qint32 { NotChecked = 0, Available = 1, Unavailable = 2 };

// One part of the audiowall. Parts 1 to 10 hold 1000 carts each, Part 11 all carts above 10000.
struct CartPart {
    QString Location; // its folder
    QString ListPath; // Location + "\" + ListName
    QString ListName; // "Carts<n>.lst" after a list was opened
    qint16 IsOpen = 0;
    qint32 State = NotChecked;
    qint16 FileNumber = 0; // channel of the open list; 0 or less: none
};

struct JumpCartButton {
    qint32 Cart = 0;
    QString Description; // at most 25 characters
};

struct Settings {
    // Start-up.
    QString CommandLine; // a blank and the upper-cased command line
    QString LocalIniFile;
    QString SystemIniFile;
    qint32 DebugLevel = 0; // 0 off, -1 everything, above 0 lines up to that level
    platform::SystemVersion OSVersion;
    qint16 MultiMonitorAllowed = 0;
    qint16 MonitorCount = 0;
    qint32 ScreenWidthTwips = 0;
    qint32 ScreenHeightTwips = 0;
    std::array<QString, 22> LogSourceShortNames; // by log item type
    std::array<QString, 22> LogSourceNames;
    qint16 AutoConfigInProgress = 0; // -1 while AutoInstall builds what is missing

    // File locations.
    QString ConfigName;
    QString DataLocation;
    QString AudioEditor;
    QString UsersFolder; // <data location>\USERS, with a trailing backslash
    NumberedTable<CartPart, CartPartCount> CartPartTable;

    // Workstations and the clock.
    qint32 LinkMeshId = 0;
    qint16 NumberTerminals = 0;
    qint16 RadioClockComPort = 0; // 0 not fitted, else the port number

    // Display.
    qint32 SingleClickPlayCarts = 0;
    qint32 FormBackcolor = 0;
    qint32 FormForeColor = 0;
    qint16 AdjustTheSystemColors = 0;
    qint16 UseInformationWindow = 0; // 0 only in the automation player, 1 top, 2 bottom
    qint16 ShowClock = 0;

    // Audiowall.
    qint32 CartMinimumHeight = 0;
    qint32 CartMinimumWidth = 0;
    qint16 NumberCartJumpButtons = 0;
    QList<JumpCartButton> JumpCartButtons; // button i is entry i - 1
    qint16 ShowICAtLogin = 0;
    qint16 ShowPadAtLogin = 0;
    qint16 DisplayICText = 0;
    qint32 AutoUpdateInterval = 0; // seconds; 0 off
    qint16 SearchCartNotes = 0;
    qint16 SearchCartsFromStart = 0;
    qint16 DisplayExtros = 0;
    qint16 UsersCanSetFirst5IC = 0;
    qint16 CartBevelWidth = 0;
    qint16 LevelTrigger = 0; // 0 off
    qint16 AlwaysUseLevelTrigger = 0;
    qint16 DragDropMoveCarts = 0;

    // Automation.
    QString DefaultDatabase;
    qint16 GenerateAdvertRecFiles = 0;
    qint16 LogWhenStationController = 0;
    qint16 AllowControl = 0;
    qint32 ReleaseMode = 0;
    qint16 ReleaseTime = 0;
    qint32 RequestMode = 0;
    qint16 GetControlKLogStart = 0;
    qint16 DisplayInstantCarts = 0;

    // Cart players.
    NumberedTable<CartPlayer, CartPlayerCount> CartPlayerTable;
    qint16 AutomaticPlayerAssignment = 0;
    qint32 TotalNumberCartPlayers = 0; // -1: count the suitable devices
    qint32 Instant = 0;                // the player of instant carts
    qint32 EditPlayer = 0;             // 0: the last player
    qint32 FirstPlayerInOrder = 0;     // 255: the last player
    qint32 LastPlayerInOrder = 0;      // 255: the last player
    qint16 RegisterAsToolbars = 0;
    qint16 KeyboardClose = 0;
    qint16 MouseClose = 0;
    qint32 PlayerFadeSeconds = 0;
    qint32 PlayerFadeFirePercent = 0;
    qint16 OnlyAllowEjectStoppedCarts = 0;
    qint16 PlayCartsInstantly = 0;
    qint32 RecordingSoundCard = 0; // wave input number plus one

    // Audio; volumes in percent.
    qint16 UsePlayerDucking = 0;
    qint32 GeneralVolume = 0;
    qint32 SweptVolume = 0;
    qint32 DuckAudioVolume = 0;
    qint32 CartGroupVolume = 0;
    qint32 AdvertVolume = 0;
    qint32 KHz = 0; // record sample rate in hertz, in spite of the name
    qint32 Channels = 0;
    qint32 Format = 0; // tag of the recording format; 1 is plain PCM
    qint16 AllowDifferentFormat = 0;
    qint16 RecordLocal = 0;
    qint32 AudioEditorPriority = 0;
    qint16 AudioEditorRunAtIdleSpeed = 0;
    qint32 LockPlayerWhenRecording = 0; // a player number; 0: none
    qint16 UseLargeWLBuffers = 0;
    qint32 WLDebugMode = 0;
    qint16 UseLegacyFileCopyMode = 0;
    qint16 MaintainLegacyCartList = 0;
    qint16 UseIndividualCartListFiles = 0;

    // How carts look.
    qint32 SelectedCartMode = 0; // 1 by colour, 2 pushed in
    qint32 SelectedCartColor = 0;
    qint32 SelectedCartColorText = 0;
    qint32 CartPlayedRecentColor = 0;
    qint16 ShowTimesBarInColor = 0;
    qint32 TimesBarColor = 0;
    qint32 TimesBarColorText = 0;
    qint32 CartNumberColor = 0;
    qint16 DisplayCartHasAudioAsSquare = 0;
    qint32 EmptyCartNumberColor = 0;
    qint32 EmptyCartBackColor = 0;
    qint32 EmptyCartForeColor = 0;
    qint16 CartFontBold = 0;
    qint32 CartFontSize = 0;
    QString CartFontName;
    qint16 DisplayCartTimeHours = 0;
    qint16 CartShowCompressed = 0;
    qint32 HighlightPlayedCarts = 0;         // 0 off, 1 for seconds, 2 for multiples
    qint32 HighlightPLayedCartsInterval = 0; // seconds, or how many times

    // What goes with the audio store (Audwall.ini).
    qint32 NoCarts = 0;
    qint32 LowestCartNumber = 0; // the range that a user may reach
    qint32 HighestCartNumber = 0;
    QString PictureFileExtension;
    qint16 AllowAudioFileLinking = 0;
    qint16 UseCopyrightInCartChunk = 0;
    QString AudiowallVersion;
    qint16 AskBeforeProcess = 0;
    qint32 NormaliseAudioPercent = 0; // 0: no normalising
    qint16 AutoTopAudio = 0;
    qint16 AllowCDDB = 0;
    QString ServerAddress;
    QString EmailAddress;
    qint16 AllowSubmit = 0;

    // What the whole station shares (the system ini file).
    QString OPALDirectory; // folder of the transport lists
    QString OPALDefault;   // name of the default list
    qint16 PromptDeleteAfterSend = 0;
    qint16 PromptForDestinationCart = 0;
    // Date of the update notice shown last, as a day count whose day 1 is 31 December 1899; -1: the folder of
    // the system ini file does not exist.
    double LastOneWas = 0;
};

} // namespace tolvex
