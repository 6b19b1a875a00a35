#include "audio/LoadAudioSettings.h"

#include "audio/AudioEditorSearch.h"
#include "audio/CartBackup.h"
#include "audio/CartStore.h"
#include "audio/CheckFileCache.h"
#include "audio/WaveSearch.h"
#include "core/report/DebugLog.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "platform/profile/ProfileFile.h"

#include <algorithm>

namespace tolvex {

namespace {

// The format that a device has to have for playing and recording carts.
constexpr int suitableRate = 44100;
constexpr int suitableChannels = 1;

// Maker of the cards whose input records what their output of the same number plays.
constexpr quint16 pairedCardMaker = 39;

// The version of the audiowall from which no backup of the lists has to be taken. As stored numbers compare
// with its single precision value, "2.6" itself is not below it.
constexpr float currentVersion = 2.6F;
constexpr char16_t currentVersionText[] = u"2.6";

int nextSuitableOutput(int last) {
    return FindSuitableOutput(last + 1, suitableRate, suitableChannels);
}

int lastRecordingCard() {
    return LastSuitableInput(suitableRate, suitableChannels) + 1;
}

// In automatic mode the players take the suitable outputs in turn; those left over share the last one.
void assignPlayers(Settings& values, const SettingSource& source) {
    int last = -1;
    for (int number = 1; number <= CartPlayerCount; ++number) {
        qint16& device = values.CartPlayerTable[number].Device;
        if (number > values.TotalNumberCartPlayers) {
            device = 0;
        } else if (values.AutomaticPlayerAssignment) {
            const int found = nextSuitableOutput(last);
            last = found >= 0 ? found : last;
            device = qint16((found >= 0 ? found : LastSuitableOutput(suitableRate, suitableChannels)) + 1);
        } else {
            for (const SettingRow& row : SoundCardRows)
                LoadEntry(row, number, source, values);
        }
    }
}

void countPlayers(Settings& values) {
    qint32& total = values.TotalNumberCartPlayers;
    if (total != -1)
        return;
    total = CountSuitableOutputs(suitableRate, suitableChannels);
    DebugLog(QStringLiteral("Number Suitable Wave Out Devices=%1").arg(total));
    total = std::min(total, CartPlayerCount);
    DebugLog(QStringLiteral("Checked Number Suitable Wave Out Devices=%1").arg(total));
}

// As many players as there are suitable outputs, one each. The first of them that has its input on the same
// card decides where to record.
void assignCountedPlayers(Settings& values) {
    countPlayers(values);
    int last = -1;
    bool recordingFound = false;
    const auto& inputs = platform::WaveInputs();
    for (int number = 1; number <= CartPlayerCount; ++number) {
        const int found = number <= values.TotalNumberCartPlayers ? nextSuitableOutput(last) : -1;
        values.CartPlayerTable[number].Device = qint16(found + 1);
        if (found < 0)
            continue;
        last = found;
        if (!recordingFound && found < inputs.size() && inputs[found].manufacturer == pairedCardMaker) {
            recordingFound = true;
            values.RecordingSoundCard = found + 1;
        }
    }
}

void loadPlayers(Settings& values, const SettingSource& source) {
    values.RecordingSoundCard = lastRecordingCard();
    LoadRows(PlayerAssignmentRows, source, values);
    const bool counting = values.TotalNumberCartPlayers == -1;
    if (const QString players = SwitchValue(values.CommandLine, QStringLiteral("/PLAYERS="));
        !players.isNull())
        values.TotalNumberCartPlayers = ToLong(LeadingNumber(players));
    values.TotalNumberCartPlayers = std::min(values.TotalNumberCartPlayers, CartPlayerCount);
    if (counting)
        assignCountedPlayers(values);
    else
        assignPlayers(values, source);
    LoadRows(PlayerColourRows, source, values);
    LoadRows(PlayerRows, source, values);
}

void loadAudio(Settings& values, const SettingSource& source) {
    LoadRows(VolumeRows, source, values);
    if (values.UsePlayerDucking)
        values.SweptVolume = values.GeneralVolume;
    else
        LoadRows(SweptVolumeRows, source, values);
    LoadRows(AudioRows, source, values);
    LoadRows(CartDisplayRows, source, values);
    LoadRows(RecordingRows, source, values);
    values.RecordingSoundCard = std::min(values.RecordingSoundCard, lastRecordingCard());
}

bool firstPartHasLocation(const Settings& values) {
    return !values.CartPartTable[1].Location.trimmed().isEmpty();
}

void loadAudiowall(Settings& values) {
    const SettingSource source{AudiowallIniFile(values)};
    LoadRows(AudiowallFileRows, source, values);
    if (firstPartHasLocation(values))
        LoadRows(AudiowallLocatedRows, source, values);
}

void upgradeAudiowall(Settings& values) {
    QString& version = values.AudiowallVersion;
    if (!firstPartHasLocation(values) || LeadingNumber(version) >= double{currentVersion})
        return;
    BackupCartLists(values, false);
    version = QString::fromUtf16(currentVersionText);
    WriteSettingText(RowOf<&Settings::AudiowallVersion>(), version, AudiowallIniFile(values));
}

} // namespace

QString AudiowallIniFile(const Settings& settings) {
    return settings.CartPartTable[1].Location + QStringLiteral("\\Audwall.ini");
}

void ReadAudioSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot) {
    const SettingSource source{iniPath, registryRoot};
    Settings& values = carts.settings;
    InitCartState(carts);
    loadPlayers(values, source);
    loadAudio(values, source);
    ColourEmptyCartListRecord(carts);
    values.AudioEditor = SearchSampleEditor({});
    LoadRows(LocationRows, source, values);
    loadAudiowall(values);
}

void ReadAudiowallSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot) {
    const SettingSource source{iniPath, registryRoot};
    Settings& values = carts.settings;
    InitCartState(carts);
    for (const SettingRows rows : {AudioRows, CartDisplayRows, LocationRows})
        LoadRows(rows, source, values);
    ColourEmptyCartListRecord(carts);
    loadAudiowall(values);
}

void LoadAudioSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot) {
    CheckFileCache(carts.settings, registryRoot, false);
    ReadAudioSettings(carts, iniPath, registryRoot);
    upgradeAudiowall(carts.settings);
}

} // namespace tolvex
