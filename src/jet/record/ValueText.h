// Values as text for other programs (UTF-8), the same in CSV and JSON lines:
//   Boolean 0 or 1; numbers with a point, the shortest form that reads back the same; Currency and Numeric
//   with all their decimals that are not zero; DateTime YYYY-MM-DD hh:mm:ss; Binary and OLE as base64; GUID
//   as {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}.
#pragma once

#include "jet/record/TableDefinition.h"

namespace jet {

// Appends a value; nothing for null. `scale`: of a Numeric. `dateSeparator` goes between day and time. A date
// outside the years 100 to 9999 is written as its number.
void AppendValueText(const Value& value, int scale, std::string& into, char dateSeparator = ' ');

// Appends a whole number.
void AppendWhole(std::int32_t number, std::string& into);

// The value of the text in a column of this kind. Throws TypeConversion naming the text. Booleans may also be
// "true" and "false" in any case, dates may also have a T between day and time.
Value ParseValueText(std::string_view text, const Column& column);

void AppendBase64(const std::uint8_t* bytes, std::size_t length, std::string& into);
// False: not base64 (RFC 4648, padded).
bool ParseBase64(std::string_view text, Bytes& into);

} // namespace jet
