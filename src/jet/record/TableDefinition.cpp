#include "jet/record/TableDefinition.h"

#include "jet/base/Damage.h"
#include "jet/record/DefinitionFaults.h"
#include "jet/text/Collation.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace jet {

namespace {

constexpr std::uint8_t PageType = 2;
constexpr int PageHead = 8;
constexpr int NextPage = 4;
constexpr std::uint32_t LengthField = 0x08;
constexpr std::uint32_t RowCountField = 0x10;
constexpr std::uint32_t AutonumberField = 0x14;
constexpr std::uint32_t CountersField = 0x3F;
constexpr std::uint32_t CounterLength = 12;
constexpr std::uint32_t DistinctField = 4; // in a counter
constexpr std::uint16_t NoColumn = 0xFFFF;
constexpr std::uint16_t EndMark = 0xFFFF;
// Far above the need of 255 columns and their indexes with the longest names.
constexpr std::uint32_t MaximumLength = 1u << 20;
constexpr std::uint32_t ContinuationData = PageSize - PageHead;
// Other engines may allow slightly more than this one creates.
constexpr std::uint32_t MostIndexes = 8 * MaximumIndexes;

std::size_t pagesFor(std::size_t length) {
    return length <= PageSize ? 1 : 1 + (length - PageSize + ContinuationData - 1) / ContinuationData;
}

// Reads fields one after the other, each checked against the end.
class Reader {
public:
    Reader(std::span<const std::uint8_t> bytes, PageNumber page)
        : bytes_(bytes)
        , page_(page) {}

    const std::uint8_t* take(std::size_t length) {
        if (bytes_.size() - at_ < length)
            Damaged(page_, "the table definition ends too early");
        at_ += length;
        return bytes_.data() + at_ - length;
    }
    std::uint8_t u8() { return *take(1); }
    std::uint16_t u16() { return Load16(take(2)); }
    std::uint32_t u32() { return Load32(take(4)); }
    RowPointer pointer() { return LoadRowPointer(take(4)); }
    std::u16string name() {
        const std::size_t length = u16();
        const std::uint8_t* bytes = take(length);
        std::u16string text;
        for (std::size_t i = 0; i + 1 < length; i += 2)
            text += static_cast<char16_t>(Load16(bytes + i));
        return text;
    }
    std::size_t left() const { return bytes_.size() - at_; }

private:
    std::span<const std::uint8_t> bytes_;
    PageNumber page_;
    std::size_t at_ = 0;
};

class Writer {
public:
    void u8(unsigned value) { bytes.push_back(static_cast<std::uint8_t>(value)); }
    void u16(std::uint32_t value) {
        u8(value & 0xFF);
        u8(value >> 8 & 0xFF);
    }
    void u32(std::uint32_t value) {
        u16(value & 0xFFFF);
        u16(value >> 16);
    }
    void pointer(RowPointer value) { u32(value.page << 8 | value.row); }
    void name(const std::u16string& text) {
        u16(static_cast<std::uint32_t>(text.size() * 2));
        for (const char16_t unit : text)
            u16(unit);
    }
    template<std::size_t N>
    void raw(const std::array<std::uint8_t, N>& value) {
        bytes.insert(bytes.end(), value.begin(), value.end());
    }
    Bytes bytes;
};

Column readColumn(Reader& in) {
    Column column;
    column.type = static_cast<ColumnType>(in.u8());
    column.stamp = in.u32();
    column.number = in.u16();
    column.variableIndex = in.u16();
    column.ordinal = in.u16();
    column.language = in.u16();
    column.reserved = in.u8();
    column.sortVersion = in.u8();
    column.flags = in.u8();
    column.extended = in.u8();
    column.reservedTail = in.u32();
    column.fixedOffset = in.u16();
    column.size = in.u16();
    return column;
}

void writeColumn(Writer& out, const Column& column) {
    out.u8(static_cast<unsigned>(column.type));
    out.u32(column.stamp);
    out.u16(column.number);
    out.u16(column.variableIndex);
    out.u16(column.ordinal);
    out.u16(column.language);
    out.u8(column.reserved);
    out.u8(column.sortVersion);
    out.u8(column.flags);
    out.u8(column.extended);
    out.u32(column.reservedTail);
    out.u16(column.fixedOffset);
    out.u16(column.size);
}

void readRealIndex(Reader& in, RealIndex& index) {
    index.stamp = in.u32();
    for (std::uint8_t& order : index.reservedOrders) {
        const std::uint16_t number = in.u16();
        order = in.u8();
        if (number != NoColumn)
            index.columns.push_back({number, order != 0});
    }
    index.pages = in.pointer();
    index.root = in.u32();
    index.reserved = in.u32();
    index.flags = in.u8();
    std::memcpy(index.reservedTail.data(), in.take(index.reservedTail.size()), index.reservedTail.size());
}

void writeRealIndex(Writer& out, const RealIndex& index) {
    out.u32(index.stamp);
    for (std::size_t slot = 0; slot < MaximumIndexColumns; ++slot) {
        const bool used = slot < index.columns.size();
        out.u16(used ? index.columns[slot].number : NoColumn);
        out.u8(used ? index.columns[slot].ascending : index.reservedOrders[slot]);
    }
    out.pointer(index.pages);
    out.u32(index.root);
    out.u32(index.reserved);
    out.u8(index.flags);
    out.raw(index.reservedTail);
}

LogicalIndex readLogicalIndex(Reader& in) {
    LogicalIndex index;
    index.stamp = in.u32();
    index.number = in.u32();
    index.real = in.u32();
    index.role = static_cast<LogicalIndex::Role>(in.u8());
    index.otherNumber = in.u32();
    index.otherTable = in.u32();
    index.cascadeUpdates = in.u8();
    index.cascadeDeletes = in.u8();
    index.kind = static_cast<LogicalIndex::Kind>(in.u8());
    index.reserved = in.u32();
    return index;
}

void writeLogicalIndex(Writer& out, const LogicalIndex& index) {
    out.u32(index.stamp);
    out.u32(index.number);
    out.u32(index.real);
    out.u8(static_cast<unsigned>(index.role));
    out.u32(index.otherNumber);
    out.u32(index.otherTable);
    out.u8(index.cascadeUpdates);
    out.u8(index.cascadeDeletes);
    out.u8(static_cast<unsigned>(index.kind));
    out.u32(index.reserved);
}

const std::uint8_t* readDefinitionPage(Pager& pager, PageNumber page) {
    const std::uint8_t* bytes = pager.read(page);
    if (bytes[0] != PageType)
        Damaged(page, "is no table definition");
    return bytes;
}

// The complete definition: its first page, and the others without their heads, cut to the stored length.
Bytes joinedPages(Pager& pager, PageNumber page) {
    Bytes bytes;
    for (const PageNumber one : DefinitionPages(pager, page)) {
        const std::uint8_t* from = pager.read(one);
        bytes.insert(bytes.end(), from + (one == page ? 0 : PageHead), from + PageSize);
    }
    bytes.resize(std::min<std::size_t>(bytes.size(), Load32(bytes.data() + LengthField)));
    return bytes;
}

TableDefinition decode(Reader& in, PageNumber page);

} // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
    return a == b || SameText(a, b);
}

int StoredSize(ColumnType type) {
    switch (type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
    case ColumnType::Single:
        return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::DateTime:
        return 8;
    case ColumnType::Guid:
        return 16;
    case ColumnType::Numeric:
        return 17;
    default:
        return 0;
    }
}

int TableDefinition::findColumn(std::u16string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (SameName(columns[i].name, name))
            return static_cast<int>(i);
    return -1;
}

int TableDefinition::findColumnNumber(std::uint16_t number) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].number == number)
            return static_cast<int>(i);
    return -1;
}

const LogicalIndex* TableDefinition::findIndex(std::u16string_view name) const {
    const auto found = std::find_if(logicalIndexes.begin(), logicalIndexes.end(),
                                    [&](const LogicalIndex& index) { return SameName(index.name, name); });
    return found == logicalIndexes.end() ? nullptr : &*found;
}

const LogicalIndex* TableDefinition::primaryKey() const {
    const auto found =
        std::find_if(logicalIndexes.begin(), logicalIndexes.end(),
                     [](const LogicalIndex& index) { return index.kind == LogicalIndex::Kind::Primary; });
    return found == logicalIndexes.end() ? nullptr : &*found;
}

std::string TableDefinition::nameOfIndex(std::size_t realIndex) const {
    for (const LogicalIndex& logical : logicalIndexes)
        if (logical.real == realIndex)
            return "index '" + ToUtf8(logical.name) + "'";
    return "index " + std::to_string(realIndex);
}

void TableDefinition::removeIndex(std::size_t realIndex) {
    std::erase_if(logicalIndexes, [realIndex](const LogicalIndex& index) { return index.real == realIndex; });
    for (LogicalIndex& index : logicalIndexes)
        if (index.real > realIndex)
            --index.real;
    realIndexes.erase(realIndexes.begin() + static_cast<std::ptrdiff_t>(realIndex));
}

std::vector<int> TableDefinition::displayOrder() const {
    std::vector<int> order(columns.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [this](int a, int b) {
        const Column& one = columns[static_cast<std::size_t>(a)];
        const Column& other = columns[static_cast<std::size_t>(b)];
        return one.ordinal != other.ordinal ? one.ordinal < other.ordinal : one.number < other.number;
    });
    return order;
}

int TableDefinition::fixedLength() const {
    int length = 0;
    for (const Column& column : columns)
        if (column.isFixed() && column.type != ColumnType::Boolean)
            length = std::max(length, column.fixedOffset + column.size);
    return length;
}

std::vector<PageNumber> DefinitionPages(Pager& pager, PageNumber page) {
    const std::uint8_t* bytes = readDefinitionPage(pager, page);
    const std::uint32_t length = Load32(bytes + LengthField);
    if (length > MaximumLength)
        Damaged(page, "the table definition is too long");
    std::vector<PageNumber> pages{page};
    while (const PageNumber next = Load32(bytes + NextPage)) {
        if (pages.size() >= pagesFor(length) || std::find(pages.begin(), pages.end(), next) != pages.end())
            Damaged(next, "the table definition has too many pages");
        bytes = readDefinitionPage(pager, next);
        pages.push_back(next);
    }
    if (pages.size() < pagesFor(length))
        Damaged(page, "the table definition ends too early");
    return pages;
}

TableDefinition ReadTableDefinition(Pager& pager, PageNumber page) {
    return DecodeTableDefinition(joinedPages(pager, page), page);
}

TableDefinition ReadUncheckedDefinition(Pager& pager, PageNumber page) {
    const Bytes bytes = joinedPages(pager, page);
    Reader in(bytes, page);
    return decode(in, page);
}

std::size_t TableDefinitionLength(Pager& pager, PageNumber page) {
    const Bytes bytes = joinedPages(pager, page);
    Reader in(bytes, page);
    decode(in, page);
    return bytes.size() - in.left();
}

TableDefinition DecodeTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page) {
    Reader in(bytes, page);
    TableDefinition definition = decode(in, page);
    if (const std::string fault = FaultOfDefinition(definition); !fault.empty())
        Damaged(page, fault);
    return definition;
}

namespace {

TableDefinition decode(Reader& in, PageNumber page) {
    TableDefinition definition;
    definition.page = page;
    in.take(LengthField + 4);
    definition.stamp = in.u32();
    definition.rowCount = in.u32();
    definition.lastAutonumber = in.u32();
    std::memcpy(definition.reserved.data(), in.take(definition.reserved.size()), definition.reserved.size());
    definition.type = in.u8();
    definition.columnNumbers = in.u16();
    definition.variableColumns = in.u16();
    const std::uint16_t columns = in.u16();
    const std::uint32_t logicalIndexes = in.u32();
    const std::uint32_t realIndexes = in.u32();
    definition.ownedMap = in.pointer();
    definition.freeMap = in.pointer();

    if (columns > MaximumColumns)
        Damaged(page, "says that the table has " + std::to_string(columns) + " columns");
    if (std::max(logicalIndexes, realIndexes) > MostIndexes)
        Damaged(page, "says that the table has " + std::to_string(std::max(logicalIndexes, realIndexes)) +
                          " indexes");
    for (std::uint32_t i = 0; i < realIndexes; ++i) {
        RealIndex index;
        index.entriesWhenMade = in.u32();
        index.distinctKeys = in.u32();
        index.reservedHead = in.u32();
        definition.realIndexes.push_back(index);
    }
    for (int i = 0; i < columns; ++i)
        definition.columns.push_back(readColumn(in));
    for (Column& column : definition.columns)
        column.name = in.name();
    for (RealIndex& index : definition.realIndexes)
        readRealIndex(in, index);
    for (std::uint32_t i = 0; i < logicalIndexes; ++i)
        definition.logicalIndexes.push_back(readLogicalIndex(in));
    for (LogicalIndex& index : definition.logicalIndexes)
        index.name = in.name();
    while (in.left() >= 2) {
        const std::uint16_t number = in.u16();
        if (number == EndMark)
            break;
        const RowPointer owned = in.pointer();
        const RowPointer free = in.pointer();
        const int column = definition.findColumnNumber(number);
        if (column < 0)
            continue; // of a column that was deleted
        definition.columns[static_cast<std::size_t>(column)].ownedMap = owned;
        definition.columns[static_cast<std::size_t>(column)].freeMap = free;
    }
    return definition;
}

} // namespace

Bytes EncodeTableDefinition(const TableDefinition& definition) {
    Writer out;
    out.u8(PageType);
    out.u8(1);
    out.u16(0);
    out.u32(0);
    out.u32(0); // the length, set below
    out.u32(definition.stamp);
    out.u32(definition.rowCount);
    out.u32(definition.lastAutonumber);
    out.raw(definition.reserved);
    out.u8(definition.type);
    out.u16(definition.columnNumbers);
    out.u16(definition.variableColumns);
    out.u16(static_cast<std::uint32_t>(definition.columns.size()));
    out.u32(static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    out.u32(static_cast<std::uint32_t>(definition.realIndexes.size()));
    out.pointer(definition.ownedMap);
    out.pointer(definition.freeMap);
    for (const RealIndex& index : definition.realIndexes) {
        out.u32(index.entriesWhenMade);
        out.u32(index.distinctKeys);
        out.u32(index.reservedHead);
    }
    for (const Column& column : definition.columns)
        writeColumn(out, column);
    for (const Column& column : definition.columns)
        out.name(column.name);
    for (const RealIndex& index : definition.realIndexes)
        writeRealIndex(out, index);
    for (const LogicalIndex& index : definition.logicalIndexes)
        writeLogicalIndex(out, index);
    for (const LogicalIndex& index : definition.logicalIndexes)
        out.name(index.name);
    for (const Column& column : definition.columns)
        if (column.isLong()) {
            out.u16(column.number);
            out.pointer(column.ownedMap);
            out.pointer(column.freeMap);
        }
    out.u16(EndMark);
    Store32(out.bytes.data() + LengthField, static_cast<std::uint32_t>(out.bytes.size()));
    return std::move(out.bytes);
}

void WriteTableDefinition(Pager& pager, const TableDefinition& definition) {
    const Bytes bytes = EncodeTableDefinition(definition);
    std::vector<PageNumber> pages{definition.page};
    if (pager.read(definition.page)[0] == PageType)
        pages = DefinitionPages(pager, definition.page);
    const std::size_t needed = pagesFor(bytes.size());
    while (pages.size() < needed)
        pages.push_back(pager.allocate());
    for (; pages.size() > needed; pages.pop_back())
        pager.release(pages.back());

    std::size_t at = PageHead;
    for (std::size_t i = 0; i < needed; ++i) {
        std::uint8_t* page = pager.edit(pages[i]);
        const std::size_t length = std::min<std::size_t>(ContinuationData, bytes.size() - at);
        std::memset(page, 0, PageSize);
        page[0] = PageType;
        page[1] = 1;
        Store16(page + 2, static_cast<std::uint32_t>(
                              std::max<int>(0, ContinuationData - PageHead - static_cast<int>(length))));
        Store32(page + NextPage, i + 1 < needed ? pages[i + 1] : 0);
        std::memcpy(page + PageHead, bytes.data() + at, length);
        at += length;
    }
}

std::uint32_t TableCounters::rowCount(Pager& pager, PageNumber page) {
    return Load32(pager.read(page) + RowCountField);
}

std::uint32_t TableCounters::lastAutonumber(Pager& pager, PageNumber page) {
    return Load32(pager.read(page) + AutonumberField);
}

void TableCounters::addRows(Pager& pager, PageNumber page, int count) {
    std::uint8_t* field = pager.edit(page) + RowCountField;
    Store32(field, Load32(field) + static_cast<std::uint32_t>(count));
}

void TableCounters::setLastAutonumber(Pager& pager, PageNumber page, std::uint32_t value) {
    Store32(pager.edit(page) + AutonumberField, value);
}

void TableCounters::addDistinctKeys(Pager& pager, PageNumber page, int realIndex, std::uint32_t count) {
    const std::uint32_t at =
        CountersField + CounterLength * static_cast<std::uint32_t>(realIndex) + DistinctField;
    if (at + 4 > PageSize)
        return;
    std::uint8_t* field = pager.edit(page) + at;
    Store32(field, Load32(field) + count);
}

} // namespace jet
