// The properties of an object and its columns ("Required", "AllowZeroLength", "DefaultValue", ...), from the
// LvProp column of the catalogue. Unknown ones are kept as they are.
#pragma once

#include "jet/base/Value.h"

#include <span>

namespace jet {

struct Property {
    std::u16string name;
    bool definition = false; // part of the table's design; false: a program's own annotation
    ColumnType type = ColumnType::Text;
    Bytes value; // Boolean: one byte; text: UTF-16
};

struct PropertyBlob {
    // Properties of the object itself (no column) or of one column.
    struct Owner {
        static constexpr std::uint16_t ObjectKind = 0;
        static constexpr std::uint16_t ColumnKind = 1;
        std::uint16_t kind = ColumnKind;
        std::u16string column;
        std::vector<Property> properties;
        Bytes reserved; // after the name in the head
    };
    // A block of an unknown kind.
    struct Other {
        std::uint16_t kind = 0;
        Bytes content;
    };
    std::vector<Owner> owners;
    std::vector<Other> others;

    // Null: no such property. An empty column name means the object itself.
    const Property* find(std::u16string_view column, std::u16string_view name) const;
    bool flag(std::u16string_view column, std::u16string_view name) const; // false when absent
    // Text of a property; empty when absent or of another kind.
    std::u16string text(std::u16string_view column, std::u16string_view name) const;
    void set(std::u16string_view column, Property property);
    void setFlag(std::u16string_view column, std::u16string_view name, bool value);
    void renameColumn(std::u16string_view from, std::u16string_view to);
    void removeColumn(std::u16string_view column);
    bool empty() const { return owners.empty() && others.empty(); }
};

// Empty bytes are an empty blob. Throws Corrupt for bytes that are not properties.
PropertyBlob DecodeProperties(std::span<const std::uint8_t> bytes);
Bytes EncodeProperties(const PropertyBlob& blob);

} // namespace jet
