#include "databases/tds/Values.h"

#include "jet/base/Value.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace testserver::tds {

namespace {

// The types of the protocol that are used here.
enum Code : int {
    IntN = 0x26,
    BitN = 0x68,
    FloatN = 0x6D,
    DateTimeN = 0x6F,
    NText = 0x63,
    NVarChar = 0xE7,
    NChar = 0xEF,
    BigVarChar = 0xA7,
    DateTime2N = 0x2A
};

constexpr std::uint64_t UnlimitedSize = 0xFFFF;
constexpr std::uint64_t NullOfUnlimited = ~std::uint64_t{0};
constexpr std::uint64_t NullOfText = 0xFFFF;
constexpr std::string_view Collation("\x09\x04\xD0\x00\x34", 5);
constexpr int TicksPerSecond = 300;

// The dates from which days are counted.
constexpr std::chrono::sys_days FirstOf1900 = std::chrono::year{1900} / 1 / 1;
constexpr std::chrono::sys_days FirstOfAll = std::chrono::year{1} / 1 / 1;

std::string timeText(std::chrono::sys_days days, double seconds) {
    const std::chrono::year_month_day date(days);
    const auto milliseconds = static_cast<int>(std::lround(seconds * 1000));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d.%03d", int(date.year()),
                  unsigned(date.month()), unsigned(date.day()), milliseconds / 3600000,
                  milliseconds / 60000 % 60, milliseconds / 1000 % 60, milliseconds % 1000);
    return text;
}

void writeDate(Writer& to, const char* text) {
    int year = 1900;
    unsigned month = 1;
    unsigned day = 1;
    int hour = 0;
    int minute = 0;
    double second = 0;
    std::sscanf(text, "%d-%u-%u %d:%d:%lf", &year, &month, &day, &hour, &minute, &second);
    const double seconds = hour * 3600 + minute * 60 + second;
    const std::chrono::sys_days date =
        std::chrono::year{year} / static_cast<int>(month) / static_cast<int>(day);
    to.number(8, 1)
        .number(static_cast<std::uint64_t>((date - FirstOf1900).count()), 4)
        .number(static_cast<std::uint64_t>(std::llround(seconds * TicksPerSecond)), 4);
}

std::string pieces(Reader& from) {
    std::string whole;
    while (const std::uint64_t length = from.number(4))
        whole += from.take(static_cast<std::size_t>(length));
    return whole;
}

std::string utf8(std::string_view wide) {
    return Reader(wide).text(wide.size() / 2);
}

void readText(Reader& from, int code, Parameter& parameter) {
    const bool isOld = code == NText;
    const std::uint64_t size = from.number(isOld ? 4 : 2);
    from.take(Collation.size());
    std::string bytes;
    if (isOld) {
        const std::int64_t length = from.signedNumber(4);
        if (length < 0)
            return;
        bytes = from.take(static_cast<std::size_t>(length));
    } else if (size == UnlimitedSize) {
        if (from.number(8) == NullOfUnlimited)
            return;
        bytes = pieces(from);
    } else {
        const std::uint64_t length = from.number(2);
        if (length == NullOfText)
            return;
        bytes = from.take(static_cast<std::size_t>(length));
    }
    parameter.kind = Parameter::Text;
    parameter.text = code == BigVarChar ? bytes : utf8(bytes);
}

} // namespace

void Type::write(Writer& to) const {
    switch (kind) {
    case Flag:
        to.number(BitN, 1).number(1, 1);
        break;
    case Whole:
        to.number(IntN, 1).number(static_cast<std::uint64_t>(size), 1);
        break;
    case Fraction:
        to.number(FloatN, 1).number(static_cast<std::uint64_t>(size), 1);
        break;
    case Date:
        to.number(DateTimeN, 1).number(8, 1);
        break;
    case Text:
        to.number(NVarChar, 1).number(static_cast<std::uint64_t>(size) * 2, 2).raw(Collation);
        break;
    case LongText:
        to.number(NVarChar, 1).number(UnlimitedSize, 2).raw(Collation);
        break;
    }
}

Type TypeOfColumn(sqlite3_stmt* rows, int column) {
    const char* declared = sqlite3_column_decltype(rows, column);
    const std::string type = declared != nullptr ? declared : "";
    if (type == "BIT")
        return {Type::Flag, 1};
    if (type == "SMALLINT")
        return {Type::Whole, 2};
    if (type == "INT")
        return {Type::Whole, 4};
    if (type == "REAL")
        return {Type::Fraction, 4};
    if (type == "FLOAT")
        return {Type::Fraction, 8};
    if (type == "DATETIME")
        return {Type::Date, 8};
    if (type.starts_with("NVARCHAR_MAX"))
        return {Type::LongText, 0};
    const std::size_t size = type.find('(');
    return {Type::Text, size == std::string::npos ? 4000 : std::stoi(type.substr(size + 1))};
}

void WriteValue(Writer& to, const Type& type, sqlite3_stmt* rows, int column) {
    const bool isNull = sqlite3_column_type(rows, column) == SQLITE_NULL;
    if (type.kind == Type::Text || type.kind == Type::LongText) {
        const auto* letters = static_cast<const char*>(sqlite3_column_text16(rows, column));
        const auto length = static_cast<std::size_t>(sqlite3_column_bytes16(rows, column));
        if (type.kind == Type::Text) {
            to.number(isNull ? NullOfText : length, 2).raw({letters, isNull ? 0 : length});
        } else if (isNull) {
            to.number(NullOfUnlimited, 8);
        } else {
            to.number(length, 8);
            if (length > 0)
                to.number(length, 4).raw({letters, length});
            to.number(0, 4);
        }
        return;
    }
    if (isNull) {
        to.number(0, 1);
        return;
    }
    switch (type.kind) {
    case Type::Flag:
        to.number(1, 1).number(sqlite3_column_int(rows, column) != 0 ? 1 : 0, 1);
        break;
    case Type::Whole:
        to.number(static_cast<std::uint64_t>(type.size), 1)
            .number(static_cast<std::uint64_t>(sqlite3_column_int64(rows, column)), type.size);
        break;
    case Type::Fraction: {
        const double value = sqlite3_column_double(rows, column);
        to.number(static_cast<std::uint64_t>(type.size), 1);
        if (type.size == 4)
            to.number(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
        else
            to.number(std::bit_cast<std::uint64_t>(value), 8);
        break;
    }
    default:
        writeDate(to, reinterpret_cast<const char*>(sqlite3_column_text(rows, column)));
        break;
    }
}

void Parameter::bind(sqlite3_stmt* statement, int number) const {
    switch (kind) {
    case Null:
        sqlite3_bind_null(statement, number);
        break;
    case Whole:
        sqlite3_bind_int64(statement, number, whole);
        break;
    case Fraction:
        sqlite3_bind_double(statement, number, fraction);
        break;
    case Text:
        sqlite3_bind_text(statement, number, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        break;
    }
}

Parameter ReadParameter(Reader& from) {
    Parameter parameter;
    parameter.name = from.shortText();
    from.byte(); // whether it is an output parameter
    const int code = from.byte();
    if (code == NText || code == NVarChar || code == NChar || code == BigVarChar) {
        readText(from, code, parameter);
        return parameter;
    }
    const int scale =
        code == IntN || code == BitN || code == FloatN || code == DateTimeN || code == DateTime2N
            ? from.byte()
            : throw WireError("a parameter of an unknown type");
    const int length = from.byte();
    if (length == 0)
        return parameter;
    if (code == IntN || code == BitN) {
        parameter.kind = Parameter::Whole;
        parameter.whole = code == BitN ? from.byte() : from.signedNumber(length);
    } else if (code == FloatN) {
        parameter.kind = Parameter::Fraction;
        parameter.fraction = length == 4
                                 ? double{std::bit_cast<float>(static_cast<std::uint32_t>(from.number(4)))}
                                 : std::bit_cast<double>(from.number(8));
    } else if (code == DateTimeN) {
        parameter.kind = Parameter::Text;
        const auto date = FirstOf1900 + std::chrono::days(from.signedNumber(4));
        parameter.text = timeText(date, static_cast<double>(from.number(4)) / TicksPerSecond);
    } else {
        parameter.kind = Parameter::Text;
        const double seconds = static_cast<double>(from.number(length - 3)) / std::pow(10, scale);
        parameter.text = timeText(FirstOfAll + std::chrono::days(from.number(3)), seconds);
    }
    return parameter;
}

} // namespace testserver::tds
