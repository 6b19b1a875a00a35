#include "platform/devices/AudioFormats.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace tolvex::platform {

namespace {

constexpr qint32 plainPcm = 1;
constexpr qint32 usualBits = 16;

QString channelText(qint32 channels) {
    if (channels == 1)
        return QStringLiteral("Mono");
    return channels == 2 ? QStringLiteral("Stereo") : QStringLiteral("%1 Channels").arg(channels);
}

} // namespace

const QList<AudioFormatTag>& AudioFormatTags() {
    static const QList<AudioFormatTag> tags = FindAudioFormats();
    return tags;
}

const AudioFormatTag* FindAudioFormatTag(qint32 tag) {
    for (const AudioFormatTag& known : AudioFormatTags())
        if (known.tag == tag)
            return &known;
    return nullptr;
}

std::optional<AudioFormat> SuggestAudioFormat(qint32 tag, qint32 channels, qint32 rate) {
    const AudioFormatTag* known = FindAudioFormatTag(tag);
    if (!known)
        known = FindAudioFormatTag(plainPcm);
    if (!known)
        return std::nullopt;
    const auto distance = [channels, rate](const AudioFormat& format) {
        return std::tuple(format.channels != channels, std::abs(qint64{format.rate} - rate),
                          std::abs(format.bits - usualBits));
    };
    return *std::min_element(
        known->formats.begin(), known->formats.end(),
        [&distance](const AudioFormat& a, const AudioFormat& b) { return distance(a) < distance(b); });
}

QString AudioFormatDetails(const AudioFormat& format) {
    QString text = QStringLiteral("%1 kHz, ").arg(format.rate / 1000.0, 0, 'f', 3);
    if (format.bits > 0)
        text += QStringLiteral("%1 Bit, ").arg(format.bits);
    return text + channelText(format.channels);
}

QString DescribeAudioFormat(qint32 tag, qint32 channels, qint32 rate) {
    AudioFormat format{tag, channels, rate, 0};
    const AudioFormatTag* known = FindAudioFormatTag(tag);
    if (known)
        format.bits = SuggestAudioFormat(tag, channels, rate)->bits;
    const QString name = known ? known->name : QStringLiteral("Format %1").arg(tag);
    return name + u' ' + AudioFormatDetails(format);
}

} // namespace tolvex::platform
