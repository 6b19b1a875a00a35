// System colours of the suite: numbers with the top bit set. Each stands for what the system shows it as.
#pragma once

#include <QtGlobal>

namespace tolvex {

constexpr qint32 SystemColour(quint32 number) {
    return static_cast<qint32>(0x80000000u | number);
}
inline constexpr qint32 SystemHighlight = SystemColour(0x0D);
inline constexpr qint32 SystemHighlightText = SystemColour(0x0E);
inline constexpr qint32 SystemButtonFace = SystemColour(0x0F); // the ground of every form
inline constexpr qint32 SystemButtonText = SystemColour(0x12);

constexpr bool IsSystemColour(qint32 colour) {
    return colour < 0;
}

} // namespace tolvex
