// The rows about cart players, audio and the look of carts, with their registry forms, and those of
// Audwall.ini.
#include "core/settings/SettingRowBuilders.h"
#include "core/text/PathNames.h"

namespace tolvex {

namespace {

// Below the registry root. The first two differ by a blank; both are in use.
constexpr const char* Players = "\\CartPlayers";
constexpr const char* PlayerOptions = "\\Cart Players";
constexpr const char* AudioOptions = "\\Audio Settings";
constexpr const char* Wall = "\\Audiowall";
constexpr const char* WallSettings = "\\Audiowall\\Settings";
constexpr const char* Locations = "\\File Locations";

int players(const Settings&) {
    return CartPlayerCount;
}
int parts(const Settings&) {
    return CartPartCount;
}
qint32 ownNumber(const Settings&, int index) {
    return index;
}
qint32 playerForeColor(const Settings&, int index) {
    constexpr std::array<qint32, CartPlayerCount> colours = {0xFF,     0xFF00, 0xFFA0A0,
                                                             0xFFFFFF, 0xFFFF, 0xFFFFFF};
    return colours.at(static_cast<std::size_t>(index - 1));
}
qint32 totalPlayers(const Settings& values, int) {
    return values.TotalNumberCartPlayers;
}
qint32 belowGeneralVolume(const Settings& values, int) {
    return values.GeneralVolume - 10;
}
qint32 recordingSoundCardHeld(const Settings& values, int) {
    return values.RecordingSoundCard;
}
QString audioEditorHeld(const Settings& values, int) {
    return values.AudioEditor;
}

// Automatically assigned devices are not stored, so that a
// card that comes and goes shifts nothing.
std::optional<QString> soundCardNumber(const Settings& values, int index) {
    if (values.AutomaticPlayerAssignment)
        return std::nullopt;
    return QString::number(values.CartPlayerTable[index].Device);
}

// Older programs of the suite start the editor by its short path. The platform has none for a program that is
// currently missing (a disconnected drive); the full path is then kept, so that nothing is lost.
std::optional<QString> sampleEditor(const Settings& values, int) {
    const QString shortPath = MakeShortPath(values.AudioEditor);
    return shortPath.isEmpty() ? values.AudioEditor : shortPath;
}

constexpr SettingRow playerAssignment[] = {
    Flag<&Settings::AutomaticPlayerAssignment>(
        "CartPlayers", "AutomaticPlayerAssignment", 1,
        "Sound devices are assigned to the cart players automatically.")
        .registry(Players)
        .setIn(AudioSetup, "optCartPlayerAutoMode")
        .saved(702),
    Number<&Settings::TotalNumberCartPlayers>(
        "CartPlayers", "TotalNumberCartPlayers", -1,
        "Number of cart players; -1 for as many as there are suitable sound devices.")
        .range(-1, CartPlayerCount)
        .registry(Players)
        .setIn(AudioSetup, "txtNumberCartPlayers")
        .saved(701),
};

constexpr SettingRow soundCards[] = {
    NumberRow(SettingKind::Word, EntryField<&Settings::CartPlayerTable, &CartPlayer::Device>, "CartPlayers",
              "SoundCardNumber", 0,
              "Wave output of the player plus one; 0 for none. Not stored while automatic.")
        .range(0, INT16_MAX)
        .otherwise(ownNumber, "number of the player")
        .each(players, CartPlayerCount)
        .registry(Players)
        .saves(soundCardNumber)
        .setIn(AudioSetup, "listCartPlayer_")
        .saved(703),
};

constexpr SettingRow playerColours[] = {
    NumberRow(SettingKind::Colour, EntryField<&Settings::CartPlayerTable, &CartPlayer::BackColor>,
              "CartPlayers", "BackColor", 0, "Background of the player's display.")
        .each(players, CartPlayerCount)
        .registry(Players)
        .setIn(AudioSetup, "cmdPlayerBackGround_")
        .saved(704),
    NumberRow(SettingKind::Colour, EntryField<&Settings::CartPlayerTable, &CartPlayer::ForeColor>,
              "CartPlayers", "ForeColor", 0, "Text of the player's display.")
        .otherwise(playerForeColor, "one for each player")
        .each(players, CartPlayerCount)
        .registry(Players)
        .setIn(AudioSetup, "cmdPlayerForeground_")
        .saved(705),
};

constexpr SettingRow player[] = {
    Number<&Settings::Instant>("CartPlayers", "Instant", 0, "The player that plays instant carts.")
        .range(-1, CartPlayerCount)
        .otherwise(totalPlayers, "TotalNumberCartPlayers")
        .registry(PlayerOptions)
        .setIn(AudioSetup, "listICPlayer")
        .saved(706),
    Number<&Settings::EditPlayer>("CartPlayers", "EditPlayer", 0,
                                  "The player used for editing; 0 for the last.")
        .range(0, CartPlayerCount)
        .registry(PlayerOptions)
        .setIn(AudioSetup, "listEditPlayer")
        .saved(707),
    Number<&Settings::FirstPlayerInOrder>("CartPlayers", "FirstPlayerInOrder", 1,
                                          "The player that plays first; 255 for the last one.")
        .range(0, 255)
        .registry(PlayerOptions)
        .setIn(AudioSetup, "listFirstPlayerOrder")
        .saved(708),
    Number<&Settings::LastPlayerInOrder>("CartPlayers", "LastPlayerInOrder", 255,
                                         "The player that plays last; 255 for the last one.")
        .range(0, 255)
        .registry(PlayerOptions)
        .setIn(AudioSetup, "listLastPlayerOrder")
        .saved(709),
    Flag<&Settings::RegisterAsToolbars>("CartPlayers", "RegisterAsToolbars", 0,
                                        "The cart players are toolbars of the desktop.")
        .registry(PlayerOptions)
        .setIn(AudioSetup, "chkPlayersAsToolbars")
        .saved(710),
    Flag<&Settings::KeyboardClose>("Carts", "KeyboardClose", 0, "Ejecting by the keyboard fades the cart.")
        .registry(PlayerOptions, "KeyboardEject")
        .setIn(AudiowallSetup, "chkKeyboardFade")
        .saved(503),
    Flag<&Settings::MouseClose>("Carts", "MouseClose", 1, "Ejecting by the mouse fades the cart.")
        .registry(PlayerOptions, "MouseEject")
        .setIn(AudiowallSetup, "chkMouseFade")
        .saved(504),
    Number<&Settings::PlayerFadeSeconds>("Audio", "PlayerFadeSeconds", 2, "Seconds that a fade takes.")
        .range(1, INT32_MAX)
        .registry(PlayerOptions)
        .setIn(AudiowallSetup, "txtFadeSeconds")
        .saved(212),
    Number<&Settings::PlayerFadeFirePercent>(
        "Audio", "PlayerFadeFirePercent", 65,
        "A fading cart starts the next one at this percentage of full volume.")
        .range(0, 100)
        .older("Audio", "FadeFire", true)
        .registry(PlayerOptions)
        .setIn(AudioSetup, "txtFadePercent")
        .saved(209),
    Flag<&Settings::OnlyAllowEjectStoppedCarts>("Audio", "OnlyAllowEjectStoppedCarts", 0,
                                                "Carts can be ejected only when paused or cued.")
        .registry(PlayerOptions)
        .setIn(AudioSetup, "chkOnlyAllowEjectStoppedCarts")
        .saved(211),
};

constexpr SettingRow volume[] = {
    Flag<&Settings::UsePlayerDucking>("Audio", "UsePlayerDucking", 1,
                                      "A sweeper lowers the other cart; off: it has a volume of its own.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "optDucking")
        .saved(805),
    Number<&Settings::GeneralVolume>("Audio", "GeneralVolume", 100, "Volume of normal carts, in percent.")
        .range(0, 100)
        .registry(AudioOptions)
        .setIn(AudioSetup, "txtGeneralVolume")
        .saved(803),
};

constexpr SettingRow sweptVolume[] = {
    Number<&Settings::SweptVolume>("Audio", "SweptVolume", 100,
                                   "Volume of a sweeper, in percent; GeneralVolume while ducking is on.")
        .range(0, 100)
        .registry(AudioOptions)
        .setIn(AudioSetup, "txtSweeperVol")
        .saved(802),
};

constexpr SettingRow audio[] = {
    Number<&Settings::DuckAudioVolume>("Audio", "DuckAudioVolume", 0,
                                       "Volume of a cart that is lowered for a sweeper, in percent.")
        .range(-10, 100)
        .otherwise(belowGeneralVolume, "GeneralVolume - 10")
        .registry(AudioOptions)
        .setIn(AudioSetup, "txtDuckVolume")
        .saved(804),
    Number<&Settings::CartGroupVolume>("Audio", "CartGroupVolume", 100, "Volume of cart groups, in percent.")
        .range(0, 100)
        .registry(AudioOptions)
        .setIn(AudioSetup, "txtCartGroupVolume"),
    Number<&Settings::AdvertVolume>("Audio", "AdvertVolume", 100, "Volume of adverts, in percent.")
        .range(0, 100)
        .registry(AudioOptions)
        .setIn(AudioSetup, "txtAdvertVolume"),
    Number<&Settings::KHz>("Audio", "KHz", 44100, "Sample rate of new recordings, in hertz.")
        .range(0, INT32_MAX)
        .registry(AudioOptions)
        .setIn(AudioSetup, "lblAudioFormat")
        .saved(203),
    Number<&Settings::Channels>("Audio", "Channels", 2, "Channels of new recordings.")
        .range(0, INT16_MAX)
        .registry(AudioOptions)
        .setIn(AudioSetup, "lblAudioFormat")
        .saved(204),
    Number<&Settings::Format>("Audio", "Format", 1, "Format tag of new recordings; 1 is plain PCM.")
        .range(0, UINT16_MAX)
        .registry(AudioOptions)
        .setIn(AudioSetup, "lblAudioFormat")
        .saved(205),
    Flag<&Settings::AllowDifferentFormat>("Audio", "AllowDifferentFormat", 0,
                                          "Users may record in another format.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "chkAllowDifferentFormat")
        .saved(207),
    Flag<&Settings::RecordLocal>("Audio", "RecordLocal", 0,
                                 "Record to the local disk, then move the file to the network.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "chkRecordLocal")
        .saved(208),
    Number<&Settings::AudioEditorPriority>("Audio", "AudioEditorPriority", 10,
                                           "Priority of the audio editor.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "sldEditPriority")
        .saved(201),
    Flag<&Settings::AudioEditorRunAtIdleSpeed>("Audio", "AudioEditorRunAtIdleSpeed", 0,
                                               "The audio editor runs only when the machine is idle.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "chkRunEditorIdleSpeed")
        .saved(202),
    Number<&Settings::LockPlayerWhenRecording>("Audio", "LockPlayerWhenRecording", 0,
                                               "The player locked while recording; 0 for none.")
        .range(0, CartPlayerCount)
        .registry(AudioOptions)
        .setIn(AudioSetup, "comboRecordingLockPlayer")
        .saved(808),
    Flag<&Settings::UseLargeWLBuffers>("Audio", "UseLargeWLBuffers", 0, "Larger buffers for playing.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "chkUseLargeWLBuffers")
        .saved(809),
    Number<&Settings::WLDebugMode>("Audio", "WLDebugMode", 0, "Audio debugging: 0 none to 3 full.")
        .range(0, 3)
        .registry(AudioOptions)
        .setIn(AudioSetup, "comboDebug")
        .saved(811),
    Flag<&Settings::UseLegacyFileCopyMode>("Audio", "UseLegacyFileCopyMode", 0,
                                           "Copy and move carts the old way.")
        .registry(AudioOptions)
        .setIn(AudioSetup, "chkUseLegacyCopyMode")
        .saved(810),
    Flag<&Settings::MaintainLegacyCartList>("Audio", "MaintainLegacyCartList", 1,
                                            "Keep the complete cart lists up to date.")
        .registry(WallSettings)
        .setIn(AudioSetup, "chkMaintainLegacy")
        .saved(806),
    Flag<&Settings::UseIndividualCartListFiles>("Audio", "UseIndividualCartListFiles", 0,
                                                "Also keep the data of each cart in a file of its own.")
        .registry(WallSettings)
        .setIn(AudioSetup, "chkUseIndividualCartFiles")
        .saved(807),
};

constexpr SettingRow cartDisplay[] = {
    Number<&Settings::SelectedCartMode>("Audio", "SelectedCartMode", 1,
                                        "The selected cart: 1 stands out by colour, 2 is pushed in.")
        .range(1, 2)
        .registry(Wall)
        .setIn(AudiowallSetup, "chkSelectedCartPushIn")
        .saved(1001),
    Colour<&Settings::SelectedCartColor>("Audio", "SelectedCartColor", 0xC00000, "Background when selected.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeSelectedCartColor")
        .saved(1002),
    Colour<&Settings::SelectedCartColorText>("Audio", "SelectedCartColorText", 0xFFFFFF,
                                             "Text when selected.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeSelectedTextColor")
        .saved(1003),
    Colour<&Settings::CartPlayedRecentColor>("Audio", "CartPlayedRecentColor", 0xFF,
                                             "Highlight of recently played carts.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdHighlightColor")
        .saved(1004),
    Flag<&Settings::ShowTimesBarInColor>("Audio", "ShowTimesBarInColor", 1, "The times bar has colours.")
        .registry(Wall)
        .setIn(AudiowallSetup, "chkDisplayTimesBarColor")
        .saved(1005),
    Colour<&Settings::TimesBarColor>("Audio", "TimesBarColor", 0xC00000, "Background of the times bar.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdSelectTimesBarColor")
        .saved(1006),
    Colour<&Settings::TimesBarColorText>("Audio", "TimesBarColorText", 0xFFFFFF, "Text of the times bar.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdSelectTimesBarColor")
        .saved(1007),
    Colour<&Settings::CartNumberColor>("Audio", "CartNumberColor", 0xFF, "Number of a cart.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeNormalCartNumberColor")
        .saved(1008),
    Flag<&Settings::DisplayCartHasAudioAsSquare>("Audio", "DisplayCartHasAudioAsSquare", 0,
                                                 "The mark of a cart with audio is a square.")
        .registry(Wall)
        .setIn(AudiowallSetup, "chkDisplayCartHasAudioAsSquare")
        .saved(815),
    Colour<&Settings::EmptyCartNumberColor>("Audio", "EmptyCartNumberColor", 0x9A9A9A,
                                            "Number of an empty cart.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeEmptyCartNumberColor")
        .saved(1009),
    Colour<&Settings::EmptyCartBackColor>("Audio", "EmptyCartBackColor", SystemButtonFace,
                                          "Background of an empty cart.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeEmptyCartBackColor")
        .saved(1010),
    Colour<&Settings::EmptyCartForeColor>("Audio", "EmptyCartForeColor", SystemButtonText,
                                          "Text of an empty cart.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeEmptyCartForeColor")
        .saved(1011),
    Flag<&Settings::CartFontBold>("Audio", "CartFontBold", 0, "The font of the carts is bold.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeFont")
        .saved(812),
    Number<&Settings::CartFontSize>("Audio", "CartFontSize", 8, "Size of the font of the carts, in points.")
        .range(1, 200)
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeFont")
        .saved(813),
    Text<&Settings::CartFontName>("Audio", "CartFontName", "MS Sans Serif", "The font of the carts.")
        .registry(Wall)
        .setIn(AudiowallSetup, "cmdChangeFont")
        .saved(814),
    Flag<&Settings::DisplayCartTimeHours>("Audio", "DisplayCartTimeHours", 0, "Times of carts show hours.")
        .registry(Wall)
        .setIn(AudiowallSetup, "chkDisplayCartTimeHours")
        .saved(817),
    Flag<&Settings::CartShowCompressed>("Audio", "CartShowCompressed", 0,
                                        "Carts with compressed audio show it.")
        .registry(Wall)
        .setIn(AudiowallSetup, "chkShowCartsCompressed")
        .saved(816),
    Flag<&Settings::PlayCartsInstantly>("Audio", "PlayCartsInstantly", 1,
                                        "A triggered instant cart plays at once, not just gets cued.")
        .registry(Wall)
        .setIn(AudioSetup, "chkPlayInstant")
        .saved(210),
    Number<&Settings::HighlightPlayedCarts>(
        "Carts", "HighlightPlayedCarts", 0,
        "Highlight played carts: 0 no, 1 for seconds, 2 until they could have been played so often.")
        .range(0, 2)
        .registry(Wall)
        .setIn(AudiowallSetup, "chkHighlightRecent")
        .saved(501),
    Number<&Settings::HighlightPLayedCartsInterval>("Carts", "HighlightPLayedCartsInterval", 0,
                                                    "The seconds, or how often.")
        .range(0, 86399)
        .registry(Wall)
        .setIn(AudiowallSetup, "txtHighlightFixedTime")
        .saved(502),
};

constexpr SettingRow recording[] = {
    Number<&Settings::RecordingSoundCard>("Audio", "RecordingSoundCard", 0,
                                          "Wave input for recording plus one; 0 for none.")
        .range(0, INT16_MAX)
        .otherwise(recordingSoundCardHeld, "the last suitable input")
        .registry(PlayerOptions)
        .setIn(AudioSetup, "listRecordPlayer")
        .saved(801),
};

constexpr SettingRow location[] = {
    Text<&Settings::AudioEditor>("FileLocations", "AudioEditor", "", "The program that edits audio.")
        .older("FileLocations", "SampleEditor")
        .otherwiseText(audioEditorHeld, "the first audio editor found")
        .registry(Locations)
        .setIn(AudioSetup, "txtAudioEditor")
        .saved(106),
    TextRow(SettingKind::Path, EntryField<&Settings::CartPartTable, &CartPart::Location>, "FileLocations",
            "Carts", "", "Folder of the carts 1 to 1000, 1001 to 2000, ... and, for 11, all above 10000.")
        .each(parts, CartPartCount)
        .registry(Locations, "CartLocation")
        .setIn(FileLocations, "txtCartLocations_")
        .saved(104),
    TextRow(SettingKind::Text, nullptr, "FileLocations", "SampleEditor", "",
            "Short path of AudioEditor; written for other programs.")
        .saves(sampleEditor)
        .setIn(AudioSetup, "txtAudioEditor")
        .saved(105),
};

constexpr SettingRow audiowallFile[] = {
    Number<&Settings::NoCarts>("Audiowall", "NoCarts", 9999, "Number of carts.")
        .range(1, 99999)
        .setIn(AudiowallSetup, "txtNumberCarts"),
    Text<&Settings::PictureFileExtension>("Audiowall", "PictureFileExtension", "JPG",
                                          "Extension of the pictures of carts: JPG or BMP.")
        .setIn(AudiowallSetup, "comboPictureType"),
    Text<&Settings::AudiowallVersion>("Audiowall", "Version", "0.0", "Version of the audiowall's format."),
    Flag<&Settings::AskBeforeProcess>("CDRipping", "AskBeforeProcess", 0,
                                      "Ask before ripped audio is compressed or normalised.")
        .setIn(RippingSettings, "chkAskFirst"),
    Number<&Settings::NormaliseAudioPercent>("CDRipping", "NormaliseAudioPercent", 63,
                                             "Level to which ripped audio is normalised; 0 for none.")
        .range(0, 100)
        .setIn(RippingSettings, "txtNormaliseLevel"),
    Flag<&Settings::AutoTopAudio>("CDRipping", "AutoTopAudio", 1,
                                  "Trim the silence at the start of ripped audio.")
        .setIn(RippingSettings, "chkAutoTopAudio"),
    Flag<&Settings::AllowCDDB>("CDDB", "AllowCDDB", 0, "Look CD titles up on the internet.")
        .setIn(RippingSettings, "chkAllowCDDB"),
    Text<&Settings::ServerAddress>("CDDB", "ServerAddress", "gnudb.gnudb.org", "Server of CD titles.")
        .setIn(RippingSettings, "comboCDDBServer"),
    Text<&Settings::EmailAddress>("CDDB", "EmailAddress", "", "E-mail address sent to the server.")
        .setIn(RippingSettings, "txtCDDBEmailAddress"),
    Flag<&Settings::AllowSubmit>("CDDB", "AllowSubmit", 0, "Users may submit CD titles.")
        .setIn(RippingSettings, "chkAllowSubmissions"),
};

constexpr SettingRow audiowallLocated[] = {
    Flag<&Settings::AllowAudioFileLinking>("Audiowall", "AllowAudioFileLinking", 0,
                                           "Carts may be linked to files outside the audiowall.")
        .setIn(AudioSetup, "chkAllowAudioFileLinking"),
    Flag<&Settings::UseCopyrightInCartChunk>("CartChunk", "UseCopyrightInCartChunk", 0,
                                             "Keep copyright details in the cart chunk of audio files.")
        .setIn(AudioSetup, "chkUseCopyrightInCartChunk"),
};

} // namespace

const SettingRows PlayerAssignmentRows = playerAssignment;
const SettingRows SoundCardRows = soundCards;
const SettingRows PlayerColourRows = playerColours;
const SettingRows PlayerRows = player;
const SettingRows VolumeRows = volume;
const SettingRows SweptVolumeRows = sweptVolume;
const SettingRows AudioRows = audio;
const SettingRows CartDisplayRows = cartDisplay;
const SettingRows RecordingRows = recording;
const SettingRows LocationRows = location;
const SettingRows AudiowallFileRows = audiowallFile;
const SettingRows AudiowallLocatedRows = audiowallLocated;

} // namespace tolvex
