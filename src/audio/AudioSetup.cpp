#include "audio/AudioSetup.h"

#include "audio/AudiowallKeys.h"
#include "audio/DeviceIdentity.h"
#include "audio/WaveSearch.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingText.h"
#include "core/settings/StoredSettings.h"
#include "core/system/Product.h"
#include "core/text/Numbers.h"
#include "platform/Prompts.h"
#include "platform/paths/Paths.h"

namespace tolvex {

namespace {

constexpr int commonFiles = 0x2B;
constexpr qint32 theLastPlayer = 255;
constexpr int debugModes = 4;

struct FlagRow {
    bool AudioSetup::*held;
    qint16 Settings::*setting;
};
constexpr FlagRow flags[] = {
    {&AudioSetup::automatic, &Settings::AutomaticPlayerAssignment},
    {&AudioSetup::playersAsToolbars, &Settings::RegisterAsToolbars},
    {&AudioSetup::onlyEjectStopped, &Settings::OnlyAllowEjectStoppedCarts},
    {&AudioSetup::playInstantly, &Settings::PlayCartsInstantly},
    {&AudioSetup::ducking, &Settings::UsePlayerDucking},
    {&AudioSetup::allowDifferentFormat, &Settings::AllowDifferentFormat},
    {&AudioSetup::recordLocal, &Settings::RecordLocal},
    {&AudioSetup::editorAtIdleSpeed, &Settings::AudioEditorRunAtIdleSpeed},
    {&AudioSetup::individualCartFiles, &Settings::UseIndividualCartListFiles},
    {&AudioSetup::maintainLegacy, &Settings::MaintainLegacyCartList},
    {&AudioSetup::allowAudioFileLinking, &Settings::AllowAudioFileLinking},
    {&AudioSetup::useLargeBuffers, &Settings::UseLargeWLBuffers},
    {&AudioSetup::useLegacyCopyMode, &Settings::UseLegacyFileCopyMode},
    {&AudioSetup::useCopyright, &Settings::UseCopyrightInCartChunk},
};

struct NumberRow {
    qint32 AudioSetup::*held;
    qint32 Settings::*setting;
};
constexpr NumberRow numbers[] = {
    {&AudioSetup::players, &Settings::TotalNumberCartPlayers},
    {&AudioSetup::fadePercent, &Settings::PlayerFadeFirePercent},
    {&AudioSetup::format, &Settings::Format},
    {&AudioSetup::channels, &Settings::Channels},
    {&AudioSetup::rate, &Settings::KHz},
    {&AudioSetup::editorPriority, &Settings::AudioEditorPriority},
};
constexpr NumberRow volumes[] = {
    {&AudioSetup::generalVolume, &Settings::GeneralVolume},
    {&AudioSetup::duckVolume, &Settings::DuckAudioVolume},
    {&AudioSetup::sweeperVolume, &Settings::SweptVolume},
};
constexpr NumberRow zqsVolumes[] = {
    {&AudioSetup::cartVolume, &Settings::GeneralVolume},
    {&AudioSetup::cartGroupVolume, &Settings::CartGroupVolume},
    {&AudioSetup::advertVolume, &Settings::AdvertVolume},
};

int numberOfInputs() {
    return int(platform::WaveInputs().size());
}

// Lists whose entries stand for consecutive numbers. A value above the highest counts as the highest; one
// below the first selects nothing.
struct ListRow {
    int AudioSetup::*index;
    qint32 Settings::*setting;
    int first; // the value of entry 0
    int (*highest)();
};
constexpr int sixPlayers() {
    return CartPlayerCount;
}
constexpr ListRow lists[] = {
    {&AudioSetup::instant, &Settings::Instant, 1, &sixPlayers},
    {&AudioSetup::editPlayer, &Settings::EditPlayer, 0, &sixPlayers},
    {&AudioSetup::firstInOrder, &Settings::FirstPlayerInOrder, 1, &sixPlayers},
    {&AudioSetup::lastInOrder, &Settings::LastPlayerInOrder, 1, &sixPlayers},
    {&AudioSetup::recordInto, &Settings::RecordingSoundCard, 1, &numberOfInputs},
    {&AudioSetup::debugMode, &Settings::WLDebugMode, 0, [] { return debugModes - 1; }},
};

// The setting that OK stores for a selected entry, with at least one player.
qint32 instantPlayer(int index, int players) {
    const int player = std::min(index + 1, players);
    return player == 0 ? 1 : player;
}
qint32 editingPlayer(int index, int players) {
    return std::min(index, players);
}
qint32 firstPlayer(int index, int players) {
    const int player = index + 1;
    if (player >= players && players >= 2)
        return theLastPlayer;
    return std::max(player, 0);
}
qint32 lastPlayer(int index, int players) {
    const int player = index + 1;
    return player >= players ? theLastPlayer : std::max(player, 0);
}
qint32 recordingCard(int index, int players) {
    return index + 1 == 0 ? players : index + 1;
}

// The setting that a selected entry is stored as, and its value without players.
struct OrderRow {
    qint32 Settings::*setting;
    int AudioSetup::*index;
    qint32 (*value)(int index, int players);
    qint32 withoutPlayers;
};
constexpr OrderRow orders[] = {
    {&Settings::Instant, &AudioSetup::instant, &instantPlayer, 0},
    {&Settings::EditPlayer, &AudioSetup::editPlayer, &editingPlayer, 0},
    {&Settings::FirstPlayerInOrder, &AudioSetup::firstInOrder, &firstPlayer, 0},
    {&Settings::LastPlayerInOrder, &AudioSetup::lastInOrder, &lastPlayer, theLastPlayer},
    {&Settings::RecordingSoundCard, &AudioSetup::recordInto, &recordingCard, 0},
};

qint16 flagOf(bool on) {
    return on ? -1 : 0;
}

SetupOutcome check(const AudioSetup& setup) {
    if (!setup.maintainLegacy && !setup.individualCartFiles)
        return {QStringLiteral("You must specify either to 'Store each carts information individually' or "
                               "'Maintain the complete list' or both."),
                QStringLiteral("chkMaintainLegacy")};
    if (setup.players > CartPlayerCount)
        return {QStringLiteral("You cannot have more than %1 in Tolvex").arg(CartPlayerCount),
                QStringLiteral("txtNumberCartPlayers")};
    // The suite's own message says it the other way round.
    if (setup.fadePercent >= (setup.zqs ? setup.cartVolume : setup.generalVolume))
        return {QStringLiteral("Your 'Fire When Faded to' percentage cannot be lower than the 'Play normal "
                               "carts at' percentage"),
                setup.zqs ? QStringLiteral("txtCartVolume") : QStringLiteral("txtFadePercent")};
    if (const QString fault = StoredTextFault(setup.audioEditor.trimmed()); !fault.isEmpty())
        return {QStringLiteral("The path of the audio editor cannot be stored: %1.").arg(fault),
                QStringLiteral("txtAudioEditor")};
    return {};
}

void takePlayers(const AudioSetup& setup, Settings& settings) {
    const int players = setup.players;
    for (int n = 1; n <= CartPlayerCount; ++n) {
        CartPlayer& player = settings.CartPlayerTable[n];
        const AudioSetup::Player& chosen = setup.player[n];
        if (n <= players)
            player.Device = setup.automatic ? qint16(0) : qint16(chosen.device);
        player.BackColor = chosen.backColor;
        player.ForeColor = chosen.foreColor;
    }
    for (const OrderRow& row : orders)
        settings.*row.setting = players > 0 ? row.value(setup.*row.index, players) : row.withoutPlayers;
    if (players <= 0)
        settings.LockPlayerWhenRecording = 0;
    else if (setup.lockPlayer)
        settings.LockPlayerWhenRecording = std::min(setup.lockedPlayer + 1, players);
}

int writeZqsVolumes(const Settings& settings) {
    platform::ProfileBatch batch(settings.LocalIniFile);
    PutSettingText(batch, RowOf<&Settings::CartGroupVolume>(), QString::number(settings.CartGroupVolume));
    PutSettingText(batch, RowOf<&Settings::AdvertVolume>(), QString::number(settings.AdvertVolume));
    return batch.commit();
}

AudiowallKeys keysOf(const AudioSetup& setup, const Settings& before) {
    AudiowallKeys keys(before, setup.wallFileExisted);
    const auto set = [&](const SettingRow& row, bool held, qint16 loaded) {
        keys.set(row, QString::number(held ? 1 : 0), held != (loaded != 0),
                 [](const QString&) { return true; });
    };
    set(RowOf<&Settings::AllowAudioFileLinking>(), setup.allowAudioFileLinking, before.AllowAudioFileLinking);
    set(RowOf<&Settings::UseCopyrightInCartChunk>(), setup.useCopyright, before.UseCopyrightInCartChunk);
    return keys;
}

// Writes the files and takes `next` into the settings, once it is stored. Where the user changed something in
// Audwall.ini, that file is checked before the local one is written.
SetupOutcome writeFiles(const AudioSetup& setup, Settings& next, Settings& settings) {
    std::optional<AudiowallKeys> keys;
    if (!next.CartPartTable[1].Location.trimmed().isEmpty())
        keys = keysOf(setup, settings);
    if (const int error = keys && keys->changed() ? keys->check() : 0)
        return {keys->errorText(error) + QStringLiteral("; nothing was stored."), {}, error};
    const QString local = platform::ProfilePath(next.LocalIniFile);
    if (const int error = SaveLocalFile(next))
        return NothingStored(error, local);
    const int volumesError = setup.zqs ? writeZqsVolumes(next) : 0;
    const int wallError = keys && !volumesError ? keys->write(next) : 0;
    if (volumesError || wallError) {
        next.AllowAudioFileLinking = settings.AllowAudioFileLinking;
        next.UseCopyrightInCartChunk = settings.UseCopyrightInCartChunk;
    }
    settings = next;
    if (const QString fault = RememberDevices(settings, setup.chosen); !fault.isEmpty())
        ShowExclamation(fault);
    if (volumesError)
        return {ProfileErrorText(volumesError, local) + QStringLiteral("; the volumes of cart groups and "
                                                                       "adverts were not stored."),
                {},
                volumesError};
    if (wallError && keys->changed())
        return {keys->errorText(wallError) +
                    QStringLiteral("; the settings of this workstation were stored."),
                {},
                wallError};
    if (wallError)
        keys->sayNotWritten(wallError);
    return {{}, {}, wallError};
}

AudioSetup fill(const Settings& settings, bool zqs) {
    AudioSetup setup;
    setup.zqs = zqs;
    for (const FlagRow& row : flags)
        setup.*row.held = settings.*row.setting != 0;
    for (const NumberRow& row : numbers)
        setup.*row.held = settings.*row.setting;
    for (const NumberRow& row : volumes)
        setup.*row.held = settings.*row.setting;
    for (const NumberRow& row : zqsVolumes)
        setup.*row.held = settings.*row.setting;
    for (const ListRow& row : lists)
        setup.*row.index = std::max(std::min(settings.*row.setting, row.highest()) - row.first, -1);
    const qsizetype devices = platform::WaveOutputs().size() + 1;
    for (int n = 1; n <= CartPlayerCount; ++n) {
        const CartPlayer& player = settings.CartPlayerTable[n];
        const bool known =
            n <= settings.TotalNumberCartPlayers && player.Device >= 0 && player.Device < devices;
        setup.player[n] = {known ? player.Device : 0, player.BackColor, player.ForeColor};
    }
    setup.audioEditor = settings.AudioEditor.trimmed();
    setup.lockPlayer = settings.LockPlayerWhenRecording != 0;
    setup.lockedPlayer = std::clamp(settings.LockPlayerWhenRecording, 1, CartPlayerCount) - 1;
    return setup;
}

// The record with the newer values of the settings, where the user left it as it was loaded.
AudioSetup withNewer(const AudioSetup& setup, const Settings& settings) {
    const AudioSetup& loaded = *setup.loaded;
    const AudioSetup newer = fill(settings, setup.zqs);
    AudioSetup held = setup;
    const auto follow = [&](auto... members) { Follow(held, loaded, newer, members...); };
    for (const FlagRow& row : flags)
        follow(row.held);
    follow(&AudioSetup::players);
    follow(&AudioSetup::fadePercent);
    follow(&AudioSetup::editorPriority);
    follow(&AudioSetup::format, &AudioSetup::channels, &AudioSetup::rate);
    for (const NumberRow& row : volumes)
        follow(row.held);
    for (const NumberRow& row : zqsVolumes)
        follow(row.held);
    for (const ListRow& row : lists)
        if (row.index != &AudioSetup::recordInto || !setup.chosen[0])
            follow(row.index);
    follow(&AudioSetup::audioEditor);
    follow(&AudioSetup::lockPlayer, &AudioSetup::lockedPlayer);
    for (int n = 1; n <= CartPlayerCount; ++n) {
        const auto followPlayer = [&](auto member) {
            Follow(held.player[n], loaded.player[n], newer.player[n], member);
        };
        if (!setup.chosen[size_t(n)])
            followPlayer(&AudioSetup::Player::device);
        followPlayer(&AudioSetup::Player::backColor);
        followPlayer(&AudioSetup::Player::foreColor);
    }
    // "As many as there are devices" is not a number that OK can store.
    if (held.players < 0)
        held.players = setup.players;
    return held;
}

} // namespace

AudioSetup LoadAudioSetup(const Settings& settings, bool zqs) {
    AudioSetup setup = fill(settings, zqs);
    setup.loaded = std::make_shared<const AudioSetup>(setup);
    setup.localKeys = LocalKeys(settings);
    setup.wallFileExisted = AudiowallFileExists(settings);
    return setup;
}

SetupOutcome StoreAudioSetup(const AudioSetup& shown, Settings& settings) {
    if (SetupOutcome refused = check(shown); !refused.stored())
        return refused;
    Settings next = settings;
    AudioSetup setup = shown;
    if (shown.localKeys.takeNewer(next) > 0) {
        setup = withNewer(shown, next);
        if (SetupOutcome refused = check(setup); !refused.stored()) {
            refused.message += QStringLiteral("\n\nAnother program has stored settings in the meantime. "
                                              "Nothing was stored; open this window again to see them.");
            return refused;
        }
    }
    SetupOutcome outcome;
    {
        const platform::PointerKeeper pointer(platform::Pointer::Wait);
        for (const NumberRow& row : numbers)
            next.*row.setting = setup.*row.held;
        if (setup.zqs)
            for (const NumberRow& row : zqsVolumes)
                next.*row.setting = setup.*row.held;
        else
            for (const NumberRow& row : volumes)
                next.*row.setting = setup.*row.held;
        next.AudioEditor = setup.audioEditor.trimmed();
        if (const QString warning = TooFewOutputsText(setup.players); !warning.isEmpty())
            ShowExclamation(warning);
        takePlayers(setup, next);
        for (const FlagRow& row : flags)
            next.*row.setting = flagOf(setup.*row.held);
        next.WLDebugMode = setup.debugMode;

        outcome = writeFiles(setup, next, settings);
        if (!outcome.stored())
            return outcome;
    }
    if (setup.zqs)
        platform::prompts().ask(
            {.text = QStringLiteral("You will have to restart %1 for these changes to take effect")
                         .arg(QLatin1String(ProductName)),
             .icon = platform::Icon::Information});
    return outcome;
}

QString TooFewOutputsText(int players) {
    const int count = CountSuitableOutputs(44100, 1);
    if (players <= count)
        return {};
    if (count == 0)
        return QStringLiteral("Warning : There are no suitable sound devices installed!");
    if (count == 1)
        return QStringLiteral("Warning : There is only 1 suitable sound device installed!");
    return QStringLiteral("Warning : There are only %1 suitable sound devices installed").arg(count);
}

QString TunelaneProgram() {
    return platform::SpecialFolderPath(commonFiles) +
           QStringLiteral("\\Norvane Shared\\Wavelane\\Tunelane.exe");
}

} // namespace tolvex
