#include "jet/base/Convert.h"

#include "jet/base/Error.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

namespace jet {

namespace {

constexpr double TenThousand = 10000;

[[noreturn]] void fail() {
    throw Error(ErrorNumber::TypeConversion);
}

// Whether the value is of the kind that columns of a type hold.
bool isOf(ColumnType type, const Value& value) {
    switch (type) {
    case ColumnType::Boolean:
        return std::holds_alternative<bool>(value);
    case ColumnType::Byte:
        return std::holds_alternative<std::uint8_t>(value);
    case ColumnType::Integer:
        return std::holds_alternative<std::int16_t>(value);
    case ColumnType::Long:
        return std::holds_alternative<std::int32_t>(value);
    case ColumnType::Currency:
        return std::holds_alternative<Currency>(value);
    case ColumnType::Single:
        return std::holds_alternative<float>(value);
    case ColumnType::Double:
        return std::holds_alternative<double>(value);
    case ColumnType::DateTime:
        return std::holds_alternative<Date>(value);
    case ColumnType::Text:
    case ColumnType::Memo:
        return std::holds_alternative<std::u16string>(value);
    case ColumnType::Guid:
        return std::holds_alternative<Guid>(value);
    case ColumnType::Numeric:
        return std::holds_alternative<Numeric>(value);
    default:
        return std::holds_alternative<Bytes>(value);
    }
}

std::optional<double> parse(const std::u16string& text) {
    std::string plain;
    for (const char16_t unit : text)
        plain += unit < 0x80 ? static_cast<char>(unit) : '?';
    const auto first = plain.find_first_not_of(" \t");
    if (first == std::string::npos)
        return std::nullopt;
    const auto last = plain.find_last_not_of(" \t");
    const char* begin = plain.data() + first + (plain[first] == '+' ? 1 : 0);
    const char* end = plain.data() + last + 1;
    double number = 0;
    const auto result = std::from_chars(begin, end, number);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number))
        return std::nullopt;
    return number;
}

double toNumber(const Value& value) {
    struct {
        double operator()(bool held) const { return held ? -1 : 0; }
        double operator()(std::uint8_t held) const { return held; }
        double operator()(std::int16_t held) const { return held; }
        double operator()(std::int32_t held) const { return held; }
        double operator()(Currency held) const {
            return static_cast<double>(held.tenThousandths) / TenThousand;
        }
        double operator()(float held) const { return held; }
        double operator()(double held) const { return held; }
        double operator()(Date held) const { return held.days; }
        double operator()(const std::u16string& held) const {
            const auto number = parse(held);
            return number ? *number : (fail(), 0.0);
        }
        double operator()(std::monostate) const { fail(); }
        double operator()(const Bytes&) const { fail(); }
        double operator()(const Guid&) const { fail(); }
        double operator()(const Numeric&) const { fail(); }
    } visitor;
    return std::visit(visitor, value);
}

template<class T>
T toWhole(double number) {
    number = std::nearbyint(number); // to even, the rounding mode of a new process
    if (!(number >= static_cast<double>(std::numeric_limits<T>::min()) &&
          number <= static_cast<double>(std::numeric_limits<T>::max())))
        fail();
    return static_cast<T>(number);
}

Currency toCurrency(double number) {
    constexpr double limit = 9223372036854775807.0;
    const double scaled = std::nearbyint(number * TenThousand);
    if (!(scaled > -limit && scaled < limit))
        fail();
    return {static_cast<std::int64_t>(scaled)};
}

float toSingle(double number) {
    if (std::isfinite(number) && std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        fail();
    return static_cast<float>(number);
}

std::u16string toText(const Value& value) {
    if (std::holds_alternative<Bytes>(value) || std::holds_alternative<Date>(value))
        fail();
    char text[40];
    // As many digits as the kind can distinguish.
    const int digits = std::holds_alternative<float>(value) ? 7 : 15;
    const int length = std::snprintf(text, sizeof text, "%.*g", digits, toNumber(value));
    return std::u16string(text, text + length);
}

} // namespace

void ConvertValue(ColumnType type, Value& value) {
    if (IsNull(value) || isOf(type, value))
        return;
    switch (type) {
    case ColumnType::Boolean:
        value = toNumber(value) != 0;
        return;
    case ColumnType::Byte:
        value = toWhole<std::uint8_t>(toNumber(value));
        return;
    case ColumnType::Integer:
        value = toWhole<std::int16_t>(toNumber(value));
        return;
    case ColumnType::Long:
        value = toWhole<std::int32_t>(toNumber(value));
        return;
    case ColumnType::Currency:
        value = toCurrency(toNumber(value));
        return;
    case ColumnType::Single:
        value = toSingle(toNumber(value));
        return;
    case ColumnType::Double:
        value = toNumber(value);
        return;
    case ColumnType::DateTime:
        value = Date{toNumber(value)};
        return;
    case ColumnType::Text:
    case ColumnType::Memo:
        value = toText(value);
        return;
    default:
        fail();
    }
}

} // namespace jet
