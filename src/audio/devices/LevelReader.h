// The level of a recording device while somebody looks at it: the peak of each side since the last report.
#pragma once

#include "platform/devices/WaveStream.h"

#include <QElapsedTimer>
#include <QTimer>

#include <array>
#include <functional>
#include <vector>

namespace tolvex {

// Peaks as parts of full scale, from 0 to 1, of left and right; the same for a device with one channel.
struct SoundLevel {
    std::array<double, 2> peak{};
    double loudest() const;
};

// Decibels below full scale; LowestDecibels for silence.
inline constexpr double LowestDecibels = -90;
double DecibelsOf(double peak);

// "no signal" below -60 dBFS, "clipping" from -0.1 dBFS, else "good".
QString LevelWord(double peak);

class LevelReader {
public:
    LevelReader();

    // False, with a sentence in *why, when the device is busy or not there.
    bool start(const platform::WaveDevice* device, QString* why);
    void stop();
    bool running() const { return stream_ != nullptr; }

    std::function<void(const SoundLevel& level)> onLevel; // some twenty times a second
    std::function<void(const QString& how)> onEnd;        // the device has gone

private:
    void read();

    std::unique_ptr<platform::WaveStream> stream_;
    QTimer timer_;
    QElapsedTimer clock_;
    QString name_;
    qint64 taken_ = 0; // frames
    std::vector<qint16> samples_;
};

} // namespace tolvex
