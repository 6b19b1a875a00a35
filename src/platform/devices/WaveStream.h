// A wave device that is open for playing or recording 16-bit audio. Nothing here waits: what the device does
// not take or give now is left for the next call.
#pragma once

#include "platform/devices/WaveDevices.h"

#include <memory>

namespace tolvex::platform {

enum class WaveDirection { Play, Record };

class WaveStream {
public:
    virtual ~WaveStream() = default; // stops at once

    virtual int rate() const = 0;     // hertz; 44100 where the device can do it, else its nearest
    virtual int channels() const = 0; // 2 where the device can do them, else 1

    // Frames of channels() samples that were taken or given, 0 when the device is not ready; -1 when it is
    // gone. What a recording lost is left out of it.
    virtual qint64 write(const qint16* frames, qint64 count) = 0;
    virtual qint64 read(qint16* frames, qint64 count) = 0;
};

// Opens a device; null: the one that the system plays and records on by itself. Null with a sentence in *why,
// which names the device, when it is not there or in use.
std::unique_ptr<WaveStream> OpenWaveStream(WaveDirection direction, const WaveDevice* device, QString* why);

} // namespace tolvex::platform
