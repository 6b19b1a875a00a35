#include "audio/devices/ToneTest.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tolvex {

namespace {

constexpr int tickMilliseconds = 20;
// How far the samples run ahead of the clock. Some devices take all of them at once; Stop then still stops.
constexpr int leadMilliseconds = 150;
constexpr int rampMilliseconds = 5;
constexpr int parts = 3;

// How loud a part is at a frame of it, from 0 to 1.
double rampAt(qint64 frame, qint64 length, int rate) {
    const double ramp = rate * rampMilliseconds / 1000.0;
    return std::clamp(std::min(double(frame), double(length - 1 - frame)) / ramp, 0.0, 1.0);
}

} // namespace

std::vector<qint16> ToneFrames(int rate, int channels, int volume, qint64 from, qint64 count, qint64 total) {
    std::vector<qint16> samples(std::size_t(count * channels));
    const qint64 third = std::max<qint64>(total / parts, 1);
    for (qint64 i = 0; i < count; ++i) {
        const qint64 frame = from + i;
        const qint64 part = std::min<qint64>(frame / third, parts - 1);
        const qint64 length = part == parts - 1 ? total - part * third : third;
        const double wave = std::sin(2 * std::numbers::pi * ToneHertz * double(frame) / rate);
        const double level = ToneLevel * volume / 100 * rampAt(frame - part * third, length, rate);
        const auto sample = qint16(std::lround(INT16_MAX * level * wave));
        for (int channel = 0; channel < channels; ++channel)
            if (channels == 1 || part == parts - 1 || part == channel)
                samples[std::size_t(i * channels + channel)] = sample;
    }
    return samples;
}

ToneTest::ToneTest() {
    timer_.setInterval(tickMilliseconds);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { feed(); });
}

bool ToneTest::start(const platform::WaveDevice* device, int volume, double seconds, QString* why) {
    stop();
    stream_ = platform::OpenWaveStream(platform::WaveDirection::Play, device, why);
    if (!stream_)
        return false;
    name_ = device ? device->name : platform::WaveMapperName();
    description_ = QStringLiteral("playing on %1, %2 Hz, %3")
                       .arg(name_)
                       .arg(stream_->rate())
                       .arg(stream_->channels() == 1 ? QStringLiteral("mono") : QStringLiteral("stereo"));
    volume_ = std::clamp(volume, 0, 100);
    written_ = 0;
    total_ = qint64(seconds * stream_->rate());
    clock_.start();
    timer_.start();
    feed();
    return true;
}

void ToneTest::stop() {
    timer_.stop();
    stream_.reset();
}

void ToneTest::feed() {
    if (!stream_)
        return;
    const qint64 due = (clock_.elapsed() + leadMilliseconds) * stream_->rate() / 1000;
    const qint64 count = std::min(due, total_) - written_;
    if (count > 0) {
        const std::vector<qint16> frames =
            ToneFrames(stream_->rate(), stream_->channels(), volume_, written_, count, total_);
        const qint64 taken = stream_->write(frames.data(), count);
        if (taken < 0)
            return end(QStringLiteral("%1 has gone.").arg(name_));
        written_ += taken;
    }
    if (written_ >= total_ && clock_.elapsed() > total_ * 1000 / stream_->rate() + leadMilliseconds)
        end({});
}

void ToneTest::end(const QString& how) {
    stop();
    if (onEnd)
        onEnd(how);
}

} // namespace tolvex
