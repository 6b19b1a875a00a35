// Dates in the suite's format language, in which users write the names of log files ("yymmdd").
#pragma once

#include <QDateTime>
#include <QString>

namespace tolvex {

// Formats a date and time. Letters count without regard to case:
//   d dd          day of the month, 1 or 2 digits at least; ddd dddd its name, short or whole
//   ddddd dddddd  the system's short or long date
//   w ww          day of the week from Sunday as 1; week of the year, the first being that of 1 January
//   m mm mmm mmmm month as a number, or its name; after h or hh the minute
//   q y yy yyyy   quarter; day of the year; year of 2 or 4 digits
//   h hh n nn s ss  hour, minute, second; ttttt all three; the hour counts to 12 where "am/pm", "a/p" or
//                 "ampm" stands in the format
//   c             "ddddd ttttt"
// A text in double quotes and the character after "\" are copied, and so is everything else. Names are
// English, as in all texts of the suite.
QString FormatDate(const QDateTime& time, const QString& format);

} // namespace tolvex
