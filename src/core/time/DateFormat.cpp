#include "core/time/DateFormat.h"

#include <QLocale>

namespace tolvex {

namespace {

// A letter of the format language, and its longest meaningful run.
struct Letter {
    char16_t letter;
    int longest;
};
constexpr Letter letters[] = {{u'd', 6}, {u'w', 2}, {u'm', 4}, {u'q', 1}, {u'y', 4},
                              {u'h', 2}, {u'n', 2}, {u's', 2}, {u't', 5}, {u'c', 1}};

constexpr const char* halfDays[] = {"am/pm", "a/p", "ampm"};

QString number(int value, int digits) {
    return QStringLiteral("%1").arg(value, digits, 10, QLatin1Char('0'));
}

class Formatter {
public:
    Formatter(const QDateTime& time, const QString& format)
        : time_(time)
        , format_(format) {
        for (const char* half : halfDays)
            to12_ = to12_ || format.contains(QLatin1String(half), Qt::CaseInsensitive);
    }

    QString text() {
        while (at_ < format_.size())
            if (!halfDay() && !literal())
                run();
        return text_;
    }

private:
    QString rest() const { return format_.mid(at_); }

    bool halfDay() {
        for (const char* half : halfDays) {
            const QLatin1String word(half);
            if (!rest().startsWith(word, Qt::CaseInsensitive))
                continue;
            const qsizetype slash = word.indexOf(QLatin1Char('/'));
            const qsizetype length = slash < 0 ? word.size() / 2 : slash;
            const bool afternoon = time_.time().hour() >= 12;
            text_ += rest().mid(afternoon ? (slash < 0 ? length : length + 1) : 0, length);
            at_ += word.size();
            return true;
        }
        return false;
    }

    bool literal() {
        const QChar now = format_[at_];
        if (now == u'\\') {
            text_ += format_.mid(at_ + 1, 1);
            at_ += 2;
            return true;
        }
        if (now != u'"')
            return false;
        const qsizetype end = format_.indexOf(u'"', at_ + 1);
        text_ += format_.mid(at_ + 1, end < 0 ? -1 : end - at_ - 1);
        at_ = end < 0 ? format_.size() : end + 1;
        return true;
    }

    void run() {
        const QChar now = format_[at_];
        const QChar low = now.toLower();
        int longest = 0;
        for (const Letter& known : letters)
            if (low == known.letter)
                longest = known.longest;
        int length = 0;
        while (length < longest && at_ + length < format_.size() && format_[at_ + length].toLower() == low)
            ++length;
        // A run of three "y" is two and one; a time is all five or none.
        if (low == u'y' && length == 3)
            length = 2;
        if (low == u't' && length < longest)
            length = 0;
        if (length == 0) {
            text_ += now;
            ++at_;
            return;
        }
        text_ += field(low.unicode(), length);
        afterHour_ = low == u'h';
        at_ += length;
    }

    QString field(char16_t letter, int length) const {
        const QDate day = time_.date();
        const QTime clock = time_.time();
        switch (letter) {
        case u'd':
            return dayField(length);
        case u'm':
            if (afterHour_ && length <= 2)
                return number(clock.minute(), length);
            return length <= 2 ? number(day.month(), length) : name(length == 3 ? "MMM" : "MMMM");
        case u'w':
            return number(length == 1 ? day.dayOfWeek() % 7 + 1 : week(), 1);
        case u'q':
            return number((day.month() + 2) / 3, 1);
        case u'y':
            return length == 1   ? number(day.dayOfYear(), 1)
                   : length == 2 ? number(day.year() % 100, 2)
                                 : number(day.year(), 4);
        case u'h':
            return number(to12_ ? (clock.hour() + 11) % 12 + 1 : clock.hour(), length);
        case u'n':
            return number(clock.minute(), length);
        case u's':
            return number(clock.second(), length);
        case u't':
            return clock.toString(QStringLiteral("HH:mm:ss"));
        default:
            return FormatDate(time_, QStringLiteral("ddddd ttttt"));
        }
    }

    QString dayField(int length) const {
        if (length <= 2)
            return number(time_.date().day(), length);
        if (length <= 4)
            return name(length == 3 ? "ddd" : "dddd");
        return QLocale::system().toString(time_.date(),
                                          length == 5 ? QLocale::ShortFormat : QLocale::LongFormat);
    }

    QString name(const char* part) const { return QLocale::c().toString(time_.date(), QLatin1String(part)); }

    int week() const {
        const QDate first(time_.date().year(), 1, 1);
        return (time_.date().dayOfYear() - 1 + first.dayOfWeek() % 7) / 7 + 1;
    }

    const QDateTime& time_;
    const QString& format_;
    QString text_;
    qsizetype at_ = 0;
    bool to12_ = false;
    bool afterHour_ = false;
};

} // namespace

QString FormatDate(const QDateTime& time, const QString& format) {
    return Formatter(time, format).text();
}

} // namespace tolvex
