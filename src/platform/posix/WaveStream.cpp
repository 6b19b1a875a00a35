// Wave devices for playing and recording through ALSA.
#include "platform/devices/WaveStream.h"

#include "platform/process/Holders.h"

#include <alsa/asoundlib.h>
#include <cerrno>

namespace tolvex::platform {

namespace {

constexpr unsigned wantedRate = 44100;
constexpr unsigned bufferMicroseconds = 200'000;

void keepQuiet(const char*, int, const char*, int, const char*, ...) {}

class AlsaStream : public WaveStream {
public:
    AlsaStream(snd_pcm_t* pcm, int rate, int channels)
        : pcm_(pcm)
        , rate_(rate)
        , channels_(channels) {}
    ~AlsaStream() override {
        snd_pcm_drop(pcm_);
        snd_pcm_close(pcm_);
    }
    AlsaStream(const AlsaStream&) = delete;
    AlsaStream& operator=(const AlsaStream&) = delete;

    int rate() const override { return rate_; }
    int channels() const override { return channels_; }
    qint64 write(const qint16* frames, qint64 count) override {
        return moved(snd_pcm_writei(pcm_, frames, snd_pcm_uframes_t(count)));
    }
    qint64 read(qint16* frames, qint64 count) override {
        return moved(snd_pcm_readi(pcm_, frames, snd_pcm_uframes_t(count)));
    }

private:
    // Recovers a device after an underrun or overrun.
    qint64 moved(snd_pcm_sframes_t frames) {
        if (frames >= 0)
            return frames;
        if (frames == -EAGAIN)
            return 0;
        return snd_pcm_recover(pcm_, int(frames), 1) < 0 ? -1 : 0;
    }

    snd_pcm_t* pcm_;
    int rate_;
    int channels_;
};

// 16 bits, the wanted rate or the nearest, two channels or one. Returns the rate, 0 if the device refuses.
int setUp(snd_pcm_t* pcm, unsigned channels) {
    snd_pcm_hw_params_t* parameters = nullptr;
    snd_pcm_hw_params_alloca(&parameters);
    unsigned rate = wantedRate;
    unsigned buffer = bufferMicroseconds;
    if (snd_pcm_hw_params_any(pcm, parameters) < 0 ||
        snd_pcm_hw_params_set_access(pcm, parameters, SND_PCM_ACCESS_RW_INTERLEAVED) < 0 ||
        snd_pcm_hw_params_set_format(pcm, parameters, SND_PCM_FORMAT_S16) < 0 ||
        snd_pcm_hw_params_set_channels(pcm, parameters, channels) < 0 ||
        snd_pcm_hw_params_set_rate_near(pcm, parameters, &rate, nullptr) < 0)
        return 0;
    snd_pcm_hw_params_set_buffer_time_near(pcm, parameters, &buffer, nullptr);
    return snd_pcm_hw_params(pcm, parameters) < 0 ? 0 : int(rate);
}

// Who has a card's device open: "hw:CARD=name,DEV=number" and the like.
std::optional<Holder> holderOf(const QString& id, WaveDirection direction) {
    const QString card = id.section(QStringLiteral("CARD="), 1).section(u',', 0, 0);
    const int index = card.isEmpty() ? -1 : snd_card_get_index(card.toUtf8().constData());
    if (index < 0)
        return std::nullopt;
    const QString number = id.section(QStringLiteral("DEV="), 1).section(u',', 0, 0);
    return HolderOfDevice(QStringLiteral("/dev/snd/pcmC%1D%2%3")
                              .arg(index)
                              .arg(number.isEmpty() ? QStringLiteral("0") : number)
                              .arg(direction == WaveDirection::Play ? u'p' : u'c'));
}

QString reasonOf(int error, const QString& id, WaveDirection direction) {
    if (error == -EBUSY || error == -EAGAIN) {
        const std::optional<Holder> holder = holderOf(id, direction);
        return holder ? QStringLiteral("is busy: %1 (process %2) uses it")
                            .arg(holder->program)
                            .arg(holder->process)
                      : QStringLiteral("is busy: another program uses it");
    }
    if (error == -ENOENT || error == -ENODEV || error == -ENXIO)
        return QStringLiteral("is not there");
    return QStringLiteral("cannot be opened: %1").arg(QString::fromLocal8Bit(snd_strerror(error)));
}

} // namespace

std::unique_ptr<WaveStream> OpenWaveStream(WaveDirection direction, const WaveDevice* device, QString* why) {
    const QString id = device ? device->id : QStringLiteral("default");
    const QString name = device ? device->name : WaveMapperName();
    snd_lib_error_set_handler(&keepQuiet);
    snd_pcm_t* pcm = nullptr;
    const int error =
        snd_pcm_open(&pcm, id.toUtf8().constData(),
                     direction == WaveDirection::Play ? SND_PCM_STREAM_PLAYBACK : SND_PCM_STREAM_CAPTURE,
                     SND_PCM_NONBLOCK);
    if (error < 0) {
        *why = QStringLiteral("%1 %2.").arg(name, reasonOf(error, id, direction));
        return nullptr;
    }
    for (const unsigned channels : {2U, 1U})
        if (const int rate = setUp(pcm, channels)) {
            if (direction == WaveDirection::Record)
                snd_pcm_start(pcm);
            return std::make_unique<AlsaStream>(pcm, rate, int(channels));
        }
    snd_pcm_close(pcm);
    *why = QStringLiteral("%1 takes no 16-bit audio.").arg(name);
    return nullptr;
}

} // namespace tolvex::platform
