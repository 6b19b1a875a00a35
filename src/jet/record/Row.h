// One row as bytes: extracts its columns, and builds it from values.
#pragma once

#include "jet/record/TableDefinition.h"

#include <functional>
#include <memory>
#include <span>

namespace jet {

// Longest row that is stored on a page.
inline constexpr int MaximumRowLength = 4060;

// A row in place, on a page or elsewhere: nothing is copied, so it is valid as long as the bytes. On a page
// that is until the next call that changes pages (see Pager::read()): surround fetching a row and using its
// view with a Reading.
class RowView {
public:
    RowView() = default;
    // Throws ReadVerification, naming `page`, if the parts of the row exceed its bytes.
    RowView(std::span<const std::uint8_t> bytes, PageNumber page, bool hasVariableColumns) {
        moveTo(bytes, page, hasVariableColumns);
    }
    // Makes it the view of another row.
    void moveTo(std::span<const std::uint8_t> bytes, PageNumber page, bool hasVariableColumns);

    // Null as stored. A Boolean is never null.
    bool isNull(const Column& column) const { return column.type != ColumnType::Boolean && isUnset(column); }
    // The stored bytes of a column; empty if it is null. Memo and OLE: the definition of the long value
    // (LongValue.h). A Boolean has no bytes.
    std::span<const std::uint8_t> bytes(const Column& column) const {
        if (column.type == ColumnType::Boolean || isUnset(column))
            return {};
        int begin = FixedBegin + column.fixedOffset;
        int end = begin + column.size;
        if (!column.isFixed()) {
            const std::uint8_t* offset = bytes_.data() + variableEnd_ - 2 - 2 * column.variableIndex;
            begin = Load16(offset);
            end = Load16(offset - 2);
        }
        if (begin < FixedBegin || begin > end || end > mask_)
            refuse(column);
        return bytes_.subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    }
    bool boolean(const Column& column) const { return maskBit(column.number); }
    // Whether the row has room for fixed columns of this length (TableDefinition::fixedLength()): then
    // bytes() does not throw for any of them.
    bool holdsFixed(int length) const { return length <= mask_ - FixedBegin; }
    // All bytes of the row.
    std::span<const std::uint8_t> all() const { return bytes_; }
    PageNumber page() const { return page_; }
    // Copies the bytes, so that the view outlives the cached page.
    void keep() const;

private:
    static constexpr int FixedBegin = 2; // the column count comes before the fixed columns

    [[noreturn]] void refuse(const Column& column) const;
    bool isUnset(const Column& column) const {
        return !maskBit(column.number) || (!column.isFixed() && column.variableIndex >= variables_);
    }
    bool maskBit(int number) const {
        const int at = mask_ + number / 8;
        return number < columns_ && (bytes_[static_cast<std::size_t>(at)] >> number % 8 & 1) != 0;
    }

    mutable std::span<const std::uint8_t> bytes_;
    mutable std::shared_ptr<const Bytes> kept_;
    PageNumber page_ = 0;
    int columns_ = 0;     // column count stored in the row
    int variables_ = 0;   // variable columns stored in the row
    int variableEnd_ = 0; // where the number of variable columns is stored
    int mask_ = 0;        // where the null mask begins
};

// Reads the value of a column of a row into `value`, reusing its memory if possible. Memo and OLE are read
// completely through the pager. Throws ReadVerification for bytes that are not such a value.
void DecodeColumn(Pager& pager, const RowView& row, const Column& column, Value& value);

// The same for the stored bytes of anything except Boolean, Memo and OLE.
void DecodeStored(const Column& column, std::span<const std::uint8_t> bytes, PageNumber page, Value& value);

// Builds rows of one table. Made once and used for many rows: it knows the place of each column.
class RowEncoder {
public:
    // The new content of a column: a value of the column's own kind (Convert.h converts it), or the bytes of
    // an existing row. Neither: null.
    struct Field {
        const Value* value = nullptr;
        const RowView* stored = nullptr;
    };
    // Appends the stored form of a Memo or OLE value to the row.
    using PutLongValue = std::function<void(int column, const Value& value, Bytes& into)>;

    // The definition must live as long as the encoder. Throws ReadVerification if columns overlap.
    explicit RowEncoder(const TableDefinition& definition);
    // Builds a row from one field per column of the definition. Replaces `into`, reusing its memory. Throws
    // FieldTooSmall, DataTypeMismatch or RecordTooLarge.
    void encode(std::span<const Field> fields, const PutLongValue& putLong, Bytes& into) const;

private:
    const TableDefinition& definition_;
    std::vector<int> variable_; // by variable index: the column, or -1
    std::vector<int> fixed_;
    std::size_t fixedEnd_ = 0; // where variable data begins
    std::size_t columns_ = 0;  // stored column count
};

} // namespace jet
