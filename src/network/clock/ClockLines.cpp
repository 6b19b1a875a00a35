#include "network/clock/ClockLines.h"

#include <QLocale>

#include <algorithm>

namespace tolvex {

namespace {

constexpr qsizetype timeLength = 15;
constexpr qsizetype strengthLength = 2;
constexpr qsizetype longestKept = 64;

constexpr int validBit = 1;
constexpr int batteryBit = 8;
constexpr int highestLevel = 5;
constexpr int secondsADay = 86400;
// Years from 91 belong to the last century.
constexpr int lastYearOfThisCentury = 90;

// Two digits as a number; -1 if they are not digits.
int twoDigits(const QByteArray& line, qsizetype at) {
    const char high = line[at];
    const char low = line[at + 1];
    const bool digits = high >= '0' && high <= '9' && low >= '0' && low <= '9';
    return digits ? (high - '0') * 10 + (low - '0') : -1;
}

void readTime(ClockLine& line) {
    const QByteArray& raw = line.raw;
    const auto status = static_cast<unsigned char>(raw[14]);
    line.valid = (status & validBit) != 0;
    line.lowBattery = (status & batteryBit) != 0;
    const int hour = twoDigits(raw, 0);
    const int minute = twoDigits(raw, 2);
    const int second = twoDigits(raw, 4);
    if (QTime::isValid(hour, minute, second))
        line.seconds = hour * 3600 + minute * 60 + second;
    const int year = twoDigits(raw, 11);
    const QDate date(year + (year > lastYearOfThisCentury ? 1900 : 2000), twoDigits(raw, 9),
                     twoDigits(raw, 7));
    if (year >= 0 && date.isValid())
        line.date = date;
}

void readStrength(ClockLine& line) {
    const int level = line.raw[1] - '0';
    if (level >= 0 && level <= highestLevel)
        line.level = level;
}

ClockLine decode(const QByteArray& raw, qsizetype length) {
    ClockLine line;
    line.raw = raw;
    if (length == timeLength) {
        line.kind = ClockLine::Kind::Time;
        readTime(line);
    } else if (length == strengthLength) {
        line.kind = ClockLine::Kind::Strength;
        readStrength(line);
    }
    return line;
}

} // namespace

bool ClockLine::setsClock() const {
    return kind == Kind::Time && whyNot().isEmpty();
}

QString ClockLine::whyNot() const {
    if (kind != Kind::Time)
        return {};
    if (!valid)
        return QStringLiteral("the receiver has no valid time");
    if (!date)
        return QStringLiteral("its date is not a date");
    if (seconds < 0)
        return QStringLiteral("its time is not a time");
    if (*date <= QDate(2002, 1, 1))
        return QStringLiteral("its date is before 2 January 2002");
    return seconds == 0 ? QStringLiteral("it is exactly midnight") : QString();
}

QString ClockLine::text() const {
    switch (kind) {
    case Kind::Time: {
        const QString day =
            date ? QLocale::c().toString(*date, QStringLiteral("d MMMM yyyy")) : QStringLiteral("?");
        const QString time =
            seconds < 0
                ? QStringLiteral("?")
                : QTime::fromMSecsSinceStartOfDay(seconds * 1000).toString(QStringLiteral("HH:mm:ss"));
        const QString why = whyNot();
        return QStringLiteral("%1 %2, %3%4")
            .arg(day, time, why.isEmpty() ? QStringLiteral("valid") : QStringLiteral("not used: ") + why,
                 lowBattery ? QStringLiteral(", battery low") : QString());
    }
    case Kind::Strength:
        return level < 0 ? QStringLiteral("strength ?") : QStringLiteral("strength %1").arg(level);
    case Kind::Other:
        break;
    }
    return QStringLiteral("dropped");
}

QList<ClockLine> ClockLineReader::take(const QByteArray& bytes) {
    QList<ClockLine> lines;
    for (const char byte : bytes) {
        if (byte == '\r') {
            lines += decode(begun_, length_);
            clear();
            continue;
        }
        ++length_;
        if (begun_.size() < longestKept)
            begun_ += byte;
    }
    return lines;
}

void ClockLineReader::clear() {
    begun_.clear();
    length_ = 0;
}

QDateTime LocalMoment(const QDate& date, int seconds, const QDateTime& now) {
    const QDateTime moment(date,
                           QTime::fromMSecsSinceStartOfDay(std::clamp(seconds, 0, secondsADay - 1) * 1000));
    constexpr qint64 hour = 3600;
    QDateTime nearest = moment;
    for (const qint64 shift : {-hour, hour}) {
        const QDateTime other = moment.addSecs(shift);
        const bool sameReading = other.date() == moment.date() && other.time() == moment.time();
        if (sameReading && qAbs(now.secsTo(other)) < qAbs(now.secsTo(nearest)))
            nearest = other;
    }
    return nearest;
}

int ServerStrength(int level) {
    return (level + 1) * 100 / (highestLevel + 1);
}

int TestStrength(int level) {
    return level * 100 / highestLevel;
}

} // namespace tolvex
