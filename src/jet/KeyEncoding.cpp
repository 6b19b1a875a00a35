#include "jet/KeyEncoding.h"

#include "jet/Collation.h"
#include "jet/Damage.h"

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

// Highest byte first.
template<typename Unsigned>
void appendNumber(Unsigned number, Bytes& into) {
    std::uint8_t bytes[sizeof(Unsigned)];
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i)
        bytes[i] = static_cast<std::uint8_t>(number >> 8 * (sizeof(Unsigned) - 1 - i));
    into.insert(into.end(), bytes, bytes + sizeof(Unsigned));
}

// With the sign bit turned over negative numbers come before the others.
template<typename Signed>
void appendSigned(Signed number, Bytes& into) {
    using Unsigned = std::make_unsigned_t<Signed>;
    constexpr auto Sign = static_cast<Unsigned>(Unsigned{1} << (8 * sizeof(Unsigned) - 1));
    appendNumber(static_cast<Unsigned>(static_cast<Unsigned>(number) ^ Sign), into);
}

template<typename Unsigned, typename Float>
void appendFloat(Float number, Bytes& into) {
    if (std::isnan(number))
        throw Error(ErrorNumber::InvalidArgument, "a number that is none cannot be ordered in an index");
    constexpr auto Sign = Unsigned{1} << (8 * sizeof(Unsigned) - 1);
    const auto bits = std::bit_cast<Unsigned>(number == 0 ? Float{0} : number); // one zero, not two
    appendNumber(static_cast<Unsigned>((bits & Sign) == 0 ? bits | Sign : ~bits), into);
}

// Segments of 8 bytes, each followed by a byte that says that more come or how many of the 8 count.
// Descending inverts all but the marks of segments that are not the last.
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

// The bytes in the order in which the number is written.
void appendGuid(const Guid& guid, bool ascending, Bytes& into) {
    constexpr std::uint8_t Written[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::uint8_t bytes[16];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = guid.bytes[Written[i]];
    appendBinary(bytes, ascending, into);
}

// A byte for the sign, which stays as it is in a descending index, then the magnitude.
void appendNumeric(const Numeric& number, bool ascending, Bytes& into) {
    into.push_back(number.negative ? 0x00 : 0xFF);
    const std::size_t start = into.size();
    for (const std::uint32_t word : number.words)
        appendNumber(word, into);
    if (number.negative == ascending)
        invertFrom(into, start);
}

} // namespace

void AppendKey(ColumnType type, bool ascending, const Value& value, Bytes& into) {
    if (IsNull(value) && type != ColumnType::Boolean) {
        into.push_back(ascending ? NullAscending : NullDescending);
        return;
    }
    into.push_back(ascending ? ValueAscending : ValueDescending);
    const std::size_t start = into.size();
    switch (type) {
    case ColumnType::Boolean: // never null: a null one is stored as false
        into.push_back(!IsNull(value) && valueOf<bool>(value) ? 0x00 : 0xFF);
        break;
    case ColumnType::Byte:
        into.push_back(valueOf<std::uint8_t>(value));
        break;
    case ColumnType::Integer:
        appendSigned(valueOf<std::int16_t>(value), into);
        break;
    case ColumnType::Long:
        appendSigned(valueOf<std::int32_t>(value), into);
        break;
    case ColumnType::Currency:
        appendSigned(valueOf<Currency>(value).tenThousandths, into);
        break;
    case ColumnType::Single:
        appendFloat<std::uint32_t>(valueOf<float>(value), into);
        break;
    case ColumnType::Double:
        appendFloat<std::uint64_t>(valueOf<double>(value), into);
        break;
    case ColumnType::DateTime:
        appendFloat<std::uint64_t>(valueOf<Date>(value).days, into);
        break;
    case ColumnType::Text:
    case ColumnType::Memo:
        AppendTextKey(valueOf<std::u16string>(value), into);
        break;
    case ColumnType::Binary:
        return appendBinary(valueOf<Bytes>(value), ascending, into);
    case ColumnType::Guid:
        return appendGuid(valueOf<Guid>(value), ascending, into);
    case ColumnType::Numeric:
        return appendNumeric(valueOf<Numeric>(value), ascending, into);
    default:
        throw Error(ErrorNumber::InvalidArgument, "a column of this type cannot be indexed");
    }
    if (ascending)
        return;
    invertFrom(into, start);
    if (type == ColumnType::Text || type == ColumnType::Memo)
        into.push_back(0);
}

bool IsOrderKnown(const Column& column) {
    if (column.isText())
        return column.language == EnglishLanguage && column.sortVersion == 0;
    return column.type != ColumnType::Ole && column.type != ColumnType::Private;
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
    if (key.size() > MaximumKeyLength)
        throw Error(ErrorNumber::RecordTooLarge, "the row's key in an index is too long");
    return nulls == 0 ? KeyKind::Plain : nulls == parts_.size() ? KeyKind::AllNull : KeyKind::HasNull;
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

} // namespace jet
