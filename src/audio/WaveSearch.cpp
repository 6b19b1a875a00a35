#include "audio/WaveSearch.h"

namespace tolvex {

namespace {

using platform::WaveDevice;

struct KnownFormat {
    int rate;
    quint32 oneChannel;
    quint32 twoChannels;
};
constexpr KnownFormat knownFormats[] = {
    {11025, platform::WaveFormat1M16, platform::WaveFormat1S16},
    {22050, platform::WaveFormat2M16, platform::WaveFormat2S16},
    {44100, platform::WaveFormat4M16, platform::WaveFormat4S16},
};

bool suits(const WaveDevice& device, quint32 flag) {
    return (device.formats & flag) != 0;
}

int lastSuitable(const QList<WaveDevice>& devices, quint32 flag) {
    for (qsizetype number = devices.size() - 1; number >= 0; --number)
        if (suits(devices[number], flag))
            return int(number);
    return -1;
}

} // namespace

quint32 WaveFormatFlagFor(int rate, int channels) {
    for (const KnownFormat& format : knownFormats)
        if (format.rate == rate)
            return channels == 1 ? format.oneChannel : channels == 2 ? format.twoChannels : 0;
    return 0;
}

int FindSuitableOutput(int from, int rate, int channels) {
    const quint32 flag = WaveFormatFlagFor(rate, channels);
    const QList<WaveDevice>& outputs = platform::WaveOutputs();
    for (int number = std::max(from, 0); number < outputs.size(); ++number)
        if (suits(outputs[number], flag))
            return number;
    return -1;
}

int CountSuitableOutputs(int rate, int channels) {
    const quint32 flag = WaveFormatFlagFor(rate, channels);
    const QList<WaveDevice>& outputs = platform::WaveOutputs();
    return int(std::count_if(outputs.begin(), outputs.end(),
                             [flag](const WaveDevice& output) { return suits(output, flag); }));
}

int LastSuitableOutput(int rate, int channels) {
    return lastSuitable(platform::WaveOutputs(), WaveFormatFlagFor(rate, channels));
}

int LastSuitableInput(int rate, int channels) {
    return lastSuitable(platform::WaveInputs(), WaveFormatFlagFor(rate, channels));
}

} // namespace tolvex
