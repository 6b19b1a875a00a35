// Converts a value of one kind to another, as a program that sets a field expects.
#pragma once

#include "jet/base/Value.h"

namespace jet {

// Converts `value` to the kind that columns of `type` hold; null stays null. Numbers of all kinds, Boolean
// (true is -1) and dates convert to each other, fractions round to the nearest even number; text that reads
// as a number becomes one, and numbers become text. Bytes stay bytes. Throws TypeConversion for impossible
// conversions: a text that is not a number, a number out of range, bytes for a number. Cost if the kind is
// already right, the usual case: one comparison. Numeric columns accept Numeric only.
void ConvertValue(ColumnType type, Value& value);

} // namespace jet
