#include "audio/LoadAudioSettings.h"

#include "audio/AudioEditorSearch.h"
#include "audio/CartBackup.h"
#include "audio/CartStore.h"
#include "audio/FileCache.h"
#include "audio/WaveSearch.h"
#include "core/report/DebugLog.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "platform/profile/ProfileFile.h"

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
void assignPlayers(const SettingSource& source) {
    int last = -1;
    for (int number = 1; number <= CartPlayerCount; ++number) {
        qint16& device = settings().CartPlayerTable[number].Device;
        if (number > settings().TotalNumberCartPlayers) {
            device = 0;
        } else if (settings().AutomaticPlayerAssignment) {
            const int found = nextSuitableOutput(last);
            last = found >= 0 ? found : last;
            device = qint16((found >= 0 ? found : LastSuitableOutput(suitableRate, suitableChannels)) + 1);
        } else {
            for (const SettingRow& row : SoundCardRows)
                LoadEntry(row, number, source);
        }
    }
}

void countPlayers() {
    qint32& total = settings().TotalNumberCartPlayers;
    if (total != -1)
        return;
    total = CountSuitableOutputs(suitableRate, suitableChannels);
    DebugLog(QStringLiteral("Number Suitable Wave Out Devices=%1").arg(total));
    total = LowerOf(total, CartPlayerCount);
    DebugLog(QStringLiteral("Checked Number Suitable Wave Out Devices=%1").arg(total));
}

// As many players as there are suitable outputs, one each. The first of them that has its input on the same
// card decides where to record.
void assignCountedPlayers() {
    countPlayers();
    int last = -1;
    bool recordingFound = false;
    const auto& inputs = platform::WaveInputs();
    for (int number = 1; number <= CartPlayerCount; ++number) {
        const int found = number <= settings().TotalNumberCartPlayers ? nextSuitableOutput(last) : -1;
        settings().CartPlayerTable[number].Device = qint16(found + 1);
        if (found < 0)
            continue;
        last = found;
        if (!recordingFound && found < inputs.size() && inputs[found].manufacturer == pairedCardMaker) {
            recordingFound = true;
            settings().RecordingSoundCard = found + 1;
        }
    }
}

void loadPlayers(const SettingSource& source) {
    Settings& values = settings();
    values.RecordingSoundCard = lastRecordingCard();
    LoadRows(PlayerAssignmentRows, source);
    const bool counting = values.TotalNumberCartPlayers == -1;
    if (const QString players = SwitchValue(values.CommandLine, QStringLiteral("/PLAYERS="));
        !players.isNull())
        values.TotalNumberCartPlayers = ToLong(LeadingNumber(players));
    values.TotalNumberCartPlayers = LowerOf(values.TotalNumberCartPlayers, CartPlayerCount);
    if (counting)
        assignCountedPlayers();
    else
        assignPlayers(source);
    LoadRows(PlayerColourRows, source);
    LoadRows(PlayerRows, source);
}

void loadAudio(const SettingSource& source) {
    Settings& values = settings();
    LoadRows(VolumeRows, source);
    if (values.UsePlayerDucking)
        values.SweptVolume = values.GeneralVolume;
    else
        LoadRows(SweptVolumeRows, source);
    LoadRows(AudioRows, source);
    LoadRows(CartDisplayRows, source);
    LoadRows(RecordingRows, source);
    values.RecordingSoundCard = LowerOf(values.RecordingSoundCard, lastRecordingCard());
}

bool firstPartHasLocation() {
    return !settings().CartPartTable[1].Location.trimmed().isEmpty();
}

void loadAudiowall() {
    const SettingSource source{AudiowallIniFile()};
    LoadRows(AudiowallFileRows, source);
    if (firstPartHasLocation())
        LoadRows(AudiowallLocatedRows, source);
}

void upgradeAudiowall() {
    QString& version = settings().AudiowallVersion;
    if (!firstPartHasLocation() || LeadingNumber(version) >= double{currentVersion})
        return;
    BackupCartLists(false);
    version = QString::fromUtf16(currentVersionText);
    platform::WriteProfileText(QStringLiteral("Audiowall"), QStringLiteral("Version"), version,
                               AudiowallIniFile());
}

} // namespace

QString AudiowallIniFile() {
    return settings().CartPartTable[1].Location + QStringLiteral("\\Audwall.ini");
}

void ReadAudioSettings(const QString& iniPath, const QString& registryRoot) {
    const SettingSource source{iniPath, registryRoot};
    InitCartState();
    loadPlayers(source);
    loadAudio(source);
    ColourEmptyCartListRecord();
    settings().AudioEditor = SearchSampleEditor({});
    LoadRows(LocationRows, source);
    loadAudiowall();
}

void ReadAudiowallSettings(const QString& iniPath, const QString& registryRoot) {
    const SettingSource source{iniPath, registryRoot};
    InitCartState();
    for (const SettingRows rows : {AudioRows, CartDisplayRows, LocationRows})
        LoadRows(rows, source);
    ColourEmptyCartListRecord();
    loadAudiowall();
}

void LoadAudioSettings(const QString& iniPath, const QString& registryRoot) {
    CheckFileCache(registryRoot, false);
    ReadAudioSettings(iniPath, registryRoot);
    upgradeAudiowall();
}

} // namespace tolvex
