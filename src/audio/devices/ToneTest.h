// The test of a player's device: a tone to the left, to the right and to both sides, at the player's volume
// and the device's own rate. It runs on timers and never holds anybody up.
#pragma once

#include "platform/devices/WaveStream.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <vector>

namespace tolvex {

inline constexpr double ToneHertz = 1000;
inline constexpr double ToneLevel = 0.1; // of full scale: -20 dBFS at a volume of 100 percent

// The samples of a test: frames `from` to `from + count` of `total`, the first third to the left, the second
// to the right, the rest to both. With one channel all of it sounds. The ends of each part rise and fall in
// five milliseconds, so that none clicks.
std::vector<qint16> ToneFrames(int rate, int channels, int volume, qint64 from, qint64 count, qint64 total);

class ToneTest {
public:
    ToneTest();

    // Begins to play on a device (null: the system's own choice). False, with a sentence in *why, when it is
    // busy or not there. One that is playing is stopped.
    bool start(const platform::WaveDevice* device, int volume, double seconds, QString* why);
    void stop();
    bool playing() const { return stream_ != nullptr; }
    // "playing on Desk 1, 44100 Hz, stereo".
    QString description() const { return description_; }

    // Called when the tone is over or the device has gone; `how` is empty or a sentence. Not after stop().
    std::function<void(const QString& how)> onEnd;

private:
    void feed();
    void end(const QString& how);

    std::unique_ptr<platform::WaveStream> stream_;
    QTimer timer_;
    QElapsedTimer clock_;
    QString name_;
    QString description_;
    int volume_ = 100;
    qint64 written_ = 0; // frames
    qint64 total_ = 0;
};

} // namespace tolvex
