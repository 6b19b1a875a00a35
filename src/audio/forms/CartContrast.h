// Which colours of the carts are hard to tell apart where they meet on the audiowall.
#pragma once

#include "audio/CartLooks.h"

#include <QPalette>
#include <QStringList>

namespace tolvex {

// Contrast (ui/style/Colours.h) below which two colours are noted.
inline constexpr double ReadableContrast = 3;

// A contrast with one decimal, rounded down, so that one that is too low never reads as the limit: "2.9 to
// 1".
QString ContrastText(double contrast);

// The pairs below ReadableContrast, each with its contrast: "the number of the highlighted cart (2.9 to 1)".
// A pair that the looks do not show counts for nothing: the highlight colours of a cart that is pushed in,
// the colours of a times bar without colours. `highlightsPlayed`: carts that were played recently are shown.
// Carts have colours of their own; a usual one is taken to have those of a button.
QStringList ColoursHardToRead(const CartLooks& looks, bool highlightsPlayed, const QPalette& palette);

} // namespace tolvex
