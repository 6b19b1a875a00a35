#include "core/time/TimeText.h"

#include <QStringList>

#include <array>
#include <cmath>
#include <vector>

namespace tolvex {

namespace {

// The parts of a time, largest first.
enum Part { Hours, Minutes, Seconds, Hundredths };
constexpr std::array<qint64, 4> hundredthsIn = {360000, 6000, 100, 1};

struct Layout {
    Part first;
    Part last;
};
constexpr std::array<Layout, 5> layouts = {
    {{Minutes, Hundredths}, {Hours, Hundredths}, {Hours, Seconds}, {Minutes, Seconds}, {Hours, Minutes}}};

Layout layoutOf(int format) {
    const std::size_t digit = static_cast<std::size_t>(std::abs(format) % 10);
    return digit < layouts.size() ? layouts[digit] : layouts[2];
}

qint64 toHundredths(double seconds, const Layout& layout, int rounding) {
    if (layout.last == Hundredths)
        return std::llround(seconds * 100);
    switch (rounding) {
    case 1:
        return static_cast<qint64>(seconds) * 100;
    case 2:
        return static_cast<qint64>(std::ceil(seconds)) * 100;
    default:
        return std::llround(seconds) * 100;
    }
}

QString separatorBefore(int part) {
    return part == Hundredths ? QStringLiteral(".") : QStringLiteral(":");
}

// One field of a time: blanks and digits only; -1 otherwise.
int fieldValue(const QString& field) {
    const QString digits = field.trimmed();
    if (digits.isEmpty())
        return 0;
    for (const QChar c : digits)
        if (c < u'0' || c > u'9')
            return -1;
    return digits.size() <= 6 ? digits.toInt() : -1;
}

} // namespace

QString SecondsToTime(double seconds, int format) {
    const Layout layout = layoutOf(format);
    const bool outside = !(seconds >= 0 && seconds < 86400);
    const bool blanking = format > 100;
    const bool dropping = format >= 200;
    qint64 rest = outside ? 0 : toHundredths(seconds, layout, format / 10 % 10);
    QString text;
    bool reached = false;
    for (int part = layout.first; part <= layout.last; ++part) {
        const qint64 unit = hundredthsIn.at(static_cast<std::size_t>(part));
        const qint64 value = rest / unit;
        rest %= unit;
        // Below the minute a field is no longer a leading one if it is the last that counts whole units.
        const bool isLead = part < layout.last && part < Seconds;
        reached = reached || outside || value > 0 || !isLead || !blanking;
        if (!reached && dropping)
            continue;
        if (!text.isEmpty())
            text += separatorBefore(part);
        if (outside)
            text += QLatin1String("--");
        else if (!reached)
            text += QLatin1String("  ");
        else
            text += QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    }
    return text;
}

double TimeToSeconds(const QString& text, int format) {
    const Layout layout = layoutOf(format);
    QString clock = text;
    double seconds = 0;
    if (layout.last == Hundredths) {
        const qsizetype point = text.indexOf(u'.');
        if (point >= 0) {
            const QString fraction = text.mid(point + 1).trimmed();
            const int value = fieldValue(fraction);
            if (value < 0)
                return -1;
            seconds = value / std::pow(10.0, static_cast<double>(fraction.size()));
            clock = text.left(point);
        }
    }
    // Fields are counted from the right, so that dropped leading ones do no harm.
    const QStringList fields = clock.split(u':');
    const int last = layout.last == Hundredths ? Seconds : layout.last;
    int part = last - static_cast<int>(fields.size()) + 1;
    if (part < layout.first || clock.trimmed().isEmpty())
        return -1;
    for (const QString& field : fields) {
        const int value = fieldValue(field);
        if (value < 0)
            return -1;
        seconds += value * (static_cast<double>(hundredthsIn.at(static_cast<std::size_t>(part))) / 100);
        ++part;
    }
    return seconds;
}

} // namespace tolvex
