#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "core/time/DateFormat.h"
#include "core/time/Dates.h"
#include "core/time/DayTime.h"
#include "core/time/TimeText.h"
#include "support/FixedClock.h"
#include "support/QtPrinters.h"

#include <algorithm>
#include <gtest/gtest.h>

#include <cmath>

using namespace tolvex;

TEST(TextFields, FieldsBeginWhereTheyAreToldAndEndAtTheSeparator) {
    const QString text = QStringLiteral("one, two ,,three");
    qsizetype position = -1;
    EXPECT_EQ(TextField(text, 1, u',', &position), "one");
    EXPECT_EQ(position, 4);
    EXPECT_EQ(TextField(text, 5, u',', &position, false), " two ");
    EXPECT_EQ(TextField(text, 5, u',', &position, false, true), "two ");
    EXPECT_EQ(position, 10);
    EXPECT_EQ(TextField(text, 11, u',', &position), "");
    EXPECT_EQ(position, 11);
    EXPECT_EQ(TextField(text, 12, u',', &position), "three");
    EXPECT_LT(position, 1);
    EXPECT_EQ(TextField(text, 99, u',', &position), "");
    EXPECT_LT(position, 1);
    EXPECT_EQ(TextField(text, -3, u','), "one");
    EXPECT_EQ(TextField(QStringLiteral(",two"), 1, u','), "");

    const QString line = QStringLiteral(" /LI:C:\\A.INI/DEBUG /SI: /PLAYERS=2");
    EXPECT_EQ(SwitchValue(line, QStringLiteral("/LI:")), "C:\\A.INI/DEBUG");
    EXPECT_EQ(SwitchValue(line, QStringLiteral("/PLAYERS=")), "2");
    EXPECT_FALSE(SwitchValue(line, QStringLiteral("/SI:")).isNull());
    EXPECT_TRUE(SwitchValue(line, QStringLiteral("/X:")).isNull());
}

TEST(TextFields, CharacterClasses) {
    const auto classesOf = [](const char* text) {
        QString classes;
        for (int number = 1; number <= 6; ++number)
            if (ValidateCharacters(QString::fromUtf8(text), static_cast<CharacterClass>(number)))
                classes += QString::number(number);
        return classes;
    };
    EXPECT_EQ(classesOf("123"), "12456");
    EXPECT_EQ(classesOf("aZ"), "2346");
    EXPECT_EQ(classesOf("a 1"), "46");
    EXPECT_EQ(classesOf("1 2"), "456");
    EXPECT_EQ(classesOf("é"), "6");
    EXPECT_EQ(classesOf("a-b"), "6");
    EXPECT_EQ(classesOf(""), "123456");
}

TEST(Numbers, TheLeadingNumberOfAText) {
    const std::pair<const char*, double> cases[] = {
        {"", 0},          {"abc", 0},   {" 12abc", 12}, {"2.50", 2.5},  {"2.6.1", 2.6}, {"-3", -3},
        {"1 0", 10},      {"+.5x", .5}, {"1e3", 1000},  {"12e", 12},    {"4E-", 4},     {"--5", 0},
        {"0.65 of", .65}, {"2,5", 2},   {"1e999", 0},   {"\t1\t2", 12}, {"1e2.5", 100}, {"1e5+3", 1e5},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(LeadingNumber(QString::fromLatin1(text)), value) << text;
    EXPECT_EQ(ToLong(2.5), 2);
    EXPECT_EQ(ToLong(3.5), 4);
    EXPECT_EQ(ToLong(1e20), INT32_MAX);
    EXPECT_EQ(ToLong(-1e20), INT32_MIN);
    EXPECT_EQ(ToLong(std::nan("")), 0);
}

TEST(TimeText, LayoutsRoundingsAndBlankFields) {
    struct Case {
        double seconds;
        int format;
        const char* text;
    };
    const Case cases[] = {
        // Layouts.
        {3725.25, 0, "62:05.25"},
        {3725.25, 1, "01:02:05.25"},
        {3725.25, 2, "01:02:05"},
        {3725.25, 3, "62:05"},
        {3725.25, 4, "01:02"},
        // Rounding: to the nearest, down, up.
        {59.5, 3, "01:00"},
        {59.9, 13, "00:59"},
        {59.01, 23, "01:00"},
        {59.0, 23, "00:59"},
        {59.996, 0, "01:00.00"},
        {86399.9, 2, "24:00:00"},
        // Blank leading fields, and dropped ones.
        {65, 102, "  :01:05"},
        {5, 102, "  :  :05"},
        {5, 100, "00:05.00"},
        {5.5, 101, "  :  :05.50"},
        {3600, 102, "01:00:00"},
        {65, 202, "01:05"},
        {5, 202, "05"},
        {5.25, 200, "05.25"},
        {0.25, 200, "00.25"},
        {0.25, 101, "  :  :00.25"},
        {0, 203, "00"},
        {59.5, 203, "01:00"},
        {30, 104, "  :00"},
        // Outside the day.
        {-0.01, 0, "--:--.--"},
        {86400, 2, "--:--:--"},
        {86400, 203, "--:--"},
        {std::nan(""), 1, "--:--:--.--"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SecondsToTime(c.seconds, c.format), QLatin1String(c.text))
            << c.seconds << " as " << c.format;

    const std::pair<const char*, double> times[] = {
        {"62:05.25", 3725.25}, {"05.25", 5.25}, {"  :05.5", 5.5}, {"1:00:00", -1},     {"", -1},
        {"--:--.--", -1},      {"1:-5", -1},    {"1:2x", -1},     {"99999999:00", -1},
    };
    for (const auto& [text, seconds] : times)
        EXPECT_EQ(TimeToSeconds(QLatin1String(text), 0), seconds) << text;
    EXPECT_EQ(TimeToSeconds(QStringLiteral("01:02"), 4), 3720);
    EXPECT_EQ(TimeToSeconds(QStringLiteral("01:02:05"), 2), 3725);
    for (int format : {0, 1, 2, 3, 201, 202, 203})
        for (double seconds : {0.0, 7.0, 61.0, 3599.0, 86399.0})
            EXPECT_EQ(TimeToSeconds(SecondsToTime(seconds, format), format), seconds) << format;
}

TEST(DayTime, CarriesIntoTheDayAndCountsToNow) {
    tests::FixedClock clock(QDateTime(QDate(2024, 3, 1), QTime(13, 30, 15, 500)));
    const DayTime now = CurrentDayTime();
    EXPECT_EQ(now.Day, 45352);
    EXPECT_EQ(now.Seconds, 48615.5F);
    EXPECT_EQ(CurrentDayTime(true).Seconds, 46800.F);
    const DayTime before = AddSeconds(now, -86400.0 - 48616);
    EXPECT_EQ(before.Day, 45350);
    EXPECT_EQ(before.Seconds, 86399.5F);
    EXPECT_EQ(SecondsSince(before), 86400.0 + 48616);
    const DayTime after = AddSeconds(now, 10 * 86400.0);
    EXPECT_EQ(after.Day, 45362);
    EXPECT_LT(SecondsSince(after), 0);
    Sleep(2.5);
    EXPECT_EQ(SecondsSince(now), 2.5);
}

TEST(Dates, ManyWaysOfWritingOneAreRead) {
    const double day = 46341; // 15 November 2026
    for (const char* text : {"15 Nov 2026", "15 November 2026", "Nov 15 2026", "2026-11-15", "15/11/2026",
                             " 15.11.2026 ", "15-Nov-2026 00:00"})
        EXPECT_EQ(ParseDate(QLatin1String(text)), day) << text;
    EXPECT_EQ(ParseDate(QStringLiteral("15 November 2026 18:00:00")), day + 0.75);
    for (const char* text : {"", "18:00", "15 Nov", "31 Feb 2026", "15 Nov 2026 25:00"})
        EXPECT_FALSE(ParseDate(QLatin1String(text))) << text;
    EXPECT_EQ(DateText(FromSerialDate(day + 0.75)), "15 Nov 2026 18:00:00");
}

TEST(DateFormat, WritesTheSuitesLanguage) {
    const QDateTime time({2024, 3, 5}, {9, 7, 3}); // a Tuesday
    const std::pair<const char*, const char*> cases[] = {
        {"yymmdd", "240305"},
        {"yyddmm", "240503"},
        {"ddmmyy", "050324"},
        {"mmddyy", "030524"},
        {"d/m/yyyy", "5/3/2024"},
        {"DDD DDDD MMM MMMM", "Tue Tuesday Mar March"},
        {"w ww q y yyy", "3 10 1 65 2465"},
        {"hh:mm:ss m", "09:07:03 3"},
        {"h:n:s ttttt", "9:7:3 09:07:03"},
        {"hh AM/PM", "09 AM"},
        {"\\d\"day\"d", "dday5"},
        {"K-\\O\"VA", "K-OVA"},
        {"tt_1", "tt_1"},
        {"", ""},
    };
    for (const auto& [format, text] : cases)
        EXPECT_EQ(FormatDate(time, format).toStdString(), text) << format;
    const QDateTime newYear({2023, 1, 1}, {0, 30}); // a Sunday
    EXPECT_EQ(FormatDate(newYear, "w ww h a/p"), "1 1 12 a");
    EXPECT_EQ(FormatDate(newYear.addSecs(43200), "h:nn ampm"), "12:30 pm");
}
