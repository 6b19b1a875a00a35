// An open wave device that plays or records 16-bit audio. Calls never block: what the device cannot accept or
// deliver now is left for the next call.
#pragma once

#include "platform/devices/WaveDevices.h"

#include <memory>

namespace tolvex::platform {

enum class WaveDirection { Play, Record };

class WaveStream {
public:
    virtual ~WaveStream() = default; // stops at once

    virtual int rate() const = 0;     // hertz; 44100 if the device supports it, else its nearest
    virtual int channels() const = 0; // 2 if the device supports them, else 1

    // Frames of channels() samples that were transferred, 0 if the device is not ready, -1 if it is gone.
    // Frames that a recording lost are left out.
    virtual qint64 write(const qint16* frames, qint64 count) = 0;
    virtual qint64 read(qint16* frames, qint64 count) = 0;
};

// Opens a device; null: the system's default. Null, with a sentence in *why that names the device, if it is
// missing or in use.
std::unique_ptr<WaveStream> OpenWaveStream(WaveDirection direction, const WaveDevice* device, QString* why);

} // namespace tolvex::platform
