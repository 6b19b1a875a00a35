// Wave devices through ALSA: the converting device of every card's outputs and inputs, and the devices that
// the user has declared with a description.
#include "platform/devices/WaveNumbers.h"

#include <memory>

#include <alsa/asoundlib.h>
#include <cstdlib>

namespace tolvex::platform {

namespace {

// Names that the sound system itself declares: other ways to a listed device, or no device at all.
constexpr const char* systemNames[] = {
    "null",       "default",    "sysdefault", "pulse",      "pipewire", "jack",       "oss",
    "lavrate",    "samplerate", "speex",      "speexrate",  "upmix",    "vdownmix",   "a52",
    "dmix",       "dsnoop",     "hw",         "plughw",     "front",    "surround21", "surround40",
    "surround41", "surround50", "surround51", "surround71", "iec958",   "spdif",      "hdmi",
    "modem",      "phoneline",  "usbstream",
};

struct FormatQuestion {
    unsigned rate;
    unsigned channels;
    quint32 flag;
};
constexpr FormatQuestion questions[] = {
    {11025, 1, WaveFormat1M16}, {11025, 2, WaveFormat1S16}, {22050, 1, WaveFormat2M16},
    {22050, 2, WaveFormat2S16}, {44100, 1, WaveFormat4M16}, {44100, 2, WaveFormat4S16},
};

void keepQuiet(const char*, int, const char*, int, const char*, ...) {}

quint32 formatsOf(snd_pcm_t* pcm) {
    snd_pcm_hw_params_t* parameters = nullptr;
    if (snd_pcm_hw_params_malloc(&parameters) < 0)
        return 0;
    const std::unique_ptr<snd_pcm_hw_params_t, void (*)(snd_pcm_hw_params_t*)> owner(parameters,
                                                                                     &snd_pcm_hw_params_free);
    quint32 formats = 0;
    for (const FormatQuestion& question : questions)
        // Each query starts from scratch: a channel count may rule out a rate.
        if (snd_pcm_hw_params_any(pcm, parameters) >= 0 &&
            snd_pcm_hw_params_set_format(pcm, parameters, SND_PCM_FORMAT_S16_LE) == 0 &&
            snd_pcm_hw_params_set_channels(pcm, parameters, question.channels) == 0 &&
            snd_pcm_hw_params_test_rate(pcm, parameters, question.rate, 0) == 0)
            formats |= question.flag;
    return formats;
}

// Adds a device in the given direction, if it opens there.
void ask(QList<KnownWaveDevice>& found, snd_pcm_stream_t direction, const QString& id, const QString& name,
         const QString& place) {
    KnownWaveDevice known;
    known.device.id = id;
    known.device.name = name;
    known.place = place;
    snd_pcm_t* pcm = nullptr;
    const int error = snd_pcm_open(&pcm, id.toUtf8().constData(), direction, SND_PCM_NONBLOCK);
    known.busy = error == -EBUSY || error == -EAGAIN;
    if (error < 0 && !known.busy)
        return;
    if (pcm) {
        known.device.formats = formatsOf(pcm);
        snd_pcm_close(pcm);
    }
    found += known;
}

void ask(KnownWaveDevices& found, const QString& id, const QString& name) {
    ask(found.outputs, SND_PCM_STREAM_PLAYBACK, id, name, {});
    ask(found.inputs, SND_PCM_STREAM_CAPTURE, id, name, {});
}

// Where a card is plugged in, from the system's device tree.
QString placeOfCard(int card) {
    const QByteArray link = "/sys/class/sound/card" + QByteArray::number(card) + "/device";
    const std::unique_ptr<char, void (*)(void*)> path(::realpath(link.constData(), nullptr), &std::free);
    return path ? QString::fromUtf8(path.get()) : QString();
}

void askCard(KnownWaveDevices& found, int card) {
    snd_ctl_t* control = nullptr;
    if (snd_ctl_open(&control, ("hw:" + QByteArray::number(card)).constData(), SND_CTL_NONBLOCK) < 0)
        return;
    const std::unique_ptr<snd_ctl_t, int (*)(snd_ctl_t*)> owner(control, &snd_ctl_close);
    snd_ctl_card_info_t* cardInfo = nullptr;
    snd_pcm_info_t* info = nullptr;
    snd_ctl_card_info_alloca(&cardInfo);
    snd_pcm_info_alloca(&info);
    if (snd_ctl_card_info(control, cardInfo) < 0)
        return;
    for (int number = -1; snd_ctl_pcm_next_device(control, &number) == 0 && number >= 0;)
        for (const snd_pcm_stream_t direction : {SND_PCM_STREAM_PLAYBACK, SND_PCM_STREAM_CAPTURE}) {
            snd_pcm_info_set_device(info, static_cast<unsigned>(number));
            snd_pcm_info_set_subdevice(info, 0);
            snd_pcm_info_set_stream(info, direction);
            if (snd_ctl_pcm_info(control, info) < 0)
                continue;
            const QString id = QStringLiteral("plughw:CARD=%1,DEV=%2")
                                   .arg(QString::fromUtf8(snd_ctl_card_info_get_id(cardInfo)))
                                   .arg(number);
            const QString name =
                QStringLiteral("%1, %2").arg(QString::fromUtf8(snd_ctl_card_info_get_name(cardInfo)),
                                             QString::fromUtf8(snd_pcm_info_get_name(info)));
            const QString place = placeOfCard(card);
            ask(direction == SND_PCM_STREAM_PLAYBACK ? found.outputs : found.inputs, direction, id, name,
                place.isEmpty() ? place : place + u'/' + QString::number(number));
        }
}

// The description of a declared device, first line only.
QString hintText(const void* hint, const char* field) {
    const std::unique_ptr<char, void (*)(void*)> text(snd_device_name_get_hint(hint, field), &std::free);
    return QString::fromUtf8(text.get()).section(u'\n', 0, 0).trimmed();
}

void askDeclared(KnownWaveDevices& found) {
    void** hints = nullptr;
    if (snd_device_name_hint(-1, "pcm", &hints) < 0)
        return;
    for (void** hint = hints; *hint; ++hint) {
        const QString id = hintText(*hint, "NAME");
        const QString name = hintText(*hint, "DESC");
        bool isSystems = id.isEmpty() || id.contains(u':');
        for (const char* systemName : systemNames)
            isSystems = isSystems || id == QLatin1String(systemName);
        if (!isSystems)
            ask(found, id, name.isEmpty() ? id : name);
    }
    snd_device_name_free_hint(hints);
}

} // namespace

KnownWaveDevices FindWaveDevices() {
    KnownWaveDevices found;
    snd_lib_error_set_handler(&keepQuiet);
    // The configuration may have changed since the last time.
    snd_config_update_free_global();
    for (int card = -1; snd_card_next(&card) == 0 && card >= 0;)
        askCard(found, card);
    askDeclared(found);
    // A sound server without cards of this machine: its one device. Beside other devices it would list one of
    // them twice.
    if (found.outputs.isEmpty() && found.inputs.isEmpty())
        ask(found, QStringLiteral("default"), QStringLiteral("Default sound device"));
    snd_config_update_free_global();
    return found;
}

} // namespace tolvex::platform
