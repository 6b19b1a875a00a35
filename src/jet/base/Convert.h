// Making a value of one kind into a value of another, as a program that sets a field expects it.
#pragma once

#include "jet/base/Value.h"

namespace jet {

// Makes `value` a value of the kind that columns of `type` hold; null stays null. Numbers of all kinds,
// Boolean (true is -1) and dates become each other, fractions being rounded to the nearest even number; text
// that reads as a number becomes one, and numbers become text. Bytes stay bytes. Throws TypeConversion for
// what has no such value: a text that is not a number, a number out of range, bytes for a number. Cost of the
// usual case, where the kind is right already: one comparison. Numeric columns take Numeric only.
void ConvertValue(ColumnType type, Value& value);

} // namespace jet
