// Sound devices of a test's own, declared to the real sound system: outputs that write to a file, inputs that
// read from one. They exist while the object lives.
#pragma once

#include "platform/devices/WaveDevices.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <vector>

namespace tolvex::tests {

class SoundDevices {
public:
    ~SoundDevices() {
        qunsetenv("ALSA_CONFIG_PATH");
        platform::RefreshWaveDevices();
    }
    SoundDevices() = default;
    SoundDevices(const SoundDevices&) = delete;
    SoundDevices& operator=(const SoundDevices&) = delete;

    // Outputs "The <name>" write 16-bit frames to played(name); inputs read recorded(name).
    // `more` is added to the declaration unchanged.
    void declare(const QStringList& outputs, const QStringList& inputs = {}, const QString& more = {}) {
        QString text =
            QStringLiteral("pcm.null { type null hint { show on description \"Nothing\" } }\n") + more;
        for (const QString& name : outputs)
            text += QStringLiteral("pcm.%1file { type file slave.pcm null file \"%2\" format raw }\n"
                                   "pcm.%1 { type asym playback.pcm %1file "
                                   "hint { show on description \"The %1\" } }\n")
                        .arg(name, played(name));
        for (const QString& name : inputs)
            text += QStringLiteral("pcm.%1file { type file slave.pcm null file /dev/null infile \"%2\" "
                                   "format raw }\n"
                                   "pcm.%1 { type asym capture.pcm %1file "
                                   "hint { show on description \"The %1\" } }\n")
                        .arg(name, recorded(name));
        const QString path = folder_.filePath(QStringLiteral("asound%1.conf").arg(++version_));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text.toUtf8());
        config_ = QFile::encodeName(path);
        qputenv("ALSA_CONFIG_PATH", config_);
    }
    QByteArray config() const { return config_; }
    QString played(const QString& name) const { return folder_.filePath(name + ".played"); }
    QString recorded(const QString& name) const { return folder_.filePath(name + ".recorded"); }

    // The stereo samples played so far.
    std::vector<qint16> samplesOf(const QString& name) const {
        QFile file(played(name));
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        std::vector<qint16> samples(std::size_t(bytes.size() / 2));
        if (!samples.empty())
            std::memcpy(samples.data(), bytes.constData(), samples.size() * 2);
        return samples;
    }
    // The sound at an input: a tone in both channels, as a fraction of full scale.
    void record(const QString& name, double left, double right, int frames = 44100) const {
        QByteArray bytes;
        for (int i = 0; i < frames; ++i)
            for (const double level : {left, right}) {
                const auto sample = qint16(std::lround(32767 * level * std::sin(i * 0.1)));
                bytes.append(reinterpret_cast<const char*>(&sample), 2);
            }
        QFile file(recorded(name));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }

private:
    QTemporaryDir folder_;
    QByteArray config_;
    int version_ = 0;
};

} // namespace tolvex::tests
