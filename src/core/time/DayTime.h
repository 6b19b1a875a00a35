// Points in time as the suite's records hold them, and waiting.
#pragma once

#include <QtGlobal>

namespace tolvex {

struct DayTime {
    qint32 Day = 0;    // day 1 is 31 December 1899
    float Seconds = 0; // since midnight
};

// Now; with `wholeHours` the seconds are truncated to the hour.
DayTime CurrentDayTime(bool wholeHours = false);

// Carries into the day in both directions, so that the seconds stay within 0 to 86400.
DayTime AddSeconds(const DayTime& time, double seconds);

// Now minus this time, in seconds; negative for a time in the future.
double SecondsSince(const DayTime& time);

// Waits while events run.
void Sleep(double seconds);

} // namespace tolvex
