// Reads the short silent AVI files that the suite shows while something goes on, as the animation control of
// its platform takes them: one stream of bitmaps, plain (8, 16, 24 or 32 bits a dot) or run-length coded at 8
// bits; other streams are passed over. The format is told in docs/formats/avi.md.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

namespace tolvex {

struct Animation {
    QList<QImage> frames; // all of one size, with an alpha channel
    int milliseconds = 0; // that each frame stands
};

// Any bytes. No frames when they are no such file or the picture is larger than 1024 dots either way; at most
// 1000 frames and 64 MB of dots, and those before the first fault. The colour of the first frame's top left
// dot is transparent in all of them.
Animation ReadAvi(const QByteArray& bytes);

// A longer file is not an animation of this kind.
inline constexpr qint64 LongestAvi = 8 << 20;

} // namespace tolvex
