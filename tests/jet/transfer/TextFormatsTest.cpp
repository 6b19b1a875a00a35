// Values, CSV and JSON lines as text and back: exported values come back unchanged, and damaged ones are
// refused.
#include "jet/base/Error.h"
#include "jet/record/ValueText.h"
#include "jet/text/DateText.h"
#include "jet/transfer/Csv.h"
#include "jet/transfer/JsonLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace jet {
namespace {

TextInput inputOf(std::string text, std::size_t piece) {
    return TextInput(
        [text = std::move(text), at = std::size_t{0}, piece](char* into, std::size_t room) mutable {
            const std::size_t n = std::min({piece, room, text.size() - at});
            std::copy_n(text.data() + at, n, into);
            at += n;
            return n;
        });
}

std::string describe(const std::vector<CsvField>& fields) {
    std::string text;
    for (const CsvField& field : fields)
        text += field.isNull() ? "<null>|" : field.text + "|";
    return text;
}

TEST(CsvTest, ReadsRecordsWhateverTheLineEnds) {
    const std::string text = "\xEF\xBB\xBF"
                             "a,\"b \"\"q\"\", c\",\r\n\"\",\"line\r\none\",x\n\nlast,\r,end";
    for (const std::size_t piece : {1u, 2u, 3u, 100u}) {
        TextInput input = inputOf(text, piece);
        CsvReader reader(input);
        std::vector<CsvField> fields;
        std::vector<std::string> records;
        while (reader.next(fields))
            records.push_back(describe(fields));
        EXPECT_EQ(records, (std::vector<std::string>{"a|b \"q\", c|<null>|", "|line\r\none|x|", "<null>|",
                                                     "last|\r|end|"}));
    }
    for (const char* bad : {"a,\"open\n", "\"a\"b,c"}) {
        TextInput input = inputOf(bad, 100);
        CsvReader reader(input);
        std::vector<CsvField> fields;
        EXPECT_THROW(reader.next(fields), Error) << bad;
    }
}

TEST(JsonLineTest, ReadsFlatObjects) {
    std::vector<JsonMember> members;
    ParseJsonLine(R"( {"a":"x\"\n\u00e9\ud83d\ude00", "b" : -1.5e3,"c":null, "d":true} )", members);
    ASSERT_EQ(members.size(), 4u);
    EXPECT_EQ(members[0].text, "x\"\n\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(members[1].text, "-1.5e3");
    EXPECT_EQ(members[2].kind, JsonMember::Kind::Null);
    EXPECT_EQ(members[3].text, "true");
    std::string written;
    AppendJsonText(members[0].text + "\x01\\", written);
    EXPECT_EQ(written, "\"x\\\"\\n\xC3\xA9\xF0\x9F\x98\x80\\u0001\\\\\"");
    for (const char* bad : {"", "{", "[]", "{\"a\"}", "{\"a\":}", "{\"a\":{}}", "{\"a\":1,}", "{\"a\":\"x",
                            "{\"a\":tru}", "{\"a\":\"\\x\"}", "{\"a\":\"\\u12\"}", "{} x", "{\"a\" 1}"})
        EXPECT_THROW(ParseJsonLine(bad, members), Error) << bad;
}

struct Sample {
    ColumnType type;
    Value value;
    std::string text;
};

TEST(ValueTextTest, GoesOutAndComesBack) {
    Guid guid;
    for (std::uint8_t i = 0; i < 16; ++i)
        guid.bytes[i] = static_cast<std::uint8_t>(0xA0 + i);
    Numeric numeric{true, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}};
    const Sample samples[] = {
        {ColumnType::Boolean, true, "1"},
        {ColumnType::Byte, std::uint8_t{255}, "255"},
        {ColumnType::Integer, std::int16_t{-32768}, "-32768"},
        {ColumnType::Long, std::numeric_limits<std::int32_t>::min(), "-2147483648"},
        {ColumnType::Currency, Currency{-5}, "-0.0005"},
        {ColumnType::Currency, Currency{123450000}, "12345"},
        {ColumnType::Currency, Currency{std::numeric_limits<std::int64_t>::min()}, "-922337203685477.5808"},
        {ColumnType::Single, 1.1f, "1.1"},
        {ColumnType::Double, 0.1 + 0.2, "0.30000000000000004"},
        {ColumnType::DateTime, Date{0.75}, "1899-12-30 18:00:00"},
        {ColumnType::DateTime, Date{-1.25}, "1899-12-29 06:00:00"},
        {ColumnType::DateTime, Date{-657434}, "0100-01-01 00:00:00"},
        {ColumnType::DateTime, Date{1e9}, "1e+09"},
        {ColumnType::Text, std::u16string(u"Ærø €"), "Ærø €"},
        {ColumnType::Binary, Bytes{0, 255, 16, 1}, "AP8QAQ=="},
        {ColumnType::Ole, Bytes{1, 2, 3, 4, 5}, "AQIDBAU="},
        {ColumnType::Guid, guid, "{A3A2A1A0-A5A4-A7A6-A8A9-AAABACADAEAF}"},
        {ColumnType::Numeric, numeric, "-3402823669209384634633746074317682114.55"},
    };
    for (const Sample& sample : samples) {
        Column column;
        column.type = sample.type;
        column.language = 0x0200; // two decimals
        std::string text;
        AppendValueText(sample.value, column.scale(), text);
        EXPECT_EQ(text, sample.text);
        EXPECT_EQ(ParseValueText(text, column), sample.value) << text;
    }
}

TEST(ValueTextTest, RefusesWhatIsNoValue) {
    const std::pair<ColumnType, const char*> samples[] = {
        {ColumnType::Boolean, "2"},
        {ColumnType::Byte, "256"},
        {ColumnType::Integer, "1.5"},
        {ColumnType::Long, ""},
        {ColumnType::Long, "2147483648"},
        {ColumnType::Currency, "1.00001"},
        {ColumnType::Currency, "1e3"},
        {ColumnType::Double, "1,5"},
        {ColumnType::DateTime, "2001-02-30"},
        {ColumnType::DateTime, "2001-1-1 24:00:00"},
        {ColumnType::Guid, "{A3}"},
        {ColumnType::Binary, "AQI"},
        {ColumnType::Binary, "A=I="},
        {ColumnType::Numeric, "0.001"},
        {ColumnType::Currency, "922337203685477.5808"},
        {ColumnType::Numeric, "3402823669209384634633746074317682114.56"},
    };
    for (const auto& [type, text] : samples) {
        Column column;
        column.type = type;
        column.language = 0x0200;
        EXPECT_THROW(ParseValueText(text, column), Error) << text;
    }
}

// Dates have one bit pattern each, so that an index finds them again: every second of a day, on both sides of
// the first day.
TEST(DateTextTest, EverySecondComesBack) {
    for (const char* day : {"1899-12-29", "1899-12-30", "2026-07-04"}) {
        for (int second = 0; second < 86400; second += 7) {
            const auto date = ParseIsoDate(std::string(day) + " 00:00:00");
            ASSERT_TRUE(date);
            const double fraction = second / 86400.0;
            const Date expected{date->days < 0 ? date->days - fraction : date->days + fraction};
            std::string text;
            ASSERT_TRUE(AppendDate(expected, 'T', text));
            ASSERT_EQ(ParseIsoDate(text), expected) << text;
        }
    }
    std::string text;
    EXPECT_TRUE(AppendDate(Date{1.9999999}, ' ', text)); // rounds into the next day
    EXPECT_EQ(text, "1900-01-01 00:00:00");
}

} // namespace
} // namespace jet
