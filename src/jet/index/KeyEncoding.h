// Index keys: the values of an index's columns as one byte string, such that comparing bytes orders rows as
// the index does. Each column's code begins with a byte that distinguishes null from a value and is never a
// prefix of another code, so the key of the leading columns is a prefix of the whole key.
#pragma once

#include "jet/record/Row.h"

#include <span>

namespace jet {

// Longest key that a tree accepts: two entries must fit one inner page.
inline constexpr std::size_t MaximumKeyLength = 1800;

// Appends the code of one value, which is null or of the column type's own kind (see Value.h). Throws
// DataTypeMismatch for a value of another kind, InvalidArgument for a type that cannot be indexed (OLE and
// other programs' own), for NaN, or for a text that cannot be ordered (Collation.h).
void AppendKey(ColumnType type, bool ascending, const Value& value, Bytes& into);

// Appends the common part, after the first byte, of the codes of all texts that begin with this one,
// regardless of case.
void AppendTextStart(bool ascending, std::u16string_view text, Bytes& into);

// Whether the order of a column's values is known: false for texts of another language or a later order, and
// for types that are never indexed. A table with an index on such a column is read-only.
bool IsOrderKnown(const Column& column);

// How the key of a row came out.
enum class KeyKind {
    Plain,
    AllNull, // all its columns are null: no entry if the index ignores nulls; never a duplicate
    HasNull, // some are
};

// Builds the keys of one index. Cheap to make and to copy; holds no reference to the table's definition.
class KeyEncoder {
public:
    KeyEncoder() = default;
    // Throws ReadVerification if the index names a column that the table does not have.
    KeyEncoder(const TableDefinition& table, const RealIndex& index);

    // One column of the key: the position of its value among the values of a row (the order of
    // TableDefinition::columns), and its coding.
    struct Part {
        int column = 0;
        ColumnType type = ColumnType::Long;
        bool ascending = true;
    };
    std::span<const Part> parts() const { return parts_; }

    // Replaces `key` by the key of a row. Throws like
    // AppendKey(), or RecordTooLarge above MaximumKeyLength.
    KeyKind encodeRow(std::span<const Value> row, Bytes& key) const;
    // The same for a row as stored; `columns`: those of the table's definition. Also throws ReadVerification
    // for bytes that are not a valid value. Cost: no memory is allocated for numbers and plain texts.
    KeyKind encodeStored(Pager& pager, const RowView& row, std::span<const Column> columns, Bytes& key) const;
    // Replaces `key` by the key of values in the order of the index's columns. With fewer values than columns
    // it is the prefix of all keys with these values.
    void encodeLeading(std::span<const Value> values, Bytes& key) const;
    // Whether it is the key of rows in which all columns are null.
    bool isAllNull(std::span<const std::uint8_t> key) const;

private:
    std::vector<Part> parts_;
};

} // namespace jet
