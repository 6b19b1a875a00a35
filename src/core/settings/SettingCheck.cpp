#include "core/settings/SettingCheck.h"

#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "platform/CodePage.h"

#include <algorithm>
#include <cstdlib>

namespace tolvex {

namespace {

std::optional<QString> refuse(QString* why, const QString& reason) {
    if (why)
        *why = reason;
    return std::nullopt;
}

QString quoted(const QString& text) {
    return u'"' + text + u'"';
}

std::optional<QString> flagText(const QString& value) {
    const QString word = value.toLower();
    for (const char* on : {"1", "-1", "true", "on", "yes"})
        if (word == QLatin1String(on))
            return QStringLiteral("1");
    for (const char* off : {"0", "false", "off", "no"})
        if (word == QLatin1String(off))
            return QStringLiteral("0");
    return std::nullopt;
}

std::optional<qint64> wholeNumber(const QString& value, bool hexadecimal) {
    bool good = false;
    qint64 number = 0;
    if (hexadecimal && value.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        number = static_cast<qint32>(value.mid(2).toUInt(&good, 16));
    else
        number = value.toLongLong(&good, 10);
    return good ? std::optional(number) : std::nullopt;
}

std::optional<QString> checkNumber(const SettingRow& row, const QString& value, QString* why) {
    const std::optional<qint64> number = wholeNumber(value, row.kind == SettingKind::Colour);
    if (!number)
        return refuse(why, quoted(value) + QStringLiteral(" is not a whole number"));
    if (*number < row.lowest || *number > row.highest)
        return refuse(
            why, QStringLiteral("%1 lies outside %2 to %3").arg(*number).arg(row.lowest).arg(row.highest));
    // Checked like any other flag.
    return QString::number(row.kind == SettingKind::NumberText ? std::abs(*number) : *number);
}

std::optional<QString> checkText(const SettingRow& row, const QString& value, QString* why) {
    const bool location = row.kind == SettingKind::Path;
    const QString text = location ? TidyLocation(value) : value;
    const int longest = row.longest ? row.longest : row.buffer - 1;
    if (text.size() > longest)
        return refuse(why, QStringLiteral("the text is longer than %1 characters").arg(longest));
    QString fault = StoredTextFault(text);
    if (fault.isEmpty() && location)
        fault = LocationFault(text);
    if (!fault.isEmpty())
        return refuse(why, fault);
    // A reader removes one pair of enclosing quotes.
    if (text.size() > 1 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\''))
        return refuse(why, QStringLiteral("the text cannot be enclosed in quotes"));
    return text.isNull() ? QStringLiteral("") : text;
}

std::optional<QString> checkDate(const QString& value, QString* why) {
    const std::optional<double> date = ParseDate(value);
    if (!date)
        return refuse(why, quoted(value) + QStringLiteral(" is not a date"));
    return DateText(FromSerialDate(*date));
}

} // namespace

QString StoredTextFault(const QString& text) {
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20; }))
        return QStringLiteral("the text holds a control character");
    if (platform::FromCodePage(platform::ToCodePage(text)) != text)
        return QStringLiteral("the text holds a character that the files cannot store");
    return {};
}

std::optional<QString> CheckSettingValue(const SettingRow& row, const QString& value, QString* why) {
    const QString plain = value.trimmed();
    switch (row.kind) {
    case SettingKind::Flag:
        if (std::optional<QString> flag = flagText(plain))
            return flag;
        return refuse(why, quoted(plain) + QStringLiteral(" is neither on (1) nor off (0)"));
    case SettingKind::Word:
    case SettingKind::Number:
    case SettingKind::NumberText:
    case SettingKind::Colour:
        return checkNumber(row, plain, why);
    case SettingKind::Date:
        return checkDate(plain, why);
    default:
        return checkText(row, plain, why);
    }
}

} // namespace tolvex
