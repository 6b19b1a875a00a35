// A small file of the older format, built byte by byte: a catalogue, a table with every kind of row and value
// that the format stores in its own way, and a query.
#pragma once

#include "jet/base/LittleEndian.h"
#include "jet/jet3/Jet3File.h"
#include "jet/page/PageZero.h"

#include <algorithm>
#include <cstring>

namespace jet::tests {

class Jet3Builder {
public:
    static constexpr std::size_t Size = Jet3File::PageSize3;
    static constexpr PageNumber Maps = 1, Objects = 2, ObjectRows = 3, Songs = 4, SongRows = 5, MoreRows = 6,
                                LongValues = 7, Pages = 8;
    static constexpr const char* LongTitle = "a title that ends behind the first 256 bytes of its row";

    Bytes file = Bytes(Pages * Size);

    Jet3Builder() {
        header();
        for (const PageNumber page : {Maps, ObjectRows, SongRows, MoreRows, LongValues})
            format(page);
        Store32(at(ObjectRows) + 4, Objects);
        Store32(at(SongRows) + 4, Songs);
        Store32(at(MoreRows) + 4, Songs);
        std::memcpy(at(LongValues) + 4, "LVAL", 4);
        addRow(Maps, map({ObjectRows}));
        addRow(Maps, map({SongRows, MoreRows}));
        addRow(Maps, map({LongValues}));
        catalogue();
        songs();
    }

    std::uint8_t* at(PageNumber page) { return file.data() + page * Size; }
    // Adds a row to a page; returns its number. `flags`: of its slot.
    std::uint8_t addRow(PageNumber page, const Bytes& row, std::uint32_t flags = 0) {
        const std::uint32_t count = Load16(at(page) + 8);
        const std::uint32_t end = count == 0 ? Size : Load16(at(page) + 10 + 2 * (count - 1)) & 0x1FFF;
        const auto begin = static_cast<std::uint32_t>(end - row.size());
        std::copy(row.begin(), row.end(), at(page) + begin);
        Store16(at(page) + 10 + 2 * count, begin | flags);
        Store16(at(page) + 8, count + 1);
        return static_cast<std::uint8_t>(count);
    }
    // A row of `columns` columns: fixed data, texts, and which columns are not null.
    static Bytes row(std::uint8_t columns, const Bytes& fixed, const std::vector<Bytes>& variable,
                     std::uint8_t mask) {
        Bytes row = fixed;
        row.insert(row.begin(), columns);
        std::vector<std::size_t> offsets;
        for (const Bytes& one : variable) {
            offsets.push_back(row.size());
            append(row, one);
        }
        offsets.push_back(row.size());
        std::size_t jumps = 0;
        while ((row.size() + offsets.size() + jumps + 2 - 1) / 256 > jumps)
            ++jumps;
        for (std::size_t i = offsets.size(); i-- > 0;)
            row.push_back(static_cast<std::uint8_t>(offsets[i]));
        Bytes crossings;
        for (std::size_t jump = 1; jump <= jumps; ++jump) {
            const auto first = std::find_if(offsets.begin(), offsets.end(),
                                            [&](std::size_t offset) { return offset >= 256 * jump; });
            crossings.push_back(static_cast<std::uint8_t>(first - offsets.begin()));
        }
        row.insert(row.end(), crossings.rbegin(), crossings.rend());
        row.push_back(static_cast<std::uint8_t>(variable.size()));
        row.push_back(mask);
        return row;
    }
    static Bytes text(const char* value) { return Bytes(value, value + std::strlen(value)); }
    // Id, year, title, note (a long value's definition); the column "Live" is a bit of the mask.
    static Bytes song(std::int32_t id, std::int16_t year, const char* title, const Bytes& note, bool live) {
        Bytes fixed(6);
        Store32(fixed.data(), static_cast<std::uint32_t>(id));
        Store16(fixed.data() + 4, static_cast<std::uint16_t>(year));
        const unsigned mask = 0x07u | (note.empty() ? 0u : 8u) | (live ? 16u : 0u);
        return row(5, fixed, {text(title), note}, static_cast<std::uint8_t>(mask));
    }

private:
    struct ColumnSpec {
        const char* name;
        ColumnType type;
        std::uint16_t size;
        bool fixed;
    };

    static void append(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }
    static void append32(Bytes& to, std::uint32_t value) {
        to.resize(to.size() + 4);
        Store32(to.data() + to.size() - 4, value);
    }
    static std::uint32_t pointer(PageNumber page, std::uint32_t row) { return page << 8 | row; }

    void header() {
        std::uint8_t* page = at(0);
        Store32(page, 0x100);
        std::memcpy(page + 4, "Standard Jet DB", 16);
        Store16(page + 0x3A, 0x0409);
        Store16(page + 0x3C, 1252);
        Rc4(0x6B39DAC7).apply({page + 0x18, 126});
        for (std::size_t pair = 0; pair < 256; ++pair)
            page[0x600 + 2 * pair + 1] = 1;
    }
    void format(PageNumber page) {
        at(page)[0] = 1;
        at(page)[1] = 1;
    }
    static Bytes map(std::initializer_list<PageNumber> pages) {
        Bytes row(5 + 128);
        for (const PageNumber page : pages)
            row[5 + page / 8] = static_cast<std::uint8_t>(row[5 + page / 8] | 1u << page % 8);
        return row;
    }

    // `primary`: number of the column that the primary key is on; -1: no index. `longMap`: row of its map.
    void define(PageNumber page, std::uint32_t rows, std::uint32_t mapRow,
                const std::vector<ColumnSpec>& columns, int primary, std::uint32_t longMap) {
        Bytes tdef(0x2B);
        tdef[0] = 2;
        tdef[1] = 1;
        std::memcpy(tdef.data() + 2, "VC", 2);
        const auto variables =
            std::count_if(columns.begin(), columns.end(), [](const ColumnSpec& one) { return !one.fixed; });
        const std::uint32_t indexes = primary >= 0 ? 1 : 0;
        Store32(tdef.data() + 0x0C, rows);
        tdef[0x14] = 0x4E;
        Store16(tdef.data() + 0x15, static_cast<std::uint32_t>(columns.size()));
        Store16(tdef.data() + 0x17, static_cast<std::uint32_t>(variables));
        Store16(tdef.data() + 0x19, static_cast<std::uint32_t>(columns.size()));
        Store32(tdef.data() + 0x1B, indexes);
        Store32(tdef.data() + 0x1F, indexes);
        Store32(tdef.data() + 0x23, pointer(Maps, mapRow));
        Store32(tdef.data() + 0x27, pointer(Maps, mapRow));
        tdef.resize(tdef.size() + 8 * indexes);
        std::uint32_t variable = 0, offset = 0;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            Bytes one(18);
            one[0] = static_cast<std::uint8_t>(columns[i].type);
            Store16(one.data() + 1, static_cast<std::uint32_t>(i));
            Store16(one.data() + 3, variable);
            Store16(one.data() + 5, static_cast<std::uint32_t>(i));
            one[13] = columns[i].fixed ? 3 : 2;
            Store16(one.data() + 14, offset);
            Store16(one.data() + 16, columns[i].size);
            variable += columns[i].fixed ? 0 : 1;
            offset += columns[i].fixed && columns[i].type != ColumnType::Boolean ? columns[i].size : 0u;
            append(tdef, one);
        }
        for (const ColumnSpec& column : columns) {
            tdef.push_back(static_cast<std::uint8_t>(std::strlen(column.name)));
            append(tdef, text(column.name));
        }
        if (primary >= 0) {
            Bytes real(39, 0);
            for (std::size_t slot = 0; slot < 10; ++slot)
                Store16(real.data() + 3 * slot, slot == 0 ? static_cast<std::uint32_t>(primary) : 0xFFFFu);
            real[2] = 1;
            real[38] = 0x09;
            append(tdef, real);
            Bytes logical(20);
            std::memset(logical.data() + 9, 0xFF, 4);
            logical[19] = 1;
            append(tdef, logical);
            tdef.push_back(10);
            append(tdef, text("PrimaryKey"));
        }
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].type == ColumnType::Memo) {
                append(tdef, {static_cast<std::uint8_t>(i), 0});
                append32(tdef, pointer(Maps, longMap));
                append32(tdef, pointer(Maps, longMap));
            }
        append(tdef, {0xFF, 0xFF});
        Store32(tdef.data() + 8, static_cast<std::uint32_t>(tdef.size()));
        std::copy(tdef.begin(), tdef.end(), at(page));
    }

    void object(std::int32_t id, std::uint32_t parent, const char* name, std::int16_t type,
                std::uint32_t flags) {
        Bytes fixed(22);
        Store32(fixed.data(), static_cast<std::uint32_t>(id));
        Store32(fixed.data() + 4, parent);
        Store16(fixed.data() + 8, static_cast<std::uint16_t>(type));
        Store32(fixed.data() + 18, flags);
        addRow(ObjectRows, row(6, fixed, {text(name)}, 0x3F));
    }
    void catalogue() {
        define(Objects, 3, 0,
               {{"Id", ColumnType::Long, 4, true},
                {"ParentId", ColumnType::Long, 4, true},
                {"Type", ColumnType::Integer, 2, true},
                {"DateCreate", ColumnType::DateTime, 8, true},
                {"Flags", ColumnType::Long, 4, true},
                {"Name", ColumnType::Text, 64, false}},
               -1, 0);
        object(Objects, 0x0F000001, "MSysObjects", 1, 0x80000000);
        object(Songs, 0x0F000001, "Songs", 1, 0);
        object(-5, 0x0F000001, "Old songs", 5, 0);
    }
    void songs() {
        define(Songs, 5, 1,
               {{"Id", ColumnType::Long, 4, true},
                {"Year", ColumnType::Integer, 2, true},
                {"Title", ColumnType::Text, 255, false},
                {"Note", ColumnType::Memo, 0, false},
                {"Live", ColumnType::Boolean, 1, true}},
               0, 2);
        // A note in the row, one in a row of its own, and one in two pieces.
        const auto note = [](std::uint32_t kindAndLength, std::uint32_t where, const char* inRow) {
            Bytes definition;
            append32(definition, kindAndLength);
            append32(definition, where);
            append32(definition, 0);
            append(definition, text(inRow));
            return definition;
        };
        const std::uint32_t whole = addRow(LongValues, text("a row of its own"));
        Bytes last(4);
        append(last, text("piece"));
        const std::uint32_t second = addRow(LongValues, last);
        Bytes piece;
        append32(piece, pointer(LongValues, second));
        append(piece, text("piece by "));
        const std::uint32_t first = addRow(LongValues, piece);
        const std::string title = std::string(200, 'x') + LongTitle;

        addRow(SongRows, song(3, 1965, "Yesterday", note(0x80000000 | 6, 0, "in row"), true));
        addRow(SongRows,
               song(2, -1, "caf\xE9 \x80", note(0x40000000 | 16, pointer(LongValues, whole), ""), false));
        addRow(SongRows, {}, 0xC000); // deleted
        addRow(SongRows, song(1, 0, "", {}, false));
        const std::uint32_t moved = addRow(
            MoreRows, song(9, 9, title.c_str(), note(14, pointer(LongValues, first), ""), true), 0x8000);
        Bytes there;
        append32(there, pointer(MoreRows, moved));
        addRow(SongRows, there, 0x4000);
        addRow(MoreRows, song(4, 4, "Four", {}, true));
    }
};

} // namespace jet::tests
