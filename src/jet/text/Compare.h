// Compares values in a predicate: three-valued logic, and which kinds can be compared.
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

// Values of one class can be compared. Booleans (true is -1) and dates are numbers here. Null belongs to
// every class.
enum class ValueClass : std::uint8_t { Null, Number, Text, Binary, Uuid };

ValueClass ClassOf(ColumnType type);
ValueClass ClassOf(const Value& value);

// Below, equal (0) or above. Neither value is null; throws DataTypeMismatch for different classes. Whole
// numbers and Currency compare exactly, others as Double; texts in the order of texts. Numeric must be
// converted to Double first, since its scale belongs to its column.
int CompareValues(const Value& a, const Value& b);

// The value of a Numeric.
double ToDouble(const Numeric& value, int scale);

} // namespace jet
