// An ALSA device type for tests, "studio": it supports exactly its declared rates and channel counts, in one
// direction or both, and plays nothing.
//
//     pcm.card1 { type studio rates [ 44100 48000 ] channels [ 1 2 ] direction playback busy 0 hint { ... } }
#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Device {
    snd_pcm_ioplug_t plug{};
};

int start(snd_pcm_ioplug_t*) {
    return 0;
}
snd_pcm_sframes_t pointer(snd_pcm_ioplug_t*) {
    return 0;
}
int close(snd_pcm_ioplug_t* plug) {
    delete static_cast<Device*>(plug->private_data);
    return 0;
}

const snd_pcm_ioplug_callback_t callbacks = [] {
    snd_pcm_ioplug_callback_t table{};
    table.start = &start;
    table.stop = &start;
    table.pointer = &pointer;
    table.close = &close;
    return table;
}();

std::vector<unsigned> numbersOf(snd_config_t* list) {
    std::vector<unsigned> numbers;
    snd_config_iterator_t i = nullptr;
    snd_config_iterator_t next = nullptr;
    snd_config_for_each(i, next, list) {
        long number = 0;
        if (snd_config_get_integer(snd_config_iterator_entry(i), &number) == 0)
            numbers.push_back(static_cast<unsigned>(number));
    }
    return numbers;
}

} // namespace

extern "C" {

SND_PCM_PLUGIN_DEFINE_FUNC(studio) {
    std::vector<unsigned> rates;
    std::vector<unsigned> channels;
    std::string direction;
    long busy = 0;
    snd_config_iterator_t i = nullptr;
    snd_config_iterator_t next = nullptr;
    snd_config_for_each(i, next, conf) {
        snd_config_t* entry = snd_config_iterator_entry(i);
        const char* id = nullptr;
        const char* text = nullptr;
        snd_config_get_id(entry, &id);
        if (std::strcmp(id, "rates") == 0)
            rates = numbersOf(entry);
        else if (std::strcmp(id, "channels") == 0)
            channels = numbersOf(entry);
        else if (std::strcmp(id, "busy") == 0)
            snd_config_get_integer(entry, &busy);
        else if (std::strcmp(id, "direction") == 0 && snd_config_get_string(entry, &text) == 0)
            direction = text;
    }
    static_cast<void>(root);
    if (!direction.empty() && (direction == "playback") != (stream == SND_PCM_STREAM_PLAYBACK))
        return -EINVAL;
    if (busy != 0)
        return -EBUSY;
    auto* device = new Device;
    device->plug.version = SND_PCM_IOPLUG_VERSION;
    device->plug.name = "Studio";
    device->plug.poll_fd = -1;
    device->plug.callback = &callbacks;
    device->plug.private_data = device;
    const int error = snd_pcm_ioplug_create(&device->plug, name, stream, mode);
    if (error < 0) {
        delete device;
        return error;
    }
    snd_pcm_ioplug_set_param_list(&device->plug, SND_PCM_IOPLUG_HW_RATE, static_cast<unsigned>(rates.size()),
                                  rates.data());
    snd_pcm_ioplug_set_param_list(&device->plug, SND_PCM_IOPLUG_HW_CHANNELS,
                                  static_cast<unsigned>(channels.size()), channels.data());
    *pcmp = device->plug.pcm;
    return 0;
}

SND_PCM_PLUGIN_SYMBOL(studio);
}
