#include "jet/index/KeyEncoding.h"

#include "jet/base/Damage.h"
#include "jet/text/Collation.h"
#include "jet/text/TextCompression.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace jet {

namespace {

constexpr std::uint8_t NullAscending = 0x00;
constexpr std::uint8_t NullDescending = 0xFF;
constexpr std::uint8_t ValueAscending = 0x7F;
constexpr std::uint8_t ValueDescending = 0x80;

constexpr std::size_t BinarySegment = 8;
constexpr std::uint8_t MoreSegments = 9; // in place of the number of bytes in a segment

template<typename Kind>
const Kind& valueOf(const Value& value) {
    const Kind* kind = std::get_if<Kind>(&value);
    if (kind == nullptr)
        throw Error(ErrorNumber::DataTypeMismatch, "a value of another kind than the index's column");
    return *kind;
}

void invertFrom(Bytes& bytes, std::size_t start) {
    for (std::size_t i = start; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(~bytes[i]);
}

// Numbers with the same order as the values: with the sign bit inverted, negative ones come first.
template<typename Signed>
auto orderOf(Signed number) {
    using Unsigned = std::make_unsigned_t<Signed>;
    constexpr auto Sign = static_cast<Unsigned>(Unsigned{1} << (8 * sizeof(Unsigned) - 1));
    return static_cast<Unsigned>(static_cast<Unsigned>(number) ^ Sign);
}

template<typename Unsigned, typename Float>
Unsigned orderOfFloat(Float number) {
    if (std::isnan(number))
        throw Error(ErrorNumber::InvalidArgument, "a number that is none cannot be ordered in an index");
    constexpr auto Sign = Unsigned{1} << (8 * sizeof(Unsigned) - 1);
    const auto bits = std::bit_cast<Unsigned>(number == 0 ? Float{0} : number); // one zero, not two
    return (bits & Sign) == 0 ? bits | Sign : ~bits;
}

std::uint32_t orderOf(float number) {
    return orderOfFloat<std::uint32_t>(number);
}

std::uint64_t orderOf(double number) {
    return orderOfFloat<std::uint64_t>(number);
}

// The code of a number: highest byte first.
template<typename Unsigned>
void appendCode(bool ascending, Unsigned order, Bytes& into) {
    std::uint8_t bytes[1 + sizeof(Unsigned)] = {ascending ? ValueAscending : ValueDescending};
    if (!ascending)
        order = static_cast<Unsigned>(~order);
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i)
        bytes[1 + i] = static_cast<std::uint8_t>(order >> 8 * (sizeof(Unsigned) - 1 - i));
    into.insert(into.end(), bytes, bytes + sizeof bytes);
}

// Turns the ascending key of a text, which was appended after a mark at `start`, into its code.
void finishText(bool ascending, std::size_t start, Bytes& into) {
    if (ascending)
        return;
    invertFrom(into, start + 1);
    into.push_back(0);
}

// Segments of 8 bytes, each followed by a byte: more follow, or how many of the 8 count. Descending inverts
// everything except the marks of segments that are not the last.
void appendBinary(std::span<const std::uint8_t> data, bool ascending, Bytes& into) {
    const auto flip = [ascending](std::uint8_t byte) {
        return ascending ? byte : static_cast<std::uint8_t>(~byte);
    };
    std::size_t at = 0;
    do {
        const std::size_t count = std::min(BinarySegment, data.size() - at);
        for (std::size_t i = 0; i < BinarySegment; ++i)
            into.push_back(flip(i < count ? data[at + i] : 0));
        at += count;
        into.push_back(at < data.size() ? MoreSegments : flip(static_cast<std::uint8_t>(count)));
    } while (at < data.size());
}

// The bytes in the order of the number's written form.
void appendGuid(const Guid& guid, bool ascending, Bytes& into) {
    constexpr std::uint8_t Written[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::uint8_t bytes[16];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = guid.bytes[Written[i]];
    appendBinary(bytes, ascending, into);
}

// A sign byte, which is not inverted in a descending index, then the magnitude.
void appendNumeric(const Numeric& number, bool ascending, Bytes& into) {
    into.push_back(number.negative ? 0x00 : 0xFF);
    const std::size_t start = into.size();
    for (const std::uint32_t word : number.words)
        for (int shift = 24; shift >= 0; shift -= 8)
            into.push_back(static_cast<std::uint8_t>(word >> shift));
    if (number.negative == ascending)
        invertFrom(into, start);
}

// Never null: null is stored as false.
void appendBoolean(bool value, bool ascending, Bytes& into) {
    appendCode(ascending, static_cast<std::uint8_t>(value ? 0x00 : 0xFF), into);
}

} // namespace

void AppendKey(ColumnType type, bool ascending, const Value& value, Bytes& into) {
    if (type == ColumnType::Boolean)
        return appendBoolean(!IsNull(value) && valueOf<bool>(value), ascending, into);
    if (IsNull(value)) {
        into.push_back(ascending ? NullAscending : NullDescending);
        return;
    }
    const std::uint8_t mark = ascending ? ValueAscending : ValueDescending;
    const std::size_t start = into.size();
    switch (type) {
    case ColumnType::Byte:
        return appendCode(ascending, valueOf<std::uint8_t>(value), into);
    case ColumnType::Integer:
        return appendCode(ascending, orderOf(valueOf<std::int16_t>(value)), into);
    case ColumnType::Long:
        return appendCode(ascending, orderOf(valueOf<std::int32_t>(value)), into);
    case ColumnType::Currency:
        return appendCode(ascending, orderOf(valueOf<Currency>(value).tenThousandths), into);
    case ColumnType::Single:
        return appendCode(ascending, orderOf(valueOf<float>(value)), into);
    case ColumnType::Double:
        return appendCode(ascending, orderOf(valueOf<double>(value)), into);
    case ColumnType::DateTime:
        return appendCode(ascending, orderOf(valueOf<Date>(value).days), into);
    case ColumnType::Text:
    case ColumnType::Memo:
        into.push_back(mark);
        AppendTextKey(valueOf<std::u16string>(value), into);
        return finishText(ascending, start, into);
    case ColumnType::Binary:
        into.push_back(mark);
        return appendBinary(valueOf<Bytes>(value), ascending, into);
    case ColumnType::Guid:
        into.push_back(mark);
        return appendGuid(valueOf<Guid>(value), ascending, into);
    case ColumnType::Numeric:
        into.push_back(mark);
        return appendNumeric(valueOf<Numeric>(value), ascending, into);
    default:
        throw Error(ErrorNumber::InvalidArgument, "a column of this type cannot be indexed");
    }
}

namespace {

// The same for a column of a row, without making values of numbers and plain texts. Returns whether it is
// null.
bool appendStoredKey(Pager& pager, const RowView& row, const Column& column, bool ascending, Bytes& into) {
    if (column.type == ColumnType::Boolean) {
        appendBoolean(row.boolean(column), ascending, into);
        return false;
    }
    if (row.isNull(column)) {
        into.push_back(ascending ? NullAscending : NullDescending);
        return true;
    }
    const auto bytes = row.bytes(column);
    const auto code = [&](auto order) {
        appendCode(ascending, order, into);
        return false;
    };
    const std::uint8_t* at = bytes.data();
    if (column.type == ColumnType::Long && bytes.size() == 4)
        return code(orderOf(static_cast<std::int32_t>(Load32(at))));
    if (column.type == ColumnType::Integer && bytes.size() == 2)
        return code(orderOf(static_cast<std::int16_t>(Load16(at))));
    if (column.type == ColumnType::DateTime && bytes.size() == 8)
        return code(orderOf(std::bit_cast<double>(Load64(at))));
    if (column.type == ColumnType::Text) {
        if (const auto plain = PlainText(bytes)) {
            const std::size_t start = into.size();
            into.push_back(ascending ? ValueAscending : ValueDescending);
            AppendTextKey(*plain, into);
            finishText(ascending, start, into);
            return false;
        }
    }
    Value value;
    DecodeColumn(pager, row, column, value);
    AppendKey(column.type, ascending, value, into);
    return false;
}

KeyKind kindOf(std::size_t nulls, std::size_t parts) {
    return nulls == 0 ? KeyKind::Plain : nulls == parts ? KeyKind::AllNull : KeyKind::HasNull;
}

void checkLength(const Bytes& key) {
    if (key.size() > MaximumKeyLength)
        throw Error(ErrorNumber::RecordTooLarge, "the row's key in an index is too long");
}

} // namespace

void AppendTextStart(bool ascending, std::u16string_view text, Bytes& into) {
    const std::size_t start = into.size();
    AppendTextKeyStart(text, into);
    if (!ascending)
        invertFrom(into, start);
}

bool IsOrderKnown(const Column& column) {
    if (column.isText())
        return column.language == EnglishLanguage && column.sortVersion == 0;
    return StoredSize(column.type) != 0 || column.type == ColumnType::Binary;
}

KeyEncoder::KeyEncoder(const TableDefinition& table, const RealIndex& index) {
    for (const IndexColumn& column : index.columns) {
        const int position = table.findColumnNumber(column.number);
        if (position < 0)
            Damaged(table.page, "an index names a column that is not there");
        parts_.push_back(
            {position, table.columns[static_cast<std::size_t>(position)].type, column.ascending});
    }
}

KeyKind KeyEncoder::encodeRow(std::span<const Value> row, Bytes& key) const {
    key.clear();
    std::size_t nulls = 0;
    for (const Part& part : parts_) {
        const Value& value = row[static_cast<std::size_t>(part.column)];
        nulls += IsNull(value) && part.type != ColumnType::Boolean ? 1 : 0;
        AppendKey(part.type, part.ascending, value, key);
    }
    checkLength(key);
    return kindOf(nulls, parts_.size());
}

KeyKind KeyEncoder::encodeStored(Pager& pager, const RowView& row, std::span<const Column> columns,
                                 Bytes& key) const {
    key.clear();
    std::size_t nulls = 0;
    for (const Part& part : parts_) {
        const Column& column = columns[static_cast<std::size_t>(part.column)];
        nulls += appendStoredKey(pager, row, column, part.ascending, key) ? 1 : 0;
    }
    checkLength(key);
    return kindOf(nulls, parts_.size());
}

void KeyEncoder::encodeLeading(std::span<const Value> values, Bytes& key) const {
    if (values.empty() || values.size() > parts_.size())
        throw Error(ErrorNumber::InvalidArgument, "the index has " + std::to_string(parts_.size()) +
                                                      " columns, but " + std::to_string(values.size()) +
                                                      " values were given");
    key.clear();
    for (std::size_t i = 0; i < values.size(); ++i)
        AppendKey(parts_[i].type, parts_[i].ascending, values[i], key);
}

bool KeyEncoder::isAllNull(std::span<const std::uint8_t> key) const {
    return std::equal(key.begin(), key.end(), parts_.begin(), parts_.end(),
                      [](std::uint8_t code, const Part& part) {
                          return part.type != ColumnType::Boolean &&
                                 code == (part.ascending ? NullAscending : NullDescending);
                      });
}

} // namespace jet
