// The formats in which this machine can record audio files: format tags, numbered as in a WAV file, and for
// each the channels, rates and sample sizes that can be written. The system's codecs are asked once.
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace tolvex::platform {

struct AudioFormat {
    qint32 tag = 1; // 1: plain PCM
    qint32 channels = 2;
    qint32 rate = 44100; // hertz
    qint32 bits = 16;    // per sample; 0 if the format has none

    friend bool operator==(const AudioFormat&, const AudioFormat&) = default;
};

struct AudioFormatTag {
    qint32 tag = 0;
    QString name;
    QList<AudioFormat> formats; // sorted by rate, channels, bits
};

// Sorted by number.
const QList<AudioFormatTag>& AudioFormatTags();
// Null if this machine does not know the tag.
const AudioFormatTag* FindAudioFormatTag(qint32 tag);

// The closest format to the wanted one: the same tag, else plain PCM; the same channels if possible, then the
// nearest rate, then the sample size nearest to 16 bits. Nothing on a machine without formats.
std::optional<AudioFormat> SuggestAudioFormat(qint32 tag, qint32 channels, qint32 rate);

// "44.100 kHz, 16 Bit, Stereo".
QString AudioFormatDetails(const AudioFormat& format);

// Name of the tag and details: "PCM 44.100 kHz, 16 Bit, Stereo". A tag that this machine does not know
// appears as its number, without a sample size.
QString DescribeAudioFormat(qint32 tag, qint32 channels, qint32 rate);

// Asks the system's codecs what they can write; AudioFormatTags keeps the answer.
QList<AudioFormatTag> FindAudioFormats();

} // namespace tolvex::platform
