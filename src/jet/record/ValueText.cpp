#include "jet/record/ValueText.h"

#include "jet/base/Error.h"
#include "jet/text/DateText.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace jet {

namespace {

constexpr int currencyDecimals = 4;
constexpr int numericDigits = 39; // of the greatest 128-bit number

template<typename Number>
void appendNumber(Number number, std::string& into) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof(text), number);
    into.append(text, result.ptr);
}

// Digits with a point before the last `scale` of them and without trailing zeros.
void appendDecimal(bool negative, std::string digits, int scale, std::string& into) {
    const auto decimals = static_cast<std::size_t>(std::max(scale, 0));
    if (digits.size() <= decimals)
        digits.insert(0, decimals + 1 - digits.size(), '0');
    std::string fraction = digits.substr(digits.size() - decimals);
    while (!fraction.empty() && fraction.back() == '0')
        fraction.pop_back();
    if (negative)
        into += '-';
    into.append(digits, 0, digits.size() - decimals);
    if (!fraction.empty())
        into.append(".").append(fraction);
}

std::string digitsOf(Numeric number) {
    std::string digits;
    do {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : number.words) {
            rest = rest << 32 | word;
            word = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        digits += static_cast<char>('0' + rest);
    } while (std::any_of(number.words, number.words + 4, [](std::uint32_t word) { return word != 0; }));
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// The order in which the bytes of a GUID are written; -1: a hyphen.
constexpr std::array<int, 20> guidOrder = {3,  2, 1, 0,  -1, 5,  4,  -1, 7,  6,
                                           -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};

void appendGuid(const Guid& guid, std::string& into) {
    constexpr char hex[] = "0123456789ABCDEF";
    into += '{';
    for (const int at : guidOrder) {
        if (at < 0) {
            into += '-';
            continue;
        }
        into += hex[guid.bytes[at] >> 4];
        into += hex[guid.bytes[at] & 15];
    }
    into += '}';
}

bool parseGuid(std::string_view text, Guid& guid) {
    if (text.size() != 38 || text.front() != '{' || text.back() != '}')
        return false;
    const char* at = text.data() + 1;
    for (const int byte : guidOrder) {
        if (byte < 0) {
            if (*at++ != '-')
                return false;
            continue;
        }
        if (std::from_chars(at, at + 2, guid.bytes[byte], 16).ptr != at + 2)
            return false;
        at += 2;
    }
    return true;
}

// Sign and digits of a decimal number, scaled to `scale` decimals. False: not a number, or it has more
// decimals that are not zero.
bool parseDecimal(std::string_view text, int scale, bool& negative, std::string& digits) {
    negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    std::string_view fraction = point == std::string_view::npos ? std::string_view{} : text.substr(point + 1);
    while (!fraction.empty() && fraction.back() == '0')
        fraction.remove_suffix(1);
    if (static_cast<int>(fraction.size()) > scale || whole.size() > numericDigits || whole.empty())
        return false;
    digits.assign(whole).append(fraction);
    digits.append(static_cast<std::size_t>(scale) - fraction.size(), '0');
    return std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool parseCurrency(std::string_view text, Currency& value) {
    bool negative = false;
    std::string digits;
    if (!parseDecimal(text, currencyDecimals, negative, digits))
        return false;
    std::string whole(negative ? 1 : 0, '-');
    whole += digits;
    const char* end = whole.data() + whole.size();
    const auto result = std::from_chars(whole.data(), end, value.tenThousandths);
    return result.ec == std::errc{} && result.ptr == end;
}

bool parseNumeric(std::string_view text, int scale, Numeric& value) {
    std::string digits;
    if (!parseDecimal(text, scale, value.negative, digits))
        return false;
    for (const char digit : digits) {
        std::uint64_t carry = static_cast<std::uint64_t>(digit - '0');
        for (int i = 3; i >= 0; --i) {
            carry += std::uint64_t{value.words[i]} * 10;
            value.words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0)
            return false;
    }
    return true;
}

template<typename Number>
bool parseNumber(std::string_view text, Value& value) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    value = number;
    return !text.empty() && result.ec == std::errc{} && result.ptr == end;
}

bool parseBoolean(std::string_view text, Value& value) {
    const auto is = [text](std::string_view word) {
        return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                          [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
    };
    const bool yes = text == "1" || text == "-1" || is("true");
    value = yes;
    return yes || text == "0" || is("false");
}

bool parseDate(std::string_view text, Value& value) {
    if (const auto date = ParseIsoDate(text)) {
        value = *date;
        return true;
    }
    const bool number = parseNumber<double>(text, value);
    value = number ? Date{std::get<double>(value)} : Date{};
    return number;
}

bool parse(std::string_view text, const Column& column, Value& value) {
    switch (column.type) {
    case ColumnType::Boolean:
        return parseBoolean(text, value);
    case ColumnType::Byte:
        return parseNumber<std::uint8_t>(text, value);
    case ColumnType::Integer:
        return parseNumber<std::int16_t>(text, value);
    case ColumnType::Long:
        return parseNumber<std::int32_t>(text, value);
    case ColumnType::Currency:
        return parseCurrency(text, value.emplace<Currency>());
    case ColumnType::Single:
        return parseNumber<float>(text, value);
    case ColumnType::Double:
        return parseNumber<double>(text, value);
    case ColumnType::DateTime:
        return parseDate(text, value);
    case ColumnType::Text:
    case ColumnType::Memo:
        value = ToUtf16(text);
        return true;
    case ColumnType::Guid:
        return parseGuid(text, value.emplace<Guid>());
    case ColumnType::Numeric:
        return parseNumeric(text, column.scale(), value.emplace<Numeric>());
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::Private:
        break;
    }
    return ParseBase64(text, value.emplace<Bytes>());
}

struct Appender {
    std::string& into;
    int scale;
    char dateSeparator;

    void operator()(std::monostate) const {}
    void operator()(bool flag) const { into += flag ? '1' : '0'; }
    void operator()(std::uint8_t number) const { appendNumber<int>(number, into); }
    void operator()(std::int16_t number) const { appendNumber(number, into); }
    void operator()(std::int32_t number) const { appendNumber(number, into); }
    void operator()(float number) const { appendNumber(number, into); }
    void operator()(double number) const { appendNumber(number, into); }
    void operator()(Currency number) const {
        const bool negative = number.tenThousandths < 0;
        const auto bits = static_cast<std::uint64_t>(number.tenThousandths);
        appendDecimal(negative, std::to_string(negative ? 0 - bits : bits), currencyDecimals, into);
    }
    void operator()(Date date) const {
        if (!AppendDate(date, dateSeparator, into))
            appendNumber(date.days, into);
    }
    void operator()(const std::u16string& text) const { into += ToUtf8(text); }
    void operator()(const Bytes& bytes) const { AppendBase64(bytes.data(), bytes.size(), into); }
    void operator()(const Guid& guid) const { appendGuid(guid, into); }
    void operator()(const Numeric& number) const {
        appendDecimal(number.negative, digitsOf(number), scale, into);
    }
};

constexpr char base64Signs[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

void AppendWhole(std::int32_t number, std::string& into) {
    appendNumber(number, into);
}

void AppendValueText(const Value& value, int scale, std::string& into, char dateSeparator) {
    std::visit(Appender{into, scale, dateSeparator}, value);
}

Value ParseValueText(std::string_view text, const Column& column) {
    Value value;
    if (!parse(text, column, value)) {
        constexpr std::size_t shown = 60;
        throw Error(ErrorNumber::TypeConversion,
                    "field " + ToUtf8(column.name) + ": '" + std::string(text.substr(0, shown)) + '\'');
    }
    return value;
}

void AppendBase64(const std::uint8_t* bytes, std::size_t length, std::string& into) {
    for (std::size_t i = 0; i < length; i += 3) {
        const std::size_t n = std::min<std::size_t>(3, length - i);
        const std::uint32_t group = static_cast<std::uint32_t>(bytes[i]) << 16 |
                                    static_cast<std::uint32_t>(n > 1 ? bytes[i + 1] : 0) << 8 |
                                    (n > 2 ? bytes[i + 2] : 0u);
        into += base64Signs[group >> 18];
        into += base64Signs[group >> 12 & 63];
        into += n > 1 ? base64Signs[group >> 6 & 63] : '=';
        into += n > 2 ? base64Signs[group & 63] : '=';
    }
}

bool ParseBase64(std::string_view text, Bytes& into) {
    static const auto values = [] {
        std::array<std::int8_t, 256> table{};
        table.fill(-1);
        for (int i = 0; i < 64; ++i)
            table[static_cast<unsigned char>(base64Signs[i])] = static_cast<std::int8_t>(i);
        return table;
    }();
    if (text.size() % 4 != 0)
        return false;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    into.clear();
    into.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const std::size_t signs = i + 4 == text.size() ? 4 - padding : 4;
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const int value = k < signs ? values[static_cast<unsigned char>(text[i + k])] : 0;
            if (value < 0)
                return false;
            group = group << 6 | static_cast<std::uint32_t>(value);
        }
        for (std::size_t k = 1; k < signs; ++k)
            into.push_back(static_cast<std::uint8_t>(group >> (24 - 8 * k)));
    }
    return true;
}

} // namespace jet
