#include "jet/record/Row.h"

#include "jet/base/Damage.h"
#include "jet/record/LongValue.h"
#include "jet/text/TextCompression.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet {

namespace {

constexpr int CountLength = 2; // of the column count before the fixed columns
// Reading a longer value may evict the row's page from memory.
constexpr std::uint32_t PinnedLength = 32 * PageSize;

// Buffer for assembling the pieces of a memo.
Bytes& scratch() {
    thread_local Bytes bytes;
    return bytes;
}

// The alternative of the value in `into`, kept if it is already there so that its memory is reused.
template<class T>
T& alternative(Value& into) {
    if (T* held = std::get_if<T>(&into))
        return *held;
    return into.emplace<T>();
}

template<class T>
const T& expect(const Value& value, const Column& column) {
    if (const T* held = std::get_if<T>(&value))
        return *held;
    throw Error(ErrorNumber::DataTypeMismatch, "field '" + ToUtf8(column.name) + "'");
}

void append32(Bytes& into, std::uint32_t value) {
    into.resize(into.size() + 4);
    Store32(into.data() + into.size() - 4, value);
}

void append64(Bytes& into, std::uint64_t value) {
    into.resize(into.size() + 8);
    Store64(into.data() + into.size() - 8, value);
}

// Appends the stored form of anything except Boolean, Memo and OLE.
void appendStored(const Column& column, const Value& value, Bytes& into) {
    switch (column.type) {
    case ColumnType::Byte:
        into.push_back(expect<std::uint8_t>(value, column));
        return;
    case ColumnType::Integer: {
        const auto number = static_cast<std::uint16_t>(expect<std::int16_t>(value, column));
        into.push_back(static_cast<std::uint8_t>(number));
        into.push_back(static_cast<std::uint8_t>(number >> 8));
        return;
    }
    case ColumnType::Long:
        return append32(into, static_cast<std::uint32_t>(expect<std::int32_t>(value, column)));
    case ColumnType::Currency:
        return append64(into, static_cast<std::uint64_t>(expect<Currency>(value, column).tenThousandths));
    case ColumnType::Single:
        return append32(into, std::bit_cast<std::uint32_t>(expect<float>(value, column)));
    case ColumnType::Double:
        return append64(into, std::bit_cast<std::uint64_t>(expect<double>(value, column)));
    case ColumnType::DateTime:
        return append64(into, std::bit_cast<std::uint64_t>(expect<Date>(value, column).days));
    case ColumnType::Guid: {
        const Guid& guid = expect<Guid>(value, column);
        into.insert(into.end(), std::begin(guid.bytes), std::end(guid.bytes));
        return;
    }
    case ColumnType::Numeric: {
        const Numeric& number = expect<Numeric>(value, column);
        into.push_back(number.negative ? 0x80 : 0);
        for (const std::uint32_t word : number.words)
            append32(into, word);
        return;
    }
    case ColumnType::Text: {
        const auto& text = expect<std::u16string>(value, column);
        if (text.size() * 2 > column.size)
            throw Error(ErrorNumber::FieldTooSmall, "field '" + ToUtf8(column.name) + "'");
        return EncodeText(text, (column.extended & Column::Compressed) != 0, into);
    }
    default: {
        const Bytes& bytes = expect<Bytes>(value, column);
        if (bytes.size() > column.size)
            throw Error(ErrorNumber::FieldTooSmall, "field '" + ToUtf8(column.name) + "'");
        into.insert(into.end(), bytes.begin(), bytes.end());
    }
    }
}

} // namespace

void RowView::moveTo(std::span<const std::uint8_t> bytes, PageNumber page, bool hasVariableColumns) {
    bytes_ = bytes;
    kept_.reset();
    page_ = page;
    variables_ = variableEnd_ = 0;
    const int length = static_cast<int>(bytes.size());
    if (length < FixedBegin)
        Damaged(page, "a row is too short");
    columns_ = Load16(bytes.data());
    mask_ = length - (columns_ + 7) / 8;
    if (mask_ < FixedBegin)
        Damaged(page, "a row is too short for its columns");
    if (!hasVariableColumns)
        return;
    // A row from before the first variable column was added
    // lacks that part, and then no column needs it.
    variableEnd_ = mask_ - 2;
    if (variableEnd_ < FixedBegin)
        return;
    variables_ = Load16(bytes.data() + variableEnd_);
    if (variableEnd_ - 2 - 2 * variables_ < FixedBegin)
        variables_ = 0;
}

void RowView::keep() const {
    if (kept_ != nullptr)
        return;
    kept_ = std::make_shared<const Bytes>(bytes_.begin(), bytes_.end());
    bytes_ = *kept_;
}

void RowView::refuse(const Column& column) const {
    Damaged(page_, "column '" + ToUtf8(column.name) + "' lies outside its row");
}

void DecodeStored(const Column& column, std::span<const std::uint8_t> bytes, PageNumber page, Value& value) {
    const auto need = [&](std::size_t length) {
        if (bytes.size() != length)
            Damaged(page, "column '" + ToUtf8(column.name) + "' holds no value of its kind");
        return bytes.data();
    };
    switch (column.type) {
    case ColumnType::Byte:
        value = *need(1);
        return;
    case ColumnType::Integer:
        value = static_cast<std::int16_t>(Load16(need(2)));
        return;
    case ColumnType::Long:
        value = static_cast<std::int32_t>(Load32(need(4)));
        return;
    case ColumnType::Currency:
        value = Currency{static_cast<std::int64_t>(Load64(need(8)))};
        return;
    case ColumnType::Single:
        value = std::bit_cast<float>(Load32(need(4)));
        return;
    case ColumnType::Double:
        value = std::bit_cast<double>(Load64(need(8)));
        return;
    case ColumnType::DateTime:
        value = Date{std::bit_cast<double>(Load64(need(8)))};
        return;
    case ColumnType::Guid:
        std::memcpy(alternative<Guid>(value).bytes, need(16), 16);
        return;
    case ColumnType::Numeric: {
        const std::uint8_t* at = need(17);
        Numeric& number = alternative<Numeric>(value);
        number.negative = (at[0] & 0x80) != 0;
        for (int word = 0; word < 4; ++word)
            number.words[word] = Load32(at + 1 + 4 * word);
        return;
    }
    case ColumnType::Text:
        if (!DecodeText(bytes, alternative<std::u16string>(value)))
            Damaged(page, "column '" + ToUtf8(column.name) + "' holds no text");
        return;
    default:
        alternative<Bytes>(value).assign(bytes.begin(), bytes.end());
    }
}

void DecodeColumn(Pager& pager, const RowView& row, const Column& column, Value& value) {
    if (column.type == ColumnType::Boolean) {
        value = row.boolean(column);
    } else if (row.isNull(column)) {
        value = std::monostate{};
    } else if (column.isLong()) {
        LongValueReader reader(pager, row.bytes(column), row.page());
        if (reader.size() > PinnedLength)
            row.keep();
        std::span<const std::uint8_t> piece = reader.next();
        Bytes& whole = column.type == ColumnType::Ole ? alternative<Bytes>(value) : scratch();
        whole.clear();
        if (piece.size() < reader.size() || column.type == ColumnType::Ole) {
            for (; !piece.empty(); piece = reader.next())
                whole.insert(whole.end(), piece.begin(), piece.end());
            piece = whole;
        }
        if (column.type == ColumnType::Memo && !DecodeText(piece, alternative<std::u16string>(value)))
            Damaged(row.page(), "column '" + ToUtf8(column.name) + "' holds no text");
    } else {
        DecodeStored(column, row.bytes(column), row.page(), value);
    }
}

RowEncoder::RowEncoder(const TableDefinition& definition)
    : definition_(definition)
    , variable_(definition.variableColumns, -1)
    , fixedEnd_(static_cast<std::size_t>(CountLength + definition.fixedLength())) {
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        const Column& column = definition.columns[i];
        columns_ = std::max<std::size_t>(columns_, column.number + 1u);
        if (column.isFixed()) {
            if (column.type != ColumnType::Boolean)
                fixed_.push_back(static_cast<int>(i));
            continue;
        }
        if (variable_[column.variableIndex] >= 0)
            Damaged(definition.page, "two columns have one place in the row");
        variable_[column.variableIndex] = static_cast<int>(i);
    }
    std::sort(fixed_.begin(), fixed_.end(), [&](int a, int b) {
        return definition.columns[static_cast<std::size_t>(a)].fixedOffset <
               definition.columns[static_cast<std::size_t>(b)].fixedOffset;
    });
    for (std::size_t i = 1; i < fixed_.size(); ++i) {
        const Column& before = definition.columns[static_cast<std::size_t>(fixed_[i - 1])];
        if (before.fixedOffset + before.size >
            definition.columns[static_cast<std::size_t>(fixed_[i])].fixedOffset)
            Damaged(definition.page, "two columns have one place in the row");
    }
}

void RowEncoder::encode(std::span<const Field> fields, const PutLongValue& putLong, Bytes& into) const {
    const auto isSet = [&](int index) {
        const Field& field = fields[static_cast<std::size_t>(index)];
        const Column& column = definition_.columns[static_cast<std::size_t>(index)];
        return field.value != nullptr ? !IsNull(*field.value)
                                      : field.stored != nullptr && !field.stored->isNull(column);
    };
    into.assign(fixedEnd_, 0);
    Store16(into.data(), static_cast<std::uint32_t>(columns_));
    for (const int index : fixed_) {
        if (!isSet(index))
            continue;
        // First written after the fixed part: so one routine serves fixed and variable columns.
        const Field& field = fields[static_cast<std::size_t>(index)];
        const Column& column = definition_.columns[static_cast<std::size_t>(index)];
        std::size_t length = 0;
        if (field.value != nullptr) {
            appendStored(column, *field.value, into);
            length = into.size() - fixedEnd_;
        } else {
            const auto bytes = field.stored->bytes(column);
            into.insert(into.end(), bytes.begin(), bytes.end());
            length = bytes.size();
        }
        length = std::min<std::size_t>(length, column.size);
        std::memcpy(into.data() + CountLength + column.fixedOffset, into.data() + fixedEnd_, length);
        into.resize(fixedEnd_);
    }

    if (!variable_.empty()) {
        // Where each variable column begins; 255 of them at most, but in another engine's file many may have
        // been dropped.
        thread_local std::vector<std::uint16_t> offsets;
        offsets.clear();
        for (const int index : variable_) {
            offsets.push_back(static_cast<std::uint16_t>(into.size()));
            if (index < 0 || !isSet(index))
                continue;
            const Field& field = fields[static_cast<std::size_t>(index)];
            const Column& column = definition_.columns[static_cast<std::size_t>(index)];
            if (field.value == nullptr) {
                const auto bytes = field.stored->bytes(column);
                into.insert(into.end(), bytes.begin(), bytes.end());
            } else if (column.isLong()) {
                putLong(index, *field.value, into);
            } else {
                appendStored(column, *field.value, into);
            }
            if (into.size() > MaximumRowLength)
                throw Error(ErrorNumber::RecordTooLarge);
        }
        std::size_t at = into.size();
        into.resize(at + 4 + 2 * offsets.size());
        Store16(into.data() + at, static_cast<std::uint32_t>(at));
        for (std::size_t i = offsets.size(); i-- > 0;)
            Store16(into.data() + (at += 2), offsets[i]);
        Store16(into.data() + at + 2, static_cast<std::uint32_t>(offsets.size()));
    }

    const std::size_t mask = into.size();
    into.resize(mask + (columns_ + 7) / 8, 0);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = definition_.columns[i];
        const Field& field = fields[i];
        bool bit = isSet(static_cast<int>(i));
        if (column.type == ColumnType::Boolean)
            bit = field.value == nullptr ? field.stored != nullptr && field.stored->boolean(column)
                  : IsNull(*field.value) ? false
                                         : expect<bool>(*field.value, column);
        if (bit)
            into[mask + column.number / 8u] |= static_cast<std::uint8_t>(1u << column.number % 8);
    }
    if (into.size() > MaximumRowLength)
        throw Error(ErrorNumber::RecordTooLarge);
}

} // namespace jet
