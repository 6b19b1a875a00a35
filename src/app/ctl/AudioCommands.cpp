// Wave devices of this machine.
#include "app/ctl/Commands.h"

#include "platform/devices/WaveDevices.h"

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

} // namespace

CommandRows AudioCommands() {
    return {
        {"audio devices", "", "List wave outputs and inputs with the 16-bit formats they support", devices},
    };
}

} // namespace tolvex::ctl
