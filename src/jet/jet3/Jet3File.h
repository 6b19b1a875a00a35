// Reads the older file format, Jet 3: tables, rows and values. Import (Jet3Import.h) converts it to a
// database of the present format.
#pragma once

#include "jet/base/Error.h"
#include "jet/base/RowSet.h"
#include "jet/record/TableDefinition.h"

#include <functional>
#include <span>

namespace jet {

class Jet3File {
public:
    static constexpr std::size_t PageSize3 = 2048;

    // The bytes of a whole file, which must outlive this object. Throws Unrecognised for another format, for
    // an encrypted file, or for texts in a code page other than 1252.
    explicit Jet3File(std::span<const std::uint8_t> file);

    // A table's definition, in the terms of the present format: columns and indexes, with roots and maps of
    // the file. Throws ReadVerification if its bytes are not a definition.
    TableDefinition definition(PageNumber page) const;
    using OnDamage = std::function<void(const Error&)>;
    // Calls `visit` with the values of each row, in the order of the definition's columns. A damaged row or
    // page is skipped, a damaged value is null, and `damaged` gets each error.
    void forEachRow(const TableDefinition& table, const std::function<void(std::span<Value>)>& visit,
                    const OnDamage& damaged) const;

private:
    using View = std::span<const std::uint8_t>;
    struct Slot {
        View bytes;
        bool hidden;
        bool pointer;
    };
    View page(PageNumber number) const;
    Slot slot(PageNumber page, int row) const;
    int slotCount(PageNumber page) const;
    std::vector<PageNumber> mapPages(RowPointer map) const;
    // `pieces`: of long values that were already read. No piece belongs to two values, so that no file grows
    // beyond its size.
    void decodeRow(const TableDefinition& table, View row, PageNumber page, std::span<Value> values,
                   RowSet& pieces, const OnDamage& damaged) const;
    void decodeValue(const Column& column, View bytes, PageNumber page, RowSet& pieces, Value& value) const;
    Bytes longValue(View definition, PageNumber page, RowSet& pieces) const;

    View file_;
};

// Text of code page 1252.
std::u16string FromCodePage1252(std::span<const std::uint8_t> bytes);

} // namespace jet
