#include "core/time/DayTime.h"

#include "core/text/Numbers.h"
#include "core/time/Dates.h"
#include "platform/Clock.h"

#include <cmath>

namespace tolvex {

namespace {

constexpr double secondsADay = 86400;
constexpr float secondsAnHour = 3600;

} // namespace

DayTime CurrentDayTime(bool wholeHours) {
    const QDateTime now = platform::clock().now();
    DayTime time;
    time.Day = ToLong(SerialDate(QDateTime(now.date(), QTime(0, 0))));
    time.Seconds = static_cast<float>(now.time().msecsSinceStartOfDay() / 1000.0);
    if (wholeHours)
        time.Seconds = std::floor(time.Seconds / secondsAnHour) * secondsAnHour;
    return time;
}

DayTime AddSeconds(const DayTime& time, double seconds) {
    const double total = static_cast<double>(time.Seconds) + seconds;
    const double days = std::floor(total / secondsADay);
    return {ToLong(time.Day + days), static_cast<float>(total - days * secondsADay)};
}

double SecondsSince(const DayTime& time) {
    const DayTime now = CurrentDayTime();
    return (static_cast<double>(now.Day) - time.Day) * secondsADay +
           (static_cast<double>(now.Seconds) - static_cast<double>(time.Seconds));
}

void Sleep(double seconds) {
    platform::clock().sleep(seconds);
}

} // namespace tolvex
