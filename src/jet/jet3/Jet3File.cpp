#include "jet/jet3/Jet3File.h"

#include "jet/base/Damage.h"
#include "jet/page/PageZero.h"
#include "jet/record/Row.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint8_t DataType = 1;
constexpr std::uint8_t DefinitionType = 2;
constexpr std::uint8_t BitmapType = 5;
constexpr std::size_t SlotsAt = 0x0A;
constexpr std::uint16_t OffsetMask = 0x1FFF;
constexpr std::uint16_t HiddenFlag = 0x8000;
constexpr std::uint16_t PointerFlag = 0x4000;
constexpr int MostSlots = 255;
constexpr std::uint32_t LongValueOwner = 0x4C41564C; // "LVAL"
constexpr std::uint16_t WesternCodePage = 1252;

constexpr std::size_t PageHead = 8;
constexpr std::uint32_t MaximumDefinition = 1u << 20;
constexpr std::uint32_t MostIndexes = 8 * MaximumIndexes;
constexpr std::size_t CountersAt = 0x2B;
constexpr std::size_t CounterLength = 8;
constexpr std::size_t ColumnLength = 18;
constexpr std::size_t RealIndexLength = 39;
constexpr std::size_t LogicalIndexLength = 20;

constexpr std::size_t InlineMapHead = 5;
constexpr std::size_t BitmapHead = 4;

// Reads fields one after the other, each checked against the end.
class Pieces {
public:
    Pieces(std::span<const std::uint8_t> bytes, PageNumber page)
        : bytes_(bytes)
        , page_(page) {}
    const std::uint8_t* take(std::size_t length) {
        if (length > bytes_.size())
            Damaged(page_, "the table definition ends too early");
        const std::uint8_t* at = bytes_.data();
        bytes_ = bytes_.subspan(length);
        return at;
    }
    std::u16string name() {
        const std::size_t length = *take(1);
        return FromCodePage1252({take(length), length});
    }

private:
    std::span<const std::uint8_t> bytes_;
    PageNumber page_;
};

void addBits(std::span<const std::uint8_t> bits, std::size_t first, std::size_t pageCount,
             std::vector<PageNumber>& pages) {
    for (std::size_t bit = 0; bit < bits.size() * 8; ++bit)
        if ((bits[bit / 8] >> bit % 8 & 1) != 0 && first + bit != 0 && first + bit < pageCount)
            pages.push_back(static_cast<PageNumber>(first + bit));
}

} // namespace

std::u16string FromCodePage1252(std::span<const std::uint8_t> bytes) {
    // 80h to 9Fh; undefined ones keep their number.
    static constexpr char16_t upper[] = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
    };
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), [](std::uint8_t byte) {
        return byte >= 0x80 && byte < 0xA0 ? upper[byte - 0x80] : static_cast<char16_t>(byte);
    });
    return text;
}

Jet3File::Jet3File(std::span<const std::uint8_t> file)
    : file_(file) {
    if (file.size() < PageSize3)
        throw Error(ErrorNumber::Unrecognised);
    const PageZero header = DecodePageZero(file.first(PageSize3));
    if (header.version != PageZero::Jet3)
        throw Error(ErrorNumber::Unrecognised);
    if (header.databaseKey != 0)
        throw Error(ErrorNumber::Unrecognised, "an encrypted file of the older format");
    if (header.codePage != WesternCodePage)
        throw Error(ErrorNumber::Unrecognised, "code page " + std::to_string(header.codePage));
}

Jet3File::View Jet3File::page(PageNumber number) const {
    const std::size_t at = std::size_t{number} * PageSize3;
    if (file_.size() < PageSize3 || at > file_.size() - PageSize3)
        Damaged(number, "lies beyond the end of the file");
    return file_.subspan(at, PageSize3);
}

int Jet3File::slotCount(PageNumber number) const {
    const View bytes = page(number);
    const int count = Load16(bytes.data() + SlotsAt - 2);
    if (bytes[0] != DataType || count > MostSlots)
        Damaged(number, "is no data page");
    return count;
}

Jet3File::Slot Jet3File::slot(PageNumber number, int row) const {
    const int count = slotCount(number);
    if (row >= count)
        Damaged(number, "has no row " + std::to_string(row));
    const View bytes = page(number);
    const auto offsetOf = [&](int at) -> std::size_t {
        return at < 0 ? PageSize3
                      : Load16(bytes.data() + SlotsAt + 2 * static_cast<std::size_t>(at)) & OffsetMask;
    };
    const std::size_t begin = offsetOf(row), end = offsetOf(row - 1);
    if (begin > end || end > PageSize3 || begin < SlotsAt + 2 * static_cast<std::size_t>(count))
        Damaged(number, "row " + std::to_string(row) + " lies outside its place");
    const std::uint16_t flags = Load16(bytes.data() + SlotsAt + 2 * static_cast<std::size_t>(row));
    return {bytes.subspan(begin, end - begin), (flags & HiddenFlag) != 0, (flags & PointerFlag) != 0};
}

std::vector<PageNumber> Jet3File::mapPages(RowPointer map) const {
    const View row = slot(map.page, map.row).bytes;
    const std::size_t pageCount = file_.size() / PageSize3;
    std::vector<PageNumber> pages;
    if (row.size() < InlineMapHead || row[0] > 1)
        Damaged(map.page, "row " + std::to_string(map.row) + " is no usage map");
    if (row[0] == 0) {
        addBits(row.subspan(InlineMapHead), Load32(row.data() + 1), pageCount, pages);
        return pages;
    }
    constexpr std::size_t pagesPerBitmap = (PageSize3 - BitmapHead) * 8;
    for (std::size_t entry = 0; 1 + 4 * entry + 4 <= row.size(); ++entry) {
        const PageNumber number = Load32(row.data() + 1 + 4 * entry);
        if (number == 0)
            continue;
        const View bitmap = page(number);
        if (bitmap[0] != BitmapType)
            Damaged(number, "is no usage map bitmap");
        addBits(bitmap.subspan(BitmapHead), entry * pagesPerBitmap, pageCount, pages);
    }
    return pages;
}

TableDefinition Jet3File::definition(PageNumber number) const {
    Bytes bytes;
    std::uint32_t length = 0;
    for (PageNumber next = number; next != 0;) {
        const View part = page(next);
        if (part[0] != DefinitionType)
            Damaged(next, "is no table definition");
        if (bytes.empty())
            length = std::min(Load32(part.data() + 8), MaximumDefinition);
        else if (bytes.size() >= length)
            Damaged(next, "the table definition has too many pages");
        const View data = bytes.empty() ? part : part.subspan(PageHead);
        bytes.insert(bytes.end(), data.begin(), data.end());
        next = Load32(part.data() + 4);
    }
    Pieces in(bytes, number);
    const std::uint8_t* head = in.take(CountersAt);
    TableDefinition table;
    table.page = number;
    table.rowCount = Load32(head + 0x0C);
    table.lastAutonumber = Load32(head + 0x10);
    table.type = head[0x14];
    table.columnNumbers = Load16(head + 0x15);
    table.variableColumns = Load16(head + 0x17);
    const std::uint16_t columns = Load16(head + 0x19);
    const std::uint32_t logicalIndexes = Load32(head + 0x1B);
    const std::uint32_t realIndexes = Load32(head + 0x1F);
    table.ownedMap = LoadRowPointer(head + 0x23);
    table.freeMap = LoadRowPointer(head + 0x27);
    if (columns > MaximumColumns)
        Damaged(number, "the table definition has too many columns");
    if (std::max(realIndexes, logicalIndexes) > MostIndexes)
        Damaged(number, "the table definition has too many indexes");
    in.take(CounterLength * realIndexes);
    for (int i = 0; i < columns; ++i) {
        const std::uint8_t* at = in.take(ColumnLength);
        Column column;
        column.type = static_cast<ColumnType>(at[0]);
        column.number = Load16(at + 1);
        column.variableIndex = Load16(at + 3);
        column.ordinal = Load16(at + 5);
        column.flags = at[13];
        column.fixedOffset = Load16(at + 14);
        column.size = Load16(at + 16);
        table.columns.push_back(column);
    }
    for (Column& column : table.columns)
        column.name = in.name();
    for (std::uint32_t i = 0; i < realIndexes; ++i) {
        const std::uint8_t* at = in.take(RealIndexLength);
        RealIndex index;
        for (int part = 0; part < MaximumIndexColumns; ++part)
            if (const std::uint16_t column = Load16(at + 3 * part); column != 0xFFFF)
                index.columns.push_back({column, at[3 * part + 2] != 0});
        index.root = Load32(at + 34);
        index.flags = at[38];
        table.realIndexes.push_back(index);
    }
    for (std::uint32_t i = 0; i < logicalIndexes; ++i) {
        const std::uint8_t* at = in.take(LogicalIndexLength);
        LogicalIndex index;
        index.number = Load32(at);
        index.real = Load32(at + 4);
        index.role = static_cast<LogicalIndex::Role>(at[8]);
        index.kind = static_cast<LogicalIndex::Kind>(at[19]);
        if (index.real >= table.realIndexes.size())
            Damaged(number, "an index has no tree");
        table.logicalIndexes.push_back(index);
    }
    for (LogicalIndex& index : table.logicalIndexes)
        index.name = in.name();
    return table;
}

void Jet3File::forEachRow(const TableDefinition& table, const std::function<void(std::span<Value>)>& visit,
                          const OnDamage& damaged) const {
    std::vector<Value> values(table.columns.size());
    RowSet pieces;
    for (const PageNumber number : mapPages(table.ownedMap)) {
        int count = 0;
        try {
            count = slotCount(number);
            if (Load32(page(number).data() + 4) != table.page)
                Damaged(number, "belongs to another table");
        } catch (const Error& error) {
            damaged(error);
            continue;
        }
        for (int row = 0; row < count; ++row) {
            try {
                Slot found = slot(number, row);
                if (found.hidden)
                    continue;
                if (found.pointer) {
                    if (found.bytes.size() < 4)
                        Damaged(number, "row " + std::to_string(row) + " is no pointer");
                    const RowPointer target = LoadRowPointer(found.bytes.data());
                    found = slot(target.page, target.row);
                    if (found.pointer)
                        Damaged(number, "row " + std::to_string(row) + " points to no row");
                }
                decodeRow(table, found.bytes, number, values, pieces, damaged);
            } catch (const Error& error) {
                damaged(error);
                continue;
            }
            visit(values);
        }
    }
}

void Jet3File::decodeRow(const TableDefinition& table, View row, PageNumber page, std::span<Value> values,
                         RowSet& pieces, const OnDamage& damaged) const {
    // From the end: the null mask, the number of variable columns, how often their offsets pass a multiple of
    // 256, and the low bytes of the offsets, the first one last.
    const auto require = [page](bool condition) {
        if (!condition)
            Damaged(page, "a row is too short for its columns");
    };
    require(!row.empty());
    const std::size_t columns = row[0];
    const std::size_t mask = (columns + 7) / 8;
    require(row.size() >= 1 + mask);
    const std::size_t maskAt = row.size() - mask;
    std::vector<std::size_t> offsets;
    if (table.variableColumns > 0 && maskAt >= 2) {
        const std::size_t countAt = maskAt - 1;
        const std::size_t count = row[countAt];
        std::size_t jumps = (row.size() - 1) / 256;
        require(countAt >= jumps + 1 + count);
        const std::size_t first = countAt - jumps - 1;
        if ((first - count) / 256 < jumps)
            --jumps; // the last one is not used
        std::size_t used = 0;
        for (std::size_t i = 0; i <= count; ++i) {
            while (used < jumps && row[countAt - used - 1] == i)
                ++used;
            offsets.push_back(row[first - i] + 256 * used);
        }
    }
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const bool bit =
            column.number < columns && (row[maskAt + column.number / 8u] >> column.number % 8 & 1) != 0;
        values[i] = std::monostate{};
        if (column.type == ColumnType::Boolean) {
            values[i] = bit;
            continue;
        }
        std::size_t begin = 1u + column.fixedOffset, end = begin + column.size;
        if (!column.isFixed()) {
            if (column.variableIndex + 1u >= offsets.size())
                continue;
            begin = offsets[column.variableIndex];
            end = offsets[column.variableIndex + 1u];
        }
        if (!bit)
            continue;
        try {
            require(begin <= end && end <= maskAt);
            decodeValue(column, row.subspan(begin, end - begin), page, pieces, values[i]);
        } catch (const Error& error) {
            damaged(error);
            values[i] = std::monostate{};
        }
    }
}

void Jet3File::decodeValue(const Column& column, View bytes, PageNumber page, RowSet& pieces,
                           Value& value) const {
    switch (column.type) {
    case ColumnType::Text:
        value = FromCodePage1252(bytes);
        return;
    case ColumnType::Memo:
        value = FromCodePage1252(longValue(bytes, page, pieces));
        return;
    case ColumnType::Ole:
        value = longValue(bytes, page, pieces);
        return;
    default:
        DecodeStored(column, bytes, page, value);
    }
}

Bytes Jet3File::longValue(View definition, PageNumber from, RowSet& pieces) const {
    constexpr std::size_t head = 12;
    constexpr std::uint32_t inlineKind = 0x80000000, singleKind = 0x40000000, lengthMask = 0x3FFFFFFF;
    if (definition.size() < head)
        Damaged(from, "a long value has no definition");
    const std::uint32_t kind = Load32(definition.data());
    std::size_t left = kind & lengthMask;
    Bytes value;
    if ((kind & inlineKind) != 0) {
        if (left > definition.size() - head)
            Damaged(from, "a long value is longer than its row");
        value.assign(definition.begin() + head,
                     definition.begin() + head + static_cast<std::ptrdiff_t>(left));
        return value;
    }
    if (left > file_.size())
        Damaged(from, "a long value is longer than the file");
    RowPointer at = LoadRowPointer(definition.data() + 4);
    while (left > 0) {
        if (at.page == 0 || Load32(page(at.page).data() + 4) != LongValueOwner)
            Damaged(from, "a long value ends too early");
        if (!pieces.add(at))
            Damaged(at.page, "row " + std::to_string(at.row) + " is part of two long values");
        View piece = slot(at.page, at.row).bytes;
        if ((kind & singleKind) == 0) {
            if (piece.size() <= 4)
                Damaged(at.page, "holds no piece of a long value");
            at = LoadRowPointer(piece.data());
            piece = piece.subspan(4);
        } else {
            at = {};
        }
        piece = piece.first(std::min(left, piece.size()));
        value.insert(value.end(), piece.begin(), piece.end());
        left -= piece.size();
    }
    return value;
}

} // namespace jet
