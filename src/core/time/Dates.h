// Dates as the suite counts and writes them: a serial day count with the time of day as its fraction, where
// day 1 is 31 December 1899, and the text "dd mmm yyyy hh:nn:ss" with English month names.
#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace tolvex {

double SerialDate(const QDateTime& time);
QDateTime FromSerialDate(double serial);

// "05 Mar 2024 22:10:00".
QString DateText(const QDateTime& time);

// The system's short form of a date.
QString ShortDate(const QDate& date);

// Parses a date with or without a time, in any case and with any blanks: "5 mar 2024 22:10:00", "2024-03-05",
// "05/03/2024 22:10" (day first). Nothing for anything else, including a bare number.
std::optional<double> ParseDate(const QString& text);

} // namespace tolvex
