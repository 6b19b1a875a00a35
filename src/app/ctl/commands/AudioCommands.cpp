// Commands for the wave devices of this machine: list, test, repair.
#include "app/ctl/Commands.h"
#include "app/ctl/SetupOutput.h"

#include "audio/DeviceIdentity.h"
#include "audio/devices/LevelReader.h"
#include "audio/devices/ToneTest.h"
#include "core/text/Numbers.h"
#include "platform/devices/WaveDevices.h"

#include <QEventLoop>
#include <QTimer>

#include <cmath>

namespace tolvex::ctl {

namespace {

using namespace platform;

struct FormatName {
    quint32 flag;
    const char* name;
};
constexpr FormatName formatNames[] = {
    {WaveFormat1M16, "11025 mono"},   {WaveFormat1S16, "11025 stereo"}, {WaveFormat2M16, "22050 mono"},
    {WaveFormat2S16, "22050 stereo"}, {WaveFormat4M16, "44100 mono"},   {WaveFormat4S16, "44100 stereo"},
};

void collect(const QList<WaveDevice>& list, const char* direction, QJsonArray& records) {
    for (qsizetype i = 0; i < list.size(); ++i) {
        QJsonArray formats;
        for (const FormatName& format : formatNames)
            if (list[i].formats & format.flag)
                formats += QLatin1String(format.name);
        records += QJsonObject{{QStringLiteral("direction"), QLatin1String(direction)},
                               {QStringLiteral("number"), i},
                               {QStringLiteral("name"), list[i].name},
                               {QStringLiteral("id"), list[i].id},
                               {QStringLiteral("present"), list[i].present},
                               {QStringLiteral("formats"), formats}};
    }
}

int devices(Call& call) {
    QJsonArray records;
    collect(WaveOutputs(), "output", records);
    collect(WaveInputs(), "input", records);
    if (records.isEmpty() && !call.output.json())
        return call.no(QStringLiteral("This machine has no wave device."));
    call.output.records(records, {{"direction", "Direction"},
                                  {"number", "No", true},
                                  {"name", "Name"},
                                  {"present", "Present"},
                                  {"formats", "16-bit formats"}});
    return records.isEmpty() ? No : Done;
}

// The time of --seconds, `usual` without it; nothing for a text that is not a time to wait.
std::optional<double> secondsOf(const Call& call, double usual) {
    if (!call.has("--seconds"))
        return usual;
    bool good = false;
    const double seconds = call.option("--seconds").toDouble(&good);
    return good && seconds > 0 && seconds <= 3600 ? std::optional(seconds) : std::nullopt;
}

int noSeconds(const Call& call) {
    return call.wrong(QStringLiteral("--seconds is expected with a number up to 3600, not \"%1\".")
                          .arg(call.option("--seconds")));
}

int test(Call& call) {
    const std::optional<double> seconds = secondsOf(call, 1.5);
    if (!seconds)
        return noSeconds(call);
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    const Settings& s = call.station.settings;
    const int player = NumberIn(call.argument(0)).value_or(0);
    if (player < 1 || player > s.TotalNumberCartPlayers)
        return call.wrong(QStringLiteral("A player from 1 to %1 is expected, not \"%2\".")
                              .arg(s.TotalNumberCartPlayers)
                              .arg(call.argument(0)));
    const int number = s.CartPlayerTable[player].Device;
    const QList<WaveDevice>& outputs = WaveOutputs();
    if (number > outputs.size())
        return call.fail(
            QStringLiteral("Player %1 has device %2, which is not there.").arg(player).arg(number - 1));
    ToneTest tone;
    QString why;
    if (!tone.start(number > 0 ? &outputs[number - 1] : nullptr, s.GeneralVolume, *seconds, &why))
        return call.fail(why);
    call.output.note(QStringLiteral("Player %1 is %2.").arg(player).arg(tone.description()));
    QEventLoop loop;
    tone.onEnd = [&](const QString& how) {
        why = how;
        loop.quit();
    };
    loop.exec();
    return why.isEmpty() ? Done : call.fail(why);
}

int level(Call& call) {
    const std::optional<double> seconds = secondsOf(call, 3);
    if (!seconds)
        return noSeconds(call);
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    const QList<WaveDevice>& inputs = WaveInputs();
    const int number = call.station.settings.RecordingSoundCard;
    if (number < 1 || number > inputs.size())
        return call.fail(QStringLiteral("No recording device is set."));
    LevelReader reader;
    QString why;
    if (!reader.start(&inputs[number - 1], &why))
        return call.fail(why);
    SoundLevel highest;
    QEventLoop loop;
    reader.onLevel = [&highest](const SoundLevel& now) {
        for (std::size_t side : {0, 1})
            highest.peak[side] = std::max(highest.peak[side], now.peak[side]);
    };
    reader.onEnd = [&](const QString& how) {
        why = how;
        loop.quit();
    };
    QTimer::singleShot(int(*seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
    if (!why.isEmpty())
        return call.fail(why);
    const auto decibels = [](double peak) { return std::round(DecibelsOf(peak) * 10) / 10; };
    call.output.record({{QStringLiteral("device"), inputs[number - 1].name},
                        {QStringLiteral("left"), decibels(highest.peak[0])},
                        {QStringLiteral("right"), decibels(highest.peak[1])},
                        {QStringLiteral("level"), LevelWord(highest.loudest())}},
                       {{"device", "Device"},
                        {"left", "Peak left (dBFS)"},
                        {"right", "Peak right (dBFS)"},
                        {"level", "Level"}});
    return Done;
}

int repair(Call& call) {
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    Settings& s = call.station.settings;
    const QList<MovedDevice> moved = FindMovedDevices(s);
    const SetupOutcome outcome = RepairDevices(s);
    if (!outcome.stored())
        return EndSetup(call, outcome);
    QJsonArray records;
    bool gone = false;
    for (const MovedDevice& device : moved) {
        gone = gone || device.now < 0;
        records += QJsonObject{{QStringLiteral("player"), device.player},
                               {QStringLiteral("name"), device.name},
                               {QStringLiteral("number"), device.now},
                               {QStringLiteral("text"), device.text()}};
    }
    if (records.isEmpty() && !call.output.json())
        call.output.note(QStringLiteral("Every number means the device that it meant when it was saved."));
    else
        call.output.records(records, {{"text", "Devices that have moved"}});
    if (gone)
        call.output.note(QStringLiteral("A device that is not there keeps its number."));
    return gone ? No : Done;
}

} // namespace

CommandRows AudioCommands() {
    return {
        {"audio devices", "", "List wave outputs and inputs with the 16-bit formats they support", devices},
        {"audio test",
         "PLAYER",
         "Play a tone on the device of a player, to the left, to the right and to both sides",
         test,
         {{"--seconds", "N", "for so long; 1.5 without it"}}},
        {"audio level",
         "",
         "Measure the level of the recording device",
         level,
         {{"--seconds", "N", "for so long; 3 without it"}}},
        Changing({"audio repair", "",
                  "Correct the device numbers of players and recording; 1 if a device is missing", repair}),
    };
}

} // namespace tolvex::ctl
