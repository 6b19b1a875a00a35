#include "core/text/Numbers.h"

#include <QByteArray>
#include <algorithm>

#include <cmath>
#include <limits>

namespace tolvex {

double LeadingNumber(QStringView text) {
    QByteArray number;
    bool point = false;
    bool exponent = false;
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        const char last = number.isEmpty() ? '\0' : number.back();
        if (unit == u' ' || unit == u'\t')
            continue;
        if (unit >= u'0' && unit <= u'9') {
            // The rest of a number this long cannot change what a double holds.
            if (number.size() < 400)
                number += static_cast<char>(unit);
        } else if ((unit == u'-' || unit == u'+') && (number.isEmpty() || (exponent && last == 'e'))) {
            number += static_cast<char>(unit);
        } else if (unit == u'.' && !point && !exponent) {
            point = true;
            number += '.';
        } else if ((unit == u'e' || unit == u'E' || unit == u'd' || unit == u'D') && !exponent &&
                   last >= '0' && last <= '9') {
            exponent = true;
            number += 'e';
        } else {
            break;
        }
    }
    // "12e" and "12e-" are 12.
    while (!number.isEmpty() && (number.back() == 'e' || number.back() == '-' || number.back() == '+'))
        number.chop(1);
    return number.toDouble(); // 0 for one that a double cannot hold
}

qint32 ToLong(double value) {
    if (std::isnan(value))
        return 0;
    return static_cast<qint32>(std::clamp(std::nearbyint(value),
                                          static_cast<double>(std::numeric_limits<qint32>::min()),
                                          static_cast<double>(std::numeric_limits<qint32>::max())));
}

} // namespace tolvex
