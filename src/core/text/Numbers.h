// Small numeric helpers.
#pragma once

#include <QStringView>
#include <QtGlobal>

#include <algorithm>

namespace tolvex {

template<typename T>
constexpr T LowerOf(T a, T b) {
    return b < a ? b : a;
}
template<typename T>
constexpr T HigherOf(T a, T b) {
    return a < b ? b : a;
}
// The value, moved to the nearer bound when it lies outside. `low` wins where the bounds are crossed.
template<typename T>
constexpr T HeldBetween(T value, T low, T high) {
    return HigherOf(low, LowerOf(value, high));
}

// The number at the start of a text, after any blanks: sign, digits, point, exponent; blanks between digits
// do not count, and neither does what follows. 0 when there is none, or one that a double cannot hold.
double LeadingNumber(QStringView text);

// Rounds to the nearest whole number, halves to the even one, and holds it to 32 bits.
qint32 ToLong(double value);

} // namespace tolvex
