// Dates as text: in ISO 8601 form for files that others read, and as literals of the engine's SQL.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace jet {

// Appends "YYYY-MM-DD", `separator` and "hh:mm:ss", rounded to the second. False, with nothing appended: the
// value lies outside the years 100 to 9999.
bool AppendDate(Date date, char separator, std::string& into);

// Reads "YYYY-MM-DD", optionally with a time after a blank or 'T': "hh:mm", "hh:mm:ss", or with a fraction of
// a second.
std::optional<Date> ParseIsoDate(std::string_view text);

// The text between # and #: month/day/year or year-month-day (signs / or -), a time "h:mm[:ss] [AM|PM]" or
// both. A year of two digits lies in 1930 to 2029.
std::optional<Date> ParseDateLiteral(std::u16string_view text);

// The only way to make a date from its parts, so that equal dates have equal bits: days plus seconds / 86400,
// before 1899-12-30 days minus seconds / 86400. Nothing for parts that are not a date of the years 100 to
// 9999.
struct DateParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    double seconds = 0; // since midnight, below 86400
};
std::optional<Date> MakeDate(const DateParts& parts);

} // namespace jet
