// Audio formats through libsndfile: those of its encodings that it can really write into a WAV file. Its
// format check accepts some that this build cannot write, so each one is tried in memory; the header it
// writes shows which tag and sample size the encoding has.
#include "platform/devices/AudioFormats.h"

#include <QMap>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <sndfile.h>
#include <tuple>

namespace tolvex::platform {

namespace {

// The rates that audio files of the suite have.
constexpr qint32 rates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};

// Names that users of the suite know; other tags use the library's name of the encoding.
struct TagName {
    qint32 tag;
    const char* name;
};
constexpr TagName tagNames[] = {
    {0x01, "PCM"},         {0x02, "Microsoft ADPCM"}, {0x03, "IEEE Float"},
    {0x06, "CCITT A-Law"}, {0x07, "CCITT u-Law"},     {0x11, "IMA ADPCM"},
    {0x31, "GSM 6.10"},    {0x38, "NMS VBXADPCM"},    {0x40, "G.721 ADPCM"},
    {0x50, "MPEG"},        {0x55, "MPEG Layer-3"},
};

struct MemoryFile {
    QByteArray bytes;
    sf_count_t position = 0;
};

MemoryFile& fileOf(void* user) {
    return *static_cast<MemoryFile*>(user);
}

SF_VIRTUAL_IO inMemory() {
    return {[](void* user) { return sf_count_t{fileOf(user).bytes.size()}; },
            [](sf_count_t offset, int whence, void* user) {
                MemoryFile& file = fileOf(user);
                const sf_count_t from = whence == SEEK_SET   ? 0
                                        : whence == SEEK_CUR ? file.position
                                                             : sf_count_t{file.bytes.size()};
                return file.position = std::max<sf_count_t>(from + offset, 0);
            },
            [](void* to, sf_count_t count, void* user) {
                MemoryFile& file = fileOf(user);
                const sf_count_t there = std::clamp<sf_count_t>(file.bytes.size() - file.position, 0, count);
                std::memcpy(to, file.bytes.constData() + file.position, std::size_t(there));
                file.position += there;
                return there;
            },
            [](const void* from, sf_count_t count, void* user) {
                MemoryFile& file = fileOf(user);
                if (file.bytes.size() < file.position)
                    file.bytes.append(file.position - file.bytes.size(), '\0');
                file.bytes.replace(file.position, count, static_cast<const char*>(from), count);
                file.position += count;
                return count;
            },
            [](void* user) { return fileOf(user).position; }};
}

// The format in the header of an empty WAV file of the encoding; nothing if it cannot be written.
std::optional<AudioFormat> tryToWrite(int encoding, qint32 channels, qint32 rate) {
    SF_INFO info{};
    info.format = SF_FORMAT_WAV | encoding;
    info.channels = channels;
    info.samplerate = rate;
    if (!sf_format_check(&info))
        return std::nullopt;
    MemoryFile file;
    SF_VIRTUAL_IO io = inMemory();
    SNDFILE* sound = sf_open_virtual(&io, SFM_WRITE, &info, &file);
    if (!sound)
        return std::nullopt;
    sf_close(sound);
    const qsizetype header = file.bytes.indexOf("fmt ");
    if (header < 0 || file.bytes.size() < header + 24)
        return std::nullopt;
    const auto word = [&file, header](qsizetype offset) {
        const char* at = file.bytes.constData() + header + 8 + offset;
        return qint32(quint8(at[0]) | quint8(at[1]) << 8);
    };
    return AudioFormat{word(0), channels, rate, word(14)};
}

QString nameOf(qint32 tag, const char* encoding) {
    for (const TagName& row : tagNames)
        if (row.tag == tag)
            return QLatin1String(row.name);
    return QString::fromUtf8(encoding);
}

} // namespace

QList<AudioFormatTag> FindAudioFormats() {
    QMap<qint32, AudioFormatTag> tags;
    int count = 0;
    sf_command(nullptr, SFC_GET_FORMAT_SUBTYPE_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO encoding{};
        encoding.format = i;
        if (sf_command(nullptr, SFC_GET_FORMAT_SUBTYPE, &encoding, sizeof encoding) != 0)
            continue;
        for (const qint32 rate : rates)
            for (const qint32 channels : {1, 2})
                if (const auto format = tryToWrite(encoding.format, channels, rate)) {
                    AudioFormatTag& tag = tags[format->tag];
                    tag.tag = format->tag;
                    if (tag.name.isEmpty())
                        tag.name = nameOf(tag.tag, encoding.name);
                    tag.formats += *format;
                }
    }
    for (AudioFormatTag& tag : tags)
        std::sort(tag.formats.begin(), tag.formats.end(), [](const AudioFormat& a, const AudioFormat& b) {
            return std::tie(a.rate, a.channels, a.bits) < std::tie(b.rate, b.channels, b.bits);
        });
    return tags.values();
}

} // namespace tolvex::platform
