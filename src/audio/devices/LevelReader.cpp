#include "audio/devices/LevelReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tolvex {

namespace {

constexpr int tickMilliseconds = 50;
constexpr double fullScale = 32768;

struct WordRow {
    double from; // decibels
    const char* word;
};
constexpr WordRow words[] = {{-0.1, "clipping"}, {-60, "good"}, {LowestDecibels, "no signal"}};

} // namespace

double SoundLevel::loudest() const {
    return std::max(peak[0], peak[1]);
}

double DecibelsOf(double peak) {
    return peak > 0 ? std::max(20 * std::log10(peak), LowestDecibels) : LowestDecibels;
}

QString LevelWord(double peak) {
    for (const WordRow& row : words)
        if (DecibelsOf(peak) >= row.from)
            return QLatin1String(row.word);
    return {};
}

LevelReader::LevelReader() {
    timer_.setInterval(tickMilliseconds);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { read(); });
}

bool LevelReader::start(const platform::WaveDevice* device, QString* why) {
    stop();
    stream_ = platform::OpenWaveStream(platform::WaveDirection::Record, device, why);
    if (!stream_)
        return false;
    name_ = device ? device->name : platform::WaveMapperName();
    taken_ = 0;
    clock_.start();
    timer_.start();
    return true;
}

void LevelReader::stop() {
    timer_.stop();
    stream_.reset();
}

// Takes no more samples than the elapsed time holds: some devices supply them without end.
void LevelReader::read() {
    if (!stream_)
        return;
    const int channels = stream_->channels();
    qint64 due = clock_.elapsed() * stream_->rate() / 1000 - taken_;
    SoundLevel level;
    while (due > 0) {
        const qint64 count = std::min<qint64>(due, stream_->rate() / 4);
        samples_.resize(std::size_t(count * channels));
        const qint64 given = stream_->read(samples_.data(), count);
        if (given < 0) {
            const QString how = QStringLiteral("%1 has gone.").arg(name_);
            stop();
            if (onEnd)
                onEnd(how);
            return;
        }
        if (given == 0)
            break;
        taken_ += given;
        due -= given;
        for (qint64 i = 0; i < given * channels; ++i) {
            double& peak = level.peak[std::size_t(channels == 1 ? 0 : i % channels)];
            peak = std::max(peak, std::abs(int{samples_[std::size_t(i)]}) / fullScale);
        }
    }
    if (channels == 1)
        level.peak[1] = level.peak[0];
    if (onLevel)
        onLevel(level);
}

} // namespace tolvex
