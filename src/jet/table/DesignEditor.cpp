#include "jet/table/DesignEditor.h"

#include "jet/base/Damage.h"
#include "jet/base/Error.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/text/Collation.h"

#include <algorithm>
#include <set>

namespace jet {

namespace {

constexpr std::size_t LongestName = 64;
constexpr int DefaultSize = 255;
constexpr int LongestText = 255;
constexpr int LongestBinary = 510;
constexpr int HighestPrecision = 28;
// A counter of design changes in a part of the definition page that the engine ignores.
constexpr std::size_t DesignCounter = 12;

constexpr const char16_t* Required = u"Required";
constexpr const char16_t* AllowZeroLength = u"AllowZeroLength";

[[noreturn]] void refuse(ErrorNumber number, std::u16string_view name) {
    throw Error(number, ToUtf8(name));
}

Column columnOf(const FieldDesign& field) {
    Column column;
    column.name = field.name;
    column.type = field.type;
    column.size = static_cast<std::uint16_t>(StoredSize(field.type));
    const int size = field.size == 0 ? DefaultSize : field.size;
    switch (field.type) {
    case ColumnType::Text:
        if (size < 0 || size > LongestText)
            refuse(ErrorNumber::InvalidArgument, field.name);
        column.size = static_cast<std::uint16_t>(size * 2);
        column.extended = Column::Compressed;
        break;
    case ColumnType::Binary:
        if (size < 0 || size > LongestBinary)
            refuse(ErrorNumber::InvalidArgument, field.name);
        column.size = static_cast<std::uint16_t>(size);
        break;
    case ColumnType::Memo:
        column.extended = Column::Compressed;
        break;
    case ColumnType::Ole:
        break;
    case ColumnType::Numeric:
        if (field.precision < 1 || field.precision > HighestPrecision || field.scale < 0 ||
            field.scale > field.precision)
            refuse(ErrorNumber::InvalidArgument, field.name);
        column.language = static_cast<std::uint16_t>(field.precision | field.scale << 8);
        column.flags |= Column::FixedLength;
        break;
    default:
        if (StoredSize(field.type) == 0)
            refuse(ErrorNumber::InvalidArgument, field.name);
        column.flags |= Column::FixedLength;
    }
    if (field.autonumber) {
        if (field.type != ColumnType::Long)
            refuse(ErrorNumber::InvalidArgument, field.name);
        column.flags |= Column::Autonumber;
    }
    return column;
}

} // namespace

void CheckName(std::u16string_view name) {
    const bool bad =
        name.empty() || name.size() > LongestName || name.front() == u' ' ||
        std::any_of(name.begin(), name.end(), [](char16_t unit) {
            return unit < u' ' || std::u16string_view(u".![]`").find(unit) != std::u16string_view::npos;
        });
    if (bad)
        throw Error(ErrorNumber::InvalidArgument, "'" + ToUtf8(name) + "' cannot be a name");
}

// A new, empty map on one of the pages with maps of this table, or on a new one.
RowPointer DesignEditor::makeMap() {
    std::set<PageNumber> pages{definition_.ownedMap.page, definition_.freeMap.page};
    for (const RealIndex& index : definition_.realIndexes)
        pages.insert(index.pages.page);
    for (const Column& column : definition_.columns) {
        pages.insert(column.ownedMap.page);
        pages.insert(column.freeMap.page);
    }
    pages.erase(0);
    const auto roomy = std::find_if(pages.begin(), pages.end(), [this](PageNumber page) {
        const std::uint8_t* bytes = pager_.read(page);
        return datapage::IsSound(bytes) && datapage::Owner(bytes) == 0 &&
               datapage::Fits(bytes, UsageMapRowLength);
    });
    PageNumber page = 0;
    if (roomy != pages.end()) {
        page = *roomy;
    } else {
        page = pager_.allocate();
        datapage::Format(pager_.edit(page), 0);
    }
    return {page, datapage::Add(pager_.edit(page), Bytes(UsageMapRowLength, 0))};
}

void DesignEditor::dropMap(RowPointer map) {
    UsageMap(pager_, map).clear();
    std::uint8_t* page = pager_.edit(map.page);
    datapage::Remove(page, map.page, map.row);
    if (!datapage::HasRows(page, map.page))
        pager_.release(map.page);
}

// Pages that a damaged map lists may belong to others: all are checked before the first is freed.
void DesignEditor::freeMapAndDataPages(RowPointer map, std::uint32_t owner) {
    const std::vector<PageNumber> pages = UsageMap(pager_, map).pages();
    for (const PageNumber page : pages)
        if (const std::uint8_t* bytes = pager_.read(page);
            !datapage::IsDataPage(bytes) || datapage::Owner(bytes) != owner)
            Damaged(page, "is listed as a page of something else");
    freePages(map, pages);
}

void DesignEditor::freeTree(const RealIndex& index) {
    const std::vector<PageNumber> pages = UsageMap(pager_, index.pages).pages();
    for (const PageNumber page : pages)
        indexpage::Check(pager_.read(page), page, definition_.page);
    freePages(index.pages, pages);
}

void DesignEditor::freePages(RowPointer map, const std::vector<PageNumber>& pages) {
    dropMap(map);
    for (const PageNumber page : pages)
        pager_.release(page);
}

void DesignEditor::makeMaps() {
    definition_.ownedMap = makeMap();
    definition_.freeMap = makeMap();
}

void DesignEditor::makeTree(RealIndex& index) {
    index.pages = makeMap();
    index.root = pager_.allocate();
    index.entriesWhenMade = index.distinctKeys = 0;
    IndexTree(pager_, index.root, definition_.page, UsageMap(pager_, index.pages)).create();
}

void DesignEditor::addField(const FieldDesign& field) {
    CheckName(field.name);
    if (definition_.findColumn(field.name) >= 0)
        refuse(ErrorNumber::FieldExists, field.name);
    if (definition_.columnNumbers >= MaximumColumns)
        refuse(ErrorNumber::TooManyFields, field.name);
    Column column = columnOf(field);
    const auto isAutonumber = [](const Column& other) { return other.isAutonumber(); };
    if (field.autonumber && std::any_of(definition_.columns.begin(), definition_.columns.end(), isAutonumber))
        refuse(ErrorNumber::InvalidArgument, field.name); // a table has one at most
    column.number = definition_.columnNumbers++;
    for (const Column& other : definition_.columns)
        column.ordinal =
            std::max<std::uint16_t>(column.ordinal, static_cast<std::uint16_t>(other.ordinal + 1));
    column.variableIndex = definition_.variableColumns;
    if (!column.isFixed())
        ++definition_.variableColumns;
    else if (column.type != ColumnType::Boolean)
        column.fixedOffset = static_cast<std::uint16_t>(definition_.fixedLength());
    if (column.isLong()) {
        column.ownedMap = makeMap();
        column.freeMap = makeMap();
    }
    definition_.columns.push_back(column);
    if (definition_.fixedLength() > MaximumRowLength / 2)
        refuse(ErrorNumber::RecordTooLarge, field.name);

    properties_.setFlag(field.name, Required, field.required);
    if (column.isText())
        properties_.setFlag(field.name, AllowZeroLength, field.allowZeroLength);
    for (const Property& property : field.properties)
        properties_.set(field.name, property);
}

void DesignEditor::dropField(int position) {
    const Column column = definition_.columns.at(static_cast<std::size_t>(position));
    for (const RealIndex& index : definition_.realIndexes)
        for (const IndexColumn& part : index.columns)
            if (part.number == column.number)
                refuse(ErrorNumber::UsedInIndex, column.name);
    if (definition_.columns.size() == 1)
        refuse(ErrorNumber::InvalidArgument, column.name);
    if (column.isLong()) {
        freeMapAndDataPages(column.ownedMap, datapage::LongValueOwner);
        dropMap(column.freeMap);
    }
    definition_.columns.erase(definition_.columns.begin() + position);
    properties_.removeColumn(column.name);
}

void DesignEditor::renameField(int position, std::u16string_view name) {
    CheckName(name);
    Column& column = definition_.columns.at(static_cast<std::size_t>(position));
    const int other = definition_.findColumn(name);
    if (other >= 0 && other != position)
        refuse(ErrorNumber::FieldExists, name);
    properties_.renameColumn(column.name, name);
    column.name = name;
}

int DesignEditor::addIndex(const IndexDesign& design) {
    CheckName(design.name);
    if (definition_.findIndex(design.name) != nullptr ||
        (design.primary && definition_.primaryKey() != nullptr))
        refuse(ErrorNumber::IndexExists, design.name);
    if (definition_.realIndexes.size() >= MaximumIndexes)
        refuse(ErrorNumber::TooManyIndexes, design.name);
    if (design.fields.empty() || design.fields.size() > MaximumIndexColumns)
        refuse(ErrorNumber::InvalidArgument, design.name);

    RealIndex real;
    for (const IndexField& field : design.fields) {
        const int position = definition_.findColumn(field.name);
        if (position < 0)
            refuse(ErrorNumber::ItemNotFound, field.name);
        const Column& column = definition_.columns[static_cast<std::size_t>(position)];
        const auto isSame = [&](const IndexColumn& part) { return part.number == column.number; };
        if (!IsOrderKnown(column) || std::any_of(real.columns.begin(), real.columns.end(), isSame))
            refuse(ErrorNumber::InvalidArgument, field.name);
        real.columns.push_back({column.number, !field.descending});
    }
    if (design.unique || design.primary)
        real.flags |= RealIndex::Unique;
    if (design.required || design.primary)
        real.flags |= RealIndex::Required;
    if (design.ignoreNulls)
        real.flags |= RealIndex::IgnoreNulls;
    makeTree(real);
    definition_.realIndexes.push_back(real);

    LogicalIndex logical;
    logical.name = design.name;
    logical.real = static_cast<std::uint32_t>(definition_.realIndexes.size() - 1);
    for (const LogicalIndex& other : definition_.logicalIndexes)
        logical.number = std::max(logical.number, other.number + 1);
    if (design.primary)
        logical.kind = LogicalIndex::Kind::Primary;
    definition_.logicalIndexes.push_back(logical);
    sortIndexes();
    return static_cast<int>(logical.real);
}

LogicalIndex& DesignEditor::logicalIndex(std::u16string_view name) {
    for (LogicalIndex& index : definition_.logicalIndexes)
        if (SameName(index.name, name))
            return index;
    refuse(ErrorNumber::ItemNotFound, name);
}

void DesignEditor::dropIndex(std::u16string_view name) {
    const LogicalIndex& logical = logicalIndex(name);
    if (logical.role != LogicalIndex::Role::None || logical.kind == LogicalIndex::Kind::Foreign)
        refuse(ErrorNumber::UsedInRelationship, name);
    const std::uint32_t position = logical.real;
    definition_.logicalIndexes.erase(definition_.logicalIndexes.begin() +
                                     (&logical - definition_.logicalIndexes.data()));
    const auto usesTree = [position](const LogicalIndex& index) { return index.real == position; };
    if (std::any_of(definition_.logicalIndexes.begin(), definition_.logicalIndexes.end(), usesTree))
        return;
    freeTree(definition_.realIndexes[position]);
    definition_.removeIndex(position);
}

void DesignEditor::renameIndex(std::u16string_view name, std::u16string_view to) {
    CheckName(to);
    LogicalIndex& index = logicalIndex(name);
    const LogicalIndex* other = definition_.findIndex(to);
    if (other != nullptr && other != &index)
        refuse(ErrorNumber::IndexExists, to);
    index.name = to;
    sortIndexes();
}

// The engine keeps indexes sorted by name.
void DesignEditor::sortIndexes() {
    std::stable_sort(
        definition_.logicalIndexes.begin(), definition_.logicalIndexes.end(),
        [](const LogicalIndex& a, const LogicalIndex& b) { return CompareTexts(a.name, b.name) < 0; });
}

void DesignEditor::destroy() {
    for (const RealIndex& index : definition_.realIndexes)
        freeTree(index);
    for (const Column& column : definition_.columns)
        if (column.isLong()) {
            freeMapAndDataPages(column.ownedMap, datapage::LongValueOwner);
            dropMap(column.freeMap);
        }
    freeMapAndDataPages(definition_.ownedMap, definition_.page);
    dropMap(definition_.freeMap);
    for (const PageNumber page : DefinitionPages(pager_, definition_.page)) {
        // A freed page keeps its bytes; without its kind nobody mistakes it for a definition.
        pager_.edit(page)[0] = 0;
        pager_.release(page);
    }
}

void DesignEditor::save() {
    std::uint8_t* counter = definition_.reserved.data() + DesignCounter;
    Store32(counter, Load32(counter) + 1);
    WriteTableDefinition(pager_, definition_);
}

} // namespace jet
