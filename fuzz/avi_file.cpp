// Reading an animation from any bytes: frames of one size within the limits, never a crash.
#include "Require.h"
#include "ui/animation/AviFile.h"

#include <cstdint>

using namespace tolvex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const Animation animation = ReadAvi(bytes);
    require(animation.milliseconds >= 0 && animation.milliseconds <= 10000 &&
            animation.frames.size() <= 1000);
    for (const QImage& frame : animation.frames)
        require(frame.size() == animation.frames.first().size() && frame.width() <= 1024 &&
                frame.height() <= 1024 && frame.format() == QImage::Format_ARGB32);
    return 0;
}
