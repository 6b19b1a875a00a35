#include "jet/text/DateText.h"

#include <chrono>
#include <cmath>

namespace jet {

namespace {

using namespace std::chrono;

constexpr sys_days epoch = year{1899} / December / 30;
constexpr sys_days firstDay = year{100} / January / 1;
constexpr sys_days lastDay = year{9999} / December / 31;
constexpr int secondsPerDay = 86400;

// Reads digits and signs from the front of a text; the first mismatch ends it for good.
class Reader {
public:
    explicit Reader(std::string_view text)
        : text_(text) {}

    bool ok() const { return ok_; }
    bool atEnd() const { return text_.empty(); }
    char front() const { return text_.empty() ? '\0' : text_.front(); }
    int digits() const { return digits_; } // of the last number

    int number(int most) {
        int value = 0;
        digits_ = 0;
        while (digits_ < most && front() >= '0' && front() <= '9') {
            value = value * 10 + (front() - '0');
            text_.remove_prefix(1);
            ++digits_;
        }
        ok_ = ok_ && digits_ > 0;
        return value;
    }
    bool accept(std::string_view signs) {
        if (text_.empty() || signs.find(front()) == std::string_view::npos)
            return false;
        text_.remove_prefix(1);
        return true;
    }
    void expect(std::string_view signs) { require(accept(signs)); }
    void require(bool condition) { ok_ = ok_ && condition; }
    void skipBlanks() {
        while (front() == ' ')
            text_.remove_prefix(1);
    }

private:
    std::string_view text_;
    bool ok_ = true;
    int digits_ = 0;
};

// ":mm[:ss[.fraction]] [AM|PM]" after the hour, as seconds since midnight.
double readTime(Reader& in, int hour, bool twelveHours) {
    in.expect(":");
    const int minute = in.number(2);
    double seconds = 0;
    if (in.accept(":")) {
        seconds = in.number(2);
        if (in.accept("."))
            seconds += in.number(9) / std::pow(10.0, in.digits());
    }
    if (twelveHours)
        in.skipBlanks();
    const char half = in.front();
    if (twelveHours && in.accept("aApP")) {
        in.expect("mM");
        in.require(hour >= 1 && hour <= 12);
        hour = hour % 12 + (half == 'p' || half == 'P' ? 12 : 0);
    }
    in.require(hour < 24 && minute < 60 && seconds < 60);
    return hour * 3600 + minute * 60 + seconds;
}

} // namespace

std::optional<Date> MakeDate(const DateParts& parts) {
    const year_month_day date{year{parts.year}, month{static_cast<unsigned>(parts.month)},
                              day{static_cast<unsigned>(parts.day)}};
    if (!date.ok() || sys_days(date) < firstDay || sys_days(date) > lastDay || parts.seconds < 0 ||
        parts.seconds >= secondsPerDay)
        return std::nullopt;
    const double days = static_cast<double>((sys_days(date) - epoch).count());
    const double fraction = parts.seconds / secondsPerDay;
    return Date{days < 0 ? days - fraction : days + fraction};
}

bool AppendDate(Date date, char separator, std::string& into) {
    const double first = static_cast<double>((firstDay - epoch).count());
    const double end = static_cast<double>((lastDay - epoch).count() + 1);
    if (!(date.days > first - 1 && date.days < end))
        return false;
    int whole = static_cast<int>(date.days);
    int seconds = static_cast<int>(std::lround(std::fabs(date.days - whole) * secondsPerDay));
    if (seconds == secondsPerDay) {
        whole += 1;
        seconds = 0;
    }
    if (whole < first || whole >= end)
        return false;
    const year_month_day day{epoch + days(whole)};
    const auto two = [](char* at, unsigned number) {
        at[0] = static_cast<char>('0' + number / 10);
        at[1] = static_cast<char>('0' + number % 10);
    };
    char text[] = "0000-00-00 00:00:00";
    const auto yearNumber = static_cast<unsigned>(static_cast<int>(day.year()));
    two(text, yearNumber / 100);
    two(text + 2, yearNumber % 100);
    two(text + 5, static_cast<unsigned>(day.month()));
    two(text + 8, static_cast<unsigned>(day.day()));
    text[10] = separator;
    const auto time = static_cast<unsigned>(seconds);
    two(text + 11, time / 3600);
    two(text + 14, time / 60 % 60);
    two(text + 17, time % 60);
    into.append(text, sizeof(text) - 1);
    return true;
}

std::optional<Date> ParseIsoDate(std::string_view text) {
    Reader in(text);
    DateParts parts;
    parts.year = in.number(4);
    in.expect("-");
    parts.month = in.number(2);
    in.expect("-");
    parts.day = in.number(2);
    if (in.accept(" T"))
        parts.seconds = readTime(in, in.number(2), false);
    return in.ok() && in.atEnd() ? MakeDate(parts) : std::nullopt;
}

std::optional<Date> ParseDateLiteral(std::u16string_view text) {
    const std::string plain = ToUtf8(text);
    Reader in(plain);
    in.skipBlanks();
    DateParts parts;
    const int first = in.number(4);
    const bool yearFirst = in.digits() == 4;
    bool timeFollows = true;
    int hour = first;
    if (in.accept("/-")) {
        parts.year = first;
        parts.month = yearFirst ? in.number(2) : first;
        if (yearFirst)
            in.expect("/-");
        parts.day = in.number(2);
        if (!yearFirst) {
            in.expect("/-");
            parts.year = in.number(4);
            in.require(in.digits() == 2 || in.digits() == 4);
            if (in.digits() == 2)
                parts.year += parts.year < 30 ? 2000 : 1900;
        }
        in.skipBlanks();
        timeFollows = !in.atEnd();
        hour = timeFollows ? in.number(2) : 0;
    }
    if (timeFollows)
        parts.seconds = readTime(in, hour, true);
    in.skipBlanks();
    return in.ok() && in.atEnd() ? MakeDate(parts) : std::nullopt;
}

} // namespace jet
