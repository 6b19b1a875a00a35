#include "core/time/Dates.h"

#include <QLocale>

#include <cmath>

namespace tolvex {

namespace {

const QDate dayZero(1899, 12, 30);
constexpr double secondsADay = 86400;
// The years 100 and 9999: the range of dates in the suite.
constexpr double firstDay = -657434;
constexpr double lastDay = 2958465;

bool isDate(double serial) {
    return serial >= firstDay && serial < lastDay + 1;
}

std::optional<QTime> parseTime(const QString& text) {
    for (const char* form : {"H:m:s", "H:m"}) {
        const QTime time = QLocale::c().toTime(text, QLatin1String(form));
        if (time.isValid())
            return time;
    }
    return std::nullopt;
}

std::optional<QDate> parseDay(const QString& text) {
    for (const char* form : {"d MMM yyyy", "d MMMM yyyy", "MMM d yyyy", "MMMM d yyyy", "d-MMM-yyyy",
                             "yyyy-M-d", "yyyy/M/d", "d/M/yyyy", "d.M.yyyy", "d-M-yyyy"}) {
        const QDate day = QLocale::c().toDate(text, QLatin1String(form));
        if (day.isValid())
            return day;
    }
    return std::nullopt;
}

} // namespace

double SerialDate(const QDateTime& time) {
    return static_cast<double>(dayZero.daysTo(time.date())) +
           time.time().msecsSinceStartOfDay() / (secondsADay * 1000);
}

QDateTime FromSerialDate(double serial) {
    if (!isDate(serial))
        return {};
    const double day = std::floor(serial);
    const int milliseconds = static_cast<int>(std::lround((serial - day) * secondsADay * 1000));
    return QDateTime(dayZero.addDays(static_cast<qint64>(day)), QTime(0, 0)).addMSecs(milliseconds);
}

QString DateText(const QDateTime& time) {
    return QLocale::c().toString(time, QStringLiteral("dd MMM yyyy HH:mm:ss"));
}

QString ShortDate(const QDate& date) {
    return QLocale::system().toString(date, QLocale::ShortFormat);
}

std::optional<double> ParseDate(const QString& text) {
    const QString plain = text.simplified();
    if (plain.size() > 64)
        return std::nullopt;
    const qsizetype colon = plain.indexOf(u':');
    const qsizetype gap = colon < 0 ? -1 : plain.lastIndexOf(u' ', colon);
    if (colon >= 0 && gap < 0)
        return std::nullopt;
    const std::optional<QDate> day = parseDay(gap < 0 ? plain : plain.left(gap));
    const std::optional<QTime> time = gap < 0 ? QTime(0, 0) : parseTime(plain.mid(gap + 1));
    if (!day || !time)
        return std::nullopt;
    const double serial = SerialDate(QDateTime(*day, *time));
    return isDate(serial) ? std::optional(serial) : std::nullopt;
}

} // namespace tolvex
