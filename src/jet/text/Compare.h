// Comparing values of a predicate: three-valued truth, and which kinds compare with each other.
#pragma once

#include "jet/base/Value.h"

namespace jet {

enum class Truth : std::uint8_t { False, Unknown, True };

inline Truth ToTruth(bool condition) {
    return condition ? Truth::True : Truth::False;
}

inline Truth Not(Truth truth) {
    return truth == Truth::Unknown ? truth : ToTruth(truth == Truth::False);
}

// Values of one class compare with each other. Booleans (true is -1) and dates are numbers here. Null goes
// with every class.
enum class ValueClass : std::uint8_t { Null, Number, Text, Binary, Uuid };

ValueClass ClassOf(ColumnType type);
ValueClass ClassOf(const Value& value);

// Below, equal (0) or above. Neither value is null; throws DataTypeMismatch for different classes. Numbers of
// whole kinds and Currency compare exactly, others as Double; texts in the order of texts. Numeric must have
// been made a Double, since its scale belongs to its column.
int CompareValues(const Value& a, const Value& b);

// What a Numeric is worth.
double ToDouble(const Numeric& value, int scale);

} // namespace jet
