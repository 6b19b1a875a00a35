#include "jet/text/Compare.h"

#include "jet/base/Error.h"
#include "jet/text/Collation.h"

#include <cmath>
#include <optional>

namespace jet {

namespace {

constexpr std::int64_t currencyScale = 10000;

template<typename T>
int order(const T& a, const T& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

// In ten thousandths; nothing for kinds with a fraction of their own.
std::optional<std::int64_t> exact(const Value& value) {
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? -currencyScale : 0;
    if (const auto* number = std::get_if<std::uint8_t>(&value))
        return *number * currencyScale;
    if (const auto* number = std::get_if<std::int16_t>(&value))
        return *number * currencyScale;
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return *number * currencyScale;
    if (const auto* number = std::get_if<Currency>(&value))
        return number->tenThousandths;
    return std::nullopt;
}

double asDouble(const Value& value) {
    if (const auto* number = std::get_if<float>(&value))
        return *number;
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    if (const auto* date = std::get_if<Date>(&value))
        return date->days;
    return static_cast<double>(*exact(value)) / currencyScale;
}

} // namespace

ValueClass ClassOf(ColumnType type) {
    switch (type) {
    case ColumnType::Text:
    case ColumnType::Memo:
        return ValueClass::Text;
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::Private:
        return ValueClass::Binary;
    case ColumnType::Guid:
        return ValueClass::Uuid;
    default:
        return ValueClass::Number;
    }
}

ValueClass ClassOf(const Value& value) {
    if (IsNull(value))
        return ValueClass::Null;
    if (std::holds_alternative<std::u16string>(value))
        return ValueClass::Text;
    if (std::holds_alternative<Bytes>(value))
        return ValueClass::Binary;
    return std::holds_alternative<Guid>(value) ? ValueClass::Uuid : ValueClass::Number;
}

int CompareValues(const Value& a, const Value& b) {
    const ValueClass kind = ClassOf(a);
    if (kind != ClassOf(b) || kind == ValueClass::Null)
        throw Error(ErrorNumber::DataTypeMismatch);
    switch (kind) {
    case ValueClass::Text:
        return CompareTexts(std::get<std::u16string>(a), std::get<std::u16string>(b));
    case ValueClass::Binary:
        return order(std::get<Bytes>(a), std::get<Bytes>(b));
    case ValueClass::Uuid: {
        const Guid& left = std::get<Guid>(a);
        const Guid& right = std::get<Guid>(b);
        return order(Bytes(left.bytes, left.bytes + 16), Bytes(right.bytes, right.bytes + 16));
    }
    default:
        break;
    }
    const auto left = exact(a);
    const auto right = exact(b);
    return left && right ? order(*left, *right) : order(asDouble(a), asDouble(b));
}

double ToDouble(const Numeric& value, int scale) {
    double result = 0;
    for (const std::uint32_t word : value.words)
        result = result * 4294967296.0 + word;
    result /= std::pow(10.0, scale);
    return value.negative ? -result : result;
}

} // namespace jet
