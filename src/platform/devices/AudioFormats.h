// The formats that audio files of this machine can be recorded in: format tags, as a WAV file numbers them,
// and for each the channels, rates and sample sizes that can be written. Asked of the system's codecs once.
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace tolvex::platform {

struct AudioFormat {
    qint32 tag = 1; // 1: plain PCM
    qint32 channels = 2;
    qint32 rate = 44100; // hertz
    qint32 bits = 16;    // of a sample; 0 where the format has none

    friend bool operator==(const AudioFormat&, const AudioFormat&) = default;
};

struct AudioFormatTag {
    qint32 tag = 0;
    QString name;
    QList<AudioFormat> formats; // by rate, channels, bits
};

// By number.
const QList<AudioFormatTag>& AudioFormatTags();
// Null when this machine does not know the tag.
const AudioFormatTag* FindAudioFormatTag(qint32 tag);

// The format nearest to the one wanted: of the same tag, else plain PCM; of the same channels where there is
// one, then the nearest rate, then the nearest sample size to 16 bits. Nothing on a machine without formats.
std::optional<AudioFormat> SuggestAudioFormat(qint32 tag, qint32 channels, qint32 rate);

// "44.100 kHz, 16 Bit, Stereo".
QString AudioFormatDetails(const AudioFormat& format);

// Name of the tag and details: "PCM 44.100 kHz, 16 Bit, Stereo". A tag that this machine does not know shows
// as its number, without the size of a sample.
QString DescribeAudioFormat(qint32 tag, qint32 channels, qint32 rate);

// What the system's codecs can write; AudioFormatTags keeps it.
QList<AudioFormatTag> FindAudioFormats();

} // namespace tolvex::platform
