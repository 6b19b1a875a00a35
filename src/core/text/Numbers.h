// Small numeric helpers.
#pragma once

#include <QStringView>
#include <QtGlobal>

namespace tolvex {

// The number at the start of a text, after any blanks: sign, digits, point, exponent; blanks between digits
// and anything after the number are ignored. 0 if there is none, or one that a double cannot hold.
double LeadingNumber(QStringView text);

// Rounds to the nearest whole number, halves to even, and clamps it to 32 bits.
qint32 ToLong(double value);

} // namespace tolvex
