// The suite's colours: blue-green-red integers (0x0000FF is red); values with the top bit set name system
// colours, which follow the palette of the running program.
#pragma once

#include "core/settings/SystemColours.h" // IWYU pragma: export

#include <QColor>
#include <QPalette>

namespace tolvex {

QColor ToColor(qint32 colour, const QPalette& palette);
// Never a system colour.
qint32 FromColor(const QColor& colour);

// How well two colours can be told apart, from 1 (alike) to 21 (black on white): the contrast ratio of the
// Web Content Accessibility Guidelines 2.1. Text wants 4.5.
double Contrast(const QColor& a, const QColor& b);

} // namespace tolvex
