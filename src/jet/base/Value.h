// One value of a column, and the kinds of columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet {

enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,  // 16-bit
    Long = 4,     // 32-bit
    Currency = 5, // 64-bit, value times 10000
    Single = 6,
    Double = 7,
    DateTime = 8, // days since 1899-12-30 and the fraction of a day
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Private = 17, // bytes in another program's own tables
};

struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};

struct Date {
    double days = 0; // since 1899-12-30 00:00; also before that day the fraction counts forward from midnight
    bool operator==(const Date&) const = default;
};

using Bytes = std::vector<std::uint8_t>;

struct Guid {
    std::uint8_t bytes[16] = {}; // as stored
    bool operator==(const Guid&) const = default;
};

// Sign and 128-bit magnitude; the scale belongs to the column.
struct Numeric {
    bool negative = false;
    std::uint32_t words[4] = {}; // most significant first
    bool operator==(const Numeric&) const = default;
};

// Null is std::monostate. Text and Memo are UTF-16; Binary, OLE and Private are bytes.
using Value = std::variant<std::monostate, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float,
                           double, Date, std::u16string, Bytes, Guid, Numeric>;

inline bool IsNull(const Value& value) {
    return std::holds_alternative<std::monostate>(value);
}

std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);

} // namespace jet
