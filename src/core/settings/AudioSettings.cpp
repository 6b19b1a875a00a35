// The rows about cart players, audio and the look of carts, with their registry forms, and those of
// Audwall.ini.
#include "core/settings/SettingRowBuilders.h"
#include "core/text/PathNames.h"

namespace tolvex {

namespace {

// Below the registry root. The first two differ by a blank, and both are in use.
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

// Devices that were given out automatically are not stored, so that a card that comes and goes shifts
// nothing.
std::optional<QString> soundCardNumber(const Settings& values, int index) {
    if (values.AutomaticPlayerAssignment)
        return std::nullopt;
    return QString::number(values.CartPlayerTable[index].Device);
}

// Older programs of the suite start the editor by its short path. The platform has none for a program that is
// not there at the moment (a drive that is not connected); the full one then stands, so that nothing is lost.
std::optional<QString> sampleEditor(const Settings& values, int) {
    const QString shortPath = MakeShortPath(values.AudioEditor);
    return shortPath.isEmpty() ? values.AudioEditor : shortPath;
}

constexpr SettingRow playerAssignment[] = {
    Flag<&Settings::AutomaticPlayerAssignment>("CartPlayers", "AutomaticPlayerAssignment", 1,
                                               "Sound devices are given to the cart players automatically.")
        .registry(Players),
    Number<&Settings::TotalNumberCartPlayers>(
        "CartPlayers", "TotalNumberCartPlayers", -1,
        "Number of cart players; -1 for as many as there are suitable sound devices.")
        .range(-1, CartPlayerCount)
        .registry(Players),
};

constexpr SettingRow soundCards[] = {
    NumberRow(SettingKind::Word, Field<&Settings::CartPlayerTable, &CartPlayer::Device>, "CartPlayers",
              "SoundCardNumber", 0,
              "Wave output of the player plus one; 0 for none. Not stored while automatic.")
        .range(0, INT16_MAX)
        .otherwise(ownNumber, "number of the player")
        .each(players, CartPlayerCount)
        .registry(Players)
        .saves(soundCardNumber),
};

constexpr SettingRow playerColours[] = {
    NumberRow(SettingKind::Colour, Field<&Settings::CartPlayerTable, &CartPlayer::BackColor>, "CartPlayers",
              "BackColor", 0, "Background of the player's display.")
        .each(players, CartPlayerCount)
        .registry(Players),
    NumberRow(SettingKind::Colour, Field<&Settings::CartPlayerTable, &CartPlayer::ForeColor>, "CartPlayers",
              "ForeColor", 0, "Text of the player's display.")
        .otherwise(playerForeColor, "one for each player")
        .each(players, CartPlayerCount)
        .registry(Players),
};

constexpr SettingRow player[] = {
    Number<&Settings::Instant>("CartPlayers", "Instant", 0, "The player that plays instant carts.")
        .range(-1, CartPlayerCount)
        .otherwise(totalPlayers, "TotalNumberCartPlayers")
        .registry(PlayerOptions),
    Number<&Settings::EditPlayer>("CartPlayers", "EditPlayer", 0,
                                  "The player used for editing; 0 for the last.")
        .range(0, CartPlayerCount)
        .registry(PlayerOptions),
    Number<&Settings::FirstPlayerInOrder>("CartPlayers", "FirstPlayerInOrder", 1,
                                          "The player that plays first; 255 for the last one.")
        .range(0, 255)
        .registry(PlayerOptions),
    Number<&Settings::LastPlayerInOrder>("CartPlayers", "LastPlayerInOrder", 255,
                                         "The player that plays last; 255 for the last one.")
        .range(0, 255)
        .registry(PlayerOptions),
    Flag<&Settings::RegisterAsToolbars>("CartPlayers", "RegisterAsToolbars", 0,
                                        "The cart players are toolbars of the desktop.")
        .registry(PlayerOptions),
    Flag<&Settings::KeyboardClose>("Carts", "KeyboardClose", 0, "Ejecting by the keyboard fades the cart.")
        .registry(PlayerOptions, "KeyboardEject"),
    Flag<&Settings::MouseClose>("Carts", "MouseClose", 1, "Ejecting by the mouse fades the cart.")
        .registry(PlayerOptions, "MouseEject"),
    Number<&Settings::PlayerFadeSeconds>("Audio", "PlayerFadeSeconds", 2, "Seconds that a fade takes.")
        .range(1, INT32_MAX)
        .registry(PlayerOptions),
    Number<&Settings::PlayerFadeFirePercent>(
        "Audio", "PlayerFadeFirePercent", 65,
        "Percent of full volume, faded to which a cart lets the next one start.")
        .range(0, 100)
        .older("Audio", "FadeFire", true)
        .registry(PlayerOptions),
    Flag<&Settings::OnlyAllowEjectStoppedCarts>("Audio", "OnlyAllowEjectStoppedCarts", 0,
                                                "Carts can be ejected only when paused or cued.")
        .registry(PlayerOptions),
};

constexpr SettingRow volume[] = {
    Flag<&Settings::UsePlayerDucking>("Audio", "UsePlayerDucking", 1,
                                      "A sweeper lowers the other cart; off: it has a volume of its own.")
        .registry(AudioOptions),
    Number<&Settings::GeneralVolume>("Audio", "GeneralVolume", 100, "Volume of normal carts, in percent.")
        .range(0, 100)
        .registry(AudioOptions),
};

constexpr SettingRow sweptVolume[] = {
    Number<&Settings::SweptVolume>("Audio", "SweptVolume", 100,
                                   "Volume of a sweeper, in percent; GeneralVolume while ducking is on.")
        .range(0, 100)
        .registry(AudioOptions),
};

constexpr SettingRow audio[] = {
    Number<&Settings::DuckAudioVolume>("Audio", "DuckAudioVolume", 0,
                                       "Volume of a cart that is lowered for a sweeper, in percent.")
        .range(-10, 100)
        .otherwise(belowGeneralVolume, "GeneralVolume - 10")
        .registry(AudioOptions),
    Number<&Settings::CartGroupVolume>("Audio", "CartGroupVolume", 100, "Volume of cart groups, in percent.")
        .range(0, 100)
        .registry(AudioOptions),
    Number<&Settings::AdvertVolume>("Audio", "AdvertVolume", 100, "Volume of adverts, in percent.")
        .range(0, 100)
        .registry(AudioOptions),
    Number<&Settings::KHz>("Audio", "KHz", 44100, "Sample rate of new recordings, in hertz.")
        .range(0, INT32_MAX)
        .registry(AudioOptions),
    Number<&Settings::Channels>("Audio", "Channels", 2, "Channels of new recordings.")
        .range(0, INT16_MAX)
        .registry(AudioOptions),
    Number<&Settings::Format>("Audio", "Format", 1, "Format tag of new recordings; 1 is plain PCM.")
        .range(0, UINT16_MAX)
        .registry(AudioOptions),
    Flag<&Settings::AllowDifferentFormat>("Audio", "AllowDifferentFormat", 0,
                                          "Users may record in another format.")
        .registry(AudioOptions),
    Flag<&Settings::RecordLocal>("Audio", "RecordLocal", 0,
                                 "Record to the local disk, then move the file to the network.")
        .registry(AudioOptions),
    Number<&Settings::AudioEditorPriority>("Audio", "AudioEditorPriority", 10,
                                           "Priority of the audio editor.")
        .registry(AudioOptions),
    Flag<&Settings::AudioEditorRunAtIdleSpeed>("Audio", "AudioEditorRunAtIdleSpeed", 0,
                                               "The audio editor runs only when the machine is idle.")
        .registry(AudioOptions),
    Number<&Settings::LockPlayerWhenRecording>("Audio", "LockPlayerWhenRecording", 0,
                                               "The player locked while recording; 0 for none.")
        .range(0, CartPlayerCount)
        .registry(AudioOptions),
    Flag<&Settings::UseLargeWLBuffers>("Audio", "UseLargeWLBuffers", 0, "Larger buffers for playing.")
        .registry(AudioOptions),
    Number<&Settings::WLDebugMode>("Audio", "WLDebugMode", 0, "Audio debugging: 0 none to 3 full.")
        .range(0, 3)
        .registry(AudioOptions),
    Flag<&Settings::UseLegacyFileCopyMode>("Audio", "UseLegacyFileCopyMode", 0,
                                           "Copy and move carts the old way.")
        .registry(AudioOptions),
    Flag<&Settings::MaintainLegacyCartList>("Audio", "MaintainLegacyCartList", 1,
                                            "Keep the complete cart lists up to date.")
        .registry(WallSettings),
    Flag<&Settings::UseIndividualCartListFiles>("Audio", "UseIndividualCartListFiles", 0,
                                                "Keep what is known of a cart in a file of its own too.")
        .registry(WallSettings),
};

constexpr SettingRow cartDisplay[] = {
    Number<&Settings::SelectedCartMode>("Audio", "SelectedCartMode", 1,
                                        "The selected cart: 1 stands out by colour, 2 is pushed in.")
        .range(1, 2)
        .registry(Wall),
    Colour<&Settings::SelectedCartColor>("Audio", "SelectedCartColor", 0xC00000, "Background when selected.")
        .registry(Wall),
    Colour<&Settings::SelectedCartColorText>("Audio", "SelectedCartColorText", 0xFFFFFF,
                                             "Text when selected.")
        .registry(Wall),
    Colour<&Settings::CartPlayedRecentColor>("Audio", "CartPlayedRecentColor", 0xFF,
                                             "Highlight of carts played not long ago.")
        .registry(Wall),
    Flag<&Settings::ShowTimesBarInColor>("Audio", "ShowTimesBarInColor", 1, "The times bar has colours.")
        .registry(Wall),
    Colour<&Settings::TimesBarColor>("Audio", "TimesBarColor", 0xC00000, "Background of the times bar.")
        .registry(Wall),
    Colour<&Settings::TimesBarColorText>("Audio", "TimesBarColorText", 0xFFFFFF, "Text of the times bar.")
        .registry(Wall),
    Colour<&Settings::CartNumberColor>("Audio", "CartNumberColor", 0xFF, "Number of a cart.").registry(Wall),
    Flag<&Settings::DisplayCartHasAudioAsSquare>("Audio", "DisplayCartHasAudioAsSquare", 0,
                                                 "The mark of a cart with audio is a square.")
        .registry(Wall),
    Colour<&Settings::EmptyCartNumberColor>("Audio", "EmptyCartNumberColor", 0x9A9A9A,
                                            "Number of an empty cart.")
        .registry(Wall),
    Colour<&Settings::EmptyCartBackColor>("Audio", "EmptyCartBackColor", ButtonFace,
                                          "Background of an empty cart.")
        .registry(Wall),
    Colour<&Settings::EmptyCartForeColor>("Audio", "EmptyCartForeColor", ButtonText, "Text of an empty cart.")
        .registry(Wall),
    Flag<&Settings::CartFontBold>("Audio", "CartFontBold", 0, "The font of the carts is bold.")
        .registry(Wall),
    Number<&Settings::CartFontSize>("Audio", "CartFontSize", 8, "Size of the font of the carts, in points.")
        .range(1, 200)
        .registry(Wall),
    Text<&Settings::CartFontName>("Audio", "CartFontName", "MS Sans Serif", "The font of the carts.")
        .registry(Wall),
    Flag<&Settings::DisplayCartTimeHours>("Audio", "DisplayCartTimeHours", 0, "Times of carts show hours.")
        .registry(Wall),
    Flag<&Settings::CartShowCompressed>("Audio", "CartShowCompressed", 0,
                                        "Carts with compressed audio show it.")
        .registry(Wall),
    Flag<&Settings::PlayCartsInstantly>("Audio", "PlayCartsInstantly", 1,
                                        "A triggered instant cart plays at once, not just gets cued.")
        .registry(Wall),
    Number<&Settings::HighlightPlayedCarts>(
        "Carts", "HighlightPlayedCarts", 0,
        "Highlight played carts: 0 no, 1 for seconds, 2 until they could have been played so often.")
        .range(0, 2)
        .registry(Wall),
    Number<&Settings::HighlightPLayedCartsInterval>("Carts", "HighlightPLayedCartsInterval", 0,
                                                    "The seconds, or how often.")
        .range(0, 86399)
        .registry(Wall),
};

constexpr SettingRow recording[] = {
    Number<&Settings::RecordingSoundCard>("Audio", "RecordingSoundCard", 0,
                                          "Wave input for recording plus one; 0 for none.")
        .range(0, INT16_MAX)
        .otherwise(recordingSoundCardHeld, "the last suitable input")
        .registry(PlayerOptions),
};

constexpr SettingRow location[] = {
    Text<&Settings::AudioEditor>("FileLocations", "AudioEditor", "", "The program that edits audio.")
        .older("FileLocations", "SampleEditor")
        .otherwiseText(audioEditorHeld, "the first audio editor found")
        .registry(Locations),
    TextRow(SettingKind::Path, Field<&Settings::CartPartTable, &CartPart::Location>, "FileLocations", "Carts",
            "", "Folder of the carts 1 to 1000, 1001 to 2000, ... and, for 11, all above 10000.")
        .each(parts, CartPartCount)
        .registry(Locations, "CartLocation"),
    TextRow(SettingKind::Text, nullptr, "FileLocations", "SampleEditor", "",
            "Short path of AudioEditor; written for other programs.")
        .saves(sampleEditor),
};

constexpr SettingRow audiowallFile[] = {
    Number<&Settings::NoCarts>("Audiowall", "NoCarts", 9999, "Number of carts.").range(1, 99999),
    Text<&Settings::PictureFileExtension>("Audiowall", "PictureFileExtension", "JPG",
                                          "Extension of the pictures of carts: JPG or BMP."),
    Text<&Settings::AudiowallVersion>("Audiowall", "Version", "0.0", "Version of the audiowall's form."),
    Flag<&Settings::AskBeforeProcess>("CDRipping", "AskBeforeProcess", 0,
                                      "Ask before ripped audio is compressed or normalised."),
    Number<&Settings::NormaliseAudioPercent>("CDRipping", "NormaliseAudioPercent", 63,
                                             "Level that ripped audio is normalised to; 0 for not at all.")
        .range(0, 100),
    Flag<&Settings::AutoTopAudio>("CDRipping", "AutoTopAudio", 1,
                                  "Trim the silence at the start of ripped audio."),
    Flag<&Settings::AllowCDDB>("CDDB", "AllowCDDB", 0, "Look CD titles up on the internet."),
    Text<&Settings::ServerAddress>("CDDB", "ServerAddress", "gnudb.gnudb.org", "Server of CD titles."),
    Text<&Settings::EmailAddress>("CDDB", "EmailAddress", "", "E-mail address that is told to the server."),
    Flag<&Settings::AllowSubmit>("CDDB", "AllowSubmit", 0, "Users may submit CD titles."),
};

constexpr SettingRow audiowallLocated[] = {
    Flag<&Settings::AllowAudioFileLinking>("Audiowall", "AllowAudioFileLinking", 0,
                                           "Carts may be linked to files outside the audiowall."),
    Flag<&Settings::UseCopyrightInCartChunk>("CartChunk", "UseCopyrightInCartChunk", 0,
                                             "Keep copyright details in the cart chunk of audio files."),
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
