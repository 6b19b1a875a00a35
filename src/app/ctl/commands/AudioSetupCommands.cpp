// The settings of the audio window: players, devices, recording format.
#include "app/ctl/Commands.h"
#include "app/ctl/SetupOutput.h"

#include "audio/AudioSetup.h"
#include "core/text/Numbers.h"
#include "platform/devices/AudioFormats.h"
#include "platform/devices/WaveDevices.h"

namespace tolvex::ctl {

namespace {

using namespace platform;

QString deviceName(const QList<WaveDevice>& devices, int number) {
    if (number == 0)
        return WaveMapperName();
    return number <= devices.size() ? WaveDeviceLabel(devices[number - 1]) : QString();
}

QJsonArray playersOf(const Settings& settings) {
    QJsonArray players;
    for (int n = 1; n <= std::clamp(settings.TotalNumberCartPlayers, 0, CartPlayerCount); ++n) {
        const int device = settings.CartPlayerTable[n].Device;
        players += QJsonObject{{QStringLiteral("player"), n},
                               {QStringLiteral("device"), device - 1},
                               {QStringLiteral("name"), deviceName(WaveOutputs(), device)}};
    }
    return players;
}

int show(Call& call) {
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    const Settings& s = call.station.settings;
    const QJsonArray players = playersOf(s);
    const QJsonObject format{{QStringLiteral("tag"), s.Format},
                             {QStringLiteral("channels"), s.Channels},
                             {QStringLiteral("rate"), s.KHz},
                             {QStringLiteral("text"), DescribeAudioFormat(s.Format, s.Channels, s.KHz)}};
    QJsonObject record{{QStringLiteral("players"), s.TotalNumberCartPlayers},
                       {QStringLiteral("automatic"), s.AutomaticPlayerAssignment != 0},
                       {QStringLiteral("instantPlayer"), s.Instant},
                       {QStringLiteral("recordingDevice"), s.RecordingSoundCard - 1},
                       {QStringLiteral("recordingName"), s.RecordingSoundCard > 0
                                                             ? deviceName(WaveInputs(), s.RecordingSoundCard)
                                                             : QString()},
                       {QStringLiteral("firstInOrder"), s.FirstPlayerInOrder},
                       {QStringLiteral("lastInOrder"), s.LastPlayerInOrder},
                       {QStringLiteral("editPlayer"), s.EditPlayer},
                       {QStringLiteral("ducking"), s.UsePlayerDucking != 0},
                       {QStringLiteral("generalVolume"), s.GeneralVolume},
                       {QStringLiteral("duckVolume"), s.DuckAudioVolume},
                       {QStringLiteral("sweeperVolume"), s.SweptVolume},
                       {QStringLiteral("fadePercent"), s.PlayerFadeFirePercent},
                       {QStringLiteral("format"), format},
                       {QStringLiteral("audioEditor"), s.AudioEditor}};
    if (call.output.json())
        record[QStringLiteral("devices")] = players;
    else
        record[QStringLiteral("format")] = format[QStringLiteral("text")];
    call.output.record(record, {{"players", "Cart players"},
                                {"automatic", "Given out automatically"},
                                {"instantPlayer", "Player of instant carts"},
                                {"recordingName", "Recording device"},
                                {"firstInOrder", "First player in order"},
                                {"lastInOrder", "Last player in order"},
                                {"editPlayer", "Player for editing"},
                                {"generalVolume", "Volume of carts"},
                                {"duckVolume", "Volume while ducked"},
                                {"sweeperVolume", "Volume of sweepers"},
                                {"fadePercent", "Fire when faded to"},
                                {"format", "Recording format"},
                                {"audioEditor", "Audio editor"}});
    if (!call.output.json() && !players.isEmpty())
        call.output.records(players,
                            {{"player", "Player", true}, {"device", "No", true}, {"name", "Device"}});
    return Done;
}

// The number to store for an output that is given by its number, name or id; 0 for the mapper.
std::optional<int> deviceByWord(const QString& word) {
    const QList<WaveDevice>& outputs = WaveOutputs();
    if (word.compare(QLatin1String("mapper"), Qt::CaseInsensitive) == 0)
        return 0;
    if (const std::optional<int> number = NumberIn(word))
        return *number >= -1 && *number < outputs.size() ? std::optional(*number + 1) : std::nullopt;
    for (qsizetype i = 0; i < outputs.size(); ++i)
        if (word.compare(outputs[i].name, Qt::CaseInsensitive) == 0 || word == outputs[i].id)
            return int(i) + 1;
    return std::nullopt;
}

int players(Call& call) {
    const std::optional<int> count = NumberIn(call.argument(0));
    if (!count || *count < 0)
        return call.wrong(QStringLiteral("A number of players from 0 to %1 is expected, not \"%2\".")
                              .arg(CartPlayerCount)
                              .arg(call.argument(0)));
    const QStringList words = call.arguments.mid(1);
    if (call.has("--auto") && call.has("--manual"))
        return call.wrong(QStringLiteral("Either --auto or --manual is expected, not both."));
    if (!words.isEmpty() && !call.has("--manual"))
        return call.wrong(QStringLiteral("Devices belong to manual assignment: --manual is expected."));
    if (words.size() > *count)
        return call.wrong(
            QStringLiteral("%1 devices for %2 players are too many.").arg(words.size()).arg(*count));
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    AudioSetup setup = LoadAudioSetup(call.station.settings);
    setup.players = *count;
    if (call.has("--auto") || call.has("--manual"))
        setup.automatic = call.has("--auto");
    for (int n = 1; n <= std::min(int(words.size()), CartPlayerCount); ++n) {
        const std::optional<int> device = deviceByWord(words[n - 1]);
        if (!device)
            return call.wrong(
                QStringLiteral("\"%1\" is not an output: \"tolvexctl audio devices\" lists their "
                               "numbers and names.")
                    .arg(words[n - 1]));
        setup.player[n].device = *device;
        setup.chosen.set(size_t(n));
    }
    return EndSetup(call, StoreAudioSetup(setup, call.station.settings));
}

const AudioFormatTag* tagByWord(const QString& word) {
    if (const std::optional<int> number = NumberIn(word))
        return FindAudioFormatTag(*number);
    for (const AudioFormatTag& tag : AudioFormatTags())
        if (word.compare(tag.name, Qt::CaseInsensitive) == 0)
            return &tag;
    return nullptr;
}

QString noTag(const QString& word) {
    return QStringLiteral("\"%1\" is not a format of this machine: \"tolvexctl audio formats\" lists them.")
        .arg(word);
}

int formats(Call& call) {
    QJsonArray records;
    if (call.arguments.isEmpty()) {
        for (const AudioFormatTag& tag : AudioFormatTags())
            records += QJsonObject{{QStringLiteral("tag"), tag.tag},
                                   {QStringLiteral("name"), tag.name},
                                   {QStringLiteral("formats"), tag.formats.size()}};
        call.output.records(records, {{"tag", "Tag", true}, {"name", "Name"}, {"formats", "Formats", true}});
        return records.isEmpty() ? No : Done;
    }
    const AudioFormatTag* tag = tagByWord(call.argument(0));
    if (!tag)
        return call.no(noTag(call.argument(0)));
    for (const AudioFormat& format : tag->formats)
        records += QJsonObject{{QStringLiteral("tag"), format.tag},
                               {QStringLiteral("channels"), format.channels},
                               {QStringLiteral("rate"), format.rate},
                               {QStringLiteral("bits"), format.bits},
                               {QStringLiteral("text"), AudioFormatDetails(format)}};
    call.output.records(records, {{"channels", "Channels", true},
                                  {"rate", "Rate", true},
                                  {"bits", "Bits", true},
                                  {"text", "Attributes"}});
    return Done;
}

int format(Call& call) {
    const AudioFormatTag* tag = tagByWord(call.argument(0));
    if (!tag)
        return call.wrong(noTag(call.argument(0)));
    const int channels = NumberIn(call.argument(1)).value_or(0);
    const int rate = NumberIn(call.argument(2)).value_or(0);
    const std::optional<AudioFormat> nearest = SuggestAudioFormat(tag->tag, channels, rate);
    if (!nearest || nearest->channels != channels || nearest->rate != rate)
        return call.wrong(
            QStringLiteral("%1 cannot be recorded with %2 channels at %3 hertz; the nearest is %4.")
                .arg(tag->name, call.argument(1), call.argument(2),
                     nearest ? AudioFormatDetails(*nearest) : QStringLiteral("none")));
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    AudioSetup setup = LoadAudioSetup(call.station.settings);
    setup.format = tag->tag;
    setup.channels = channels;
    setup.rate = rate;
    return EndSetup(call, StoreAudioSetup(setup, call.station.settings));
}

} // namespace

CommandRows AudioSetupCommands() {
    return {
        {"audio show", "", "Show cart players, devices, volumes and the recording format", show},
        Changing({"audio players",
                  "N [DEVICE] ...",
                  "Set the number of cart players and how they get their devices; a device is a number of "
                  "\"audio devices\", a name, or \"mapper\" for the system's own choice",
                  players,
                  {{"--auto", nullptr, "the players take the suitable outputs in turn"},
                   {"--manual", nullptr, "each player has the device given, or keeps the one it has"}}}),
        {"audio formats", "[TAG]", "List the recording formats, or the variants of one, by number or name",
         formats},
        Changing({"audio format", "TAG CHANNELS RATE", "Set the recording format", format}),
    };
}

} // namespace tolvex::ctl
