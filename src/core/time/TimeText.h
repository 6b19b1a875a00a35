// Times of day and lengths as text. A format is a number of up to three digits:
//   last digit: 0 "mm:ss.hh", 1 "hh:mm:ss.hh", 2 "hh:mm:ss", 3 "mm:ss", 4 "hh:mm"
//   tens digit, where the layout has no hundredths: 0 rounds to the nearest second, 1 cuts the fraction, 2
//   rounds any fraction up
//   from 101: a leading field that the time does not reach is blank; from 200: it is dropped, with its
//   separator
// The first field of a layout without hours takes all the minutes. Hundredths are rounded to the nearest.
#pragma once

#include <QString>

namespace tolvex {

// Seconds below 0 or from 86400 up give "--" in each field.
QString SecondsToTime(double seconds, int format);

// Parses the text; blank and dropped leading fields count as 0. -1 if the text is not a time of that layout.
double TimeToSeconds(const QString& text, int format);

} // namespace tolvex
