#include "jet/table/CreateDatabase.h"

#include "jet/index/IndexTree.h"
#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"
#include "jet/pager/MemoryPager.h"
#include "jet/table/Catalog.h"

#include <bit>

namespace jet {

namespace {

// The tables that every database has, in the engine's layout. All four have their maps on one page.
constexpr PageNumber MapPage = 6;
constexpr int MapRows = 31;
constexpr PageNumber FirstDataPage = 14;
constexpr PageNumber PagesInFirstMap = 512;

constexpr std::uint8_t FixedColumn = Column::FixedLength | Column::Updatable | Column::System;
constexpr std::uint8_t PlainColumn = Column::Updatable | Column::System;
constexpr std::uint8_t OwnerColumn = PlainColumn | Column::OwnerKey;
constexpr std::uint16_t LongText = 510;

struct ColumnRow {
    const char16_t* name;
    ColumnType type;
    std::uint16_t number;
    std::uint16_t variableIndex;
    std::uint16_t fixedOffset;
    std::uint8_t flags;
    std::uint16_t size;
    std::uint8_t maps = 0; // row of the first of two maps of a long column
};

struct RealIndexRow {
    std::vector<std::uint16_t> columns;
    std::uint8_t flags;
    PageNumber root;
    std::uint8_t map;
};

struct LogicalIndexRow {
    const char16_t* name;
    std::uint32_t number;
    std::uint32_t real;
    LogicalIndex::Kind kind;
};

struct TableRow {
    PageNumber page;
    std::uint8_t maps; // row of the first of two maps
    std::vector<ColumnRow> columns;
    std::vector<RealIndexRow> realIndexes;
    std::vector<LogicalIndexRow> logicalIndexes;
};

using T = ColumnType;
constexpr std::uint8_t Unique = RealIndex::Always | RealIndex::Unique;
constexpr std::uint8_t Required = RealIndex::Always | RealIndex::Required;
constexpr std::uint8_t IgnoringNulls = RealIndex::Always | RealIndex::IgnoreNulls;
constexpr auto Plain = LogicalIndex::Kind::Plain;
constexpr auto Primary = LogicalIndex::Kind::Primary;

std::vector<TableRow> systemTables() {
    return {
        {Catalog::ObjectsPage,
         0,
         {
             {u"Connect", T::Memo, 9, 3, 0, PlainColumn, 0, 4},
             {u"Database", T::Memo, 8, 2, 0, PlainColumn, 0, 2},
             {u"DateCreate", T::DateTime, 4, 1, 10, FixedColumn, 8},
             {u"DateUpdate", T::DateTime, 5, 1, 18, FixedColumn, 8},
             {u"Flags", T::Long, 7, 2, 26, FixedColumn, 4},
             {u"ForeignName", T::Text, 10, 4, 0, PlainColumn, LongText},
             {u"Id", T::Long, 0, 0, 0, FixedColumn, 4},
             {u"Lv", T::Ole, 13, 7, 0, PlainColumn, 0, 8},
             {u"LvExtra", T::Ole, 16, 10, 0, PlainColumn, 0, 14},
             {u"LvModule", T::Ole, 15, 9, 0, PlainColumn, 0, 12},
             {u"LvProp", T::Ole, 14, 8, 0, PlainColumn, 0, 10},
             {u"Name", T::Text, 2, 0, 0, PlainColumn, LongText},
             {u"Owner", T::Binary, 6, 1, 0, OwnerColumn, LongText},
             {u"ParentId", T::Long, 1, 0, 4, FixedColumn, 4},
             {u"RmtInfoLong", T::Ole, 12, 6, 0, PlainColumn, 0, 6},
             {u"RmtInfoShort", T::Binary, 11, 5, 0, PlainColumn, LongText},
             {u"Type", T::Integer, 3, 1, 8, FixedColumn, 2},
         },
         {{{1, 2}, Unique, 7, 16}, {{0}, Unique, 8, 17}},
         {{u"Id", 1, 1, Primary}, {u"ParentIdName", 0, 0, Plain}}},
        {Catalog::PermissionsPage,
         18,
         {
             {u"ACM", T::Long, 2, 1, 4, FixedColumn, 4},
             {u"FInheritable", T::Boolean, 3, 1, 0, FixedColumn, 1},
             {u"ObjectId", T::Long, 0, 0, 0, FixedColumn, 4},
             {u"SID", T::Binary, 1, 0, 0, OwnerColumn, LongText},
         },
         {{{0}, Required, 9, 20}},
         {{u"ObjectId", 0, 0, Plain}}},
        {Catalog::QueriesPage,
         21,
         {
             {u"Attribute", T::Byte, 1, 0, 4, FixedColumn, 1},
             {u"Expression", T::Memo, 5, 3, 0, PlainColumn, 0, 23},
             {u"Flag", T::Integer, 6, 4, 5, FixedColumn, 2},
             {u"LvExtra", T::Long, 7, 4, 7, FixedColumn, 4},
             {u"Name1", T::Text, 3, 1, 0, PlainColumn, LongText},
             {u"Name2", T::Text, 4, 2, 0, PlainColumn, LongText},
             {u"ObjectId", T::Long, 0, 0, 0, FixedColumn, 4},
             {u"Order", T::Binary, 2, 0, 0, PlainColumn, LongText},
         },
         {{{0, 1, 2}, Unique, 10, 25}},
         {{u"ObjectIdAttribute", 0, 0, Primary}}},
        {Catalog::RelationshipsPage,
         26,
         {
             {u"ccolumn", T::Long, 2, 1, 4, FixedColumn, 4},
             {u"grbit", T::Long, 1, 1, 0, FixedColumn, 4},
             {u"icolumn", T::Long, 3, 1, 8, FixedColumn, 4},
             {u"szColumn", T::Text, 5, 2, 0, PlainColumn, LongText},
             {u"szObject", T::Text, 4, 1, 0, PlainColumn, LongText},
             {u"szReferencedColumn", T::Text, 7, 4, 0, PlainColumn, LongText},
             {u"szReferencedObject", T::Text, 6, 3, 0, PlainColumn, LongText},
             {u"szRelationship", T::Text, 0, 0, 0, PlainColumn, LongText},
         },
         {{{0}, IgnoringNulls, 11, 28}, {{4}, IgnoringNulls, 12, 29}, {{6}, IgnoringNulls, 13, 30}},
         {{u"szObject", 1, 1, Plain},
          {u"szReferencedObject", 2, 2, Plain},
          {u"szRelationship", 0, 0, Plain}}},
    };
}

RowPointer mapRow(int row) {
    return {MapPage, static_cast<std::uint8_t>(row)};
}

TableDefinition definitionOf(const TableRow& table) {
    TableDefinition definition;
    definition.page = table.page;
    definition.type = TableDefinition::SystemTable;
    definition.ownedMap = mapRow(table.maps);
    definition.freeMap = mapRow(table.maps + 1);
    definition.columnNumbers = static_cast<std::uint16_t>(table.columns.size());
    for (const ColumnRow& row : table.columns) {
        Column column;
        column.name = row.name;
        column.type = row.type;
        column.number = row.number;
        column.variableIndex = row.variableIndex;
        column.fixedOffset = row.fixedOffset;
        column.flags = row.flags;
        column.size = row.size;
        if (column.isLong()) {
            column.ownedMap = mapRow(row.maps);
            column.freeMap = mapRow(row.maps + 1);
        }
        definition.variableColumns =
            static_cast<std::uint16_t>(definition.variableColumns + (column.isFixed() ? 0 : 1));
        definition.columns.push_back(column);
    }
    for (const RealIndexRow& row : table.realIndexes) {
        RealIndex index;
        for (const std::uint16_t number : row.columns)
            index.columns.push_back({number, true});
        index.flags = row.flags;
        index.root = row.root;
        index.pages = mapRow(row.map);
        definition.realIndexes.push_back(index);
    }
    for (const LogicalIndexRow& row : table.logicalIndexes) {
        LogicalIndex index;
        index.name = row.name;
        index.number = row.number;
        index.real = row.real;
        index.kind = row.kind;
        definition.logicalIndexes.push_back(index);
    }
    return definition;
}

// Security identifiers, and the creation time that belongs to them: they
// are stored under a key that depends on that time. These values are
// known together from a file of the engine, so every new file uses them.
constexpr std::uint64_t HeaderDate = 0x40E4AB3E3BD3853E;
const Bytes Administrator{0x64, 0x8B};
const Bytes Users{0x65, 0x8B};
const Bytes Engine{0x65, 0x89};
const Bytes Creator{0x65, 0x8E};

constexpr std::int32_t ContainerOfContainers = 0x0F000000;
constexpr std::int32_t DatabasesContainer = 0x0F000002;
constexpr std::int32_t DatabaseObject = 0x10000000;
constexpr auto SystemObject = static_cast<std::int32_t>(0x80000000);

struct ObjectRow {
    std::int32_t id;
    std::int32_t parent;
    const char16_t* name;
    std::int16_t kind;
    const Bytes* owner;
};

const ObjectRow Objects[] = {
    {Catalog::TablesContainer, ContainerOfContainers, u"Tables", CatalogObject::ContainerKind, &Engine},
    {DatabasesContainer, ContainerOfContainers, u"Databases", CatalogObject::ContainerKind, &Engine},
    {Catalog::RelationshipsContainer, ContainerOfContainers, u"Relationships", CatalogObject::ContainerKind,
     &Engine},
    {DatabaseObject, DatabasesContainer, u"MSysDb", CatalogObject::DatabaseKind, &Administrator},
    {Catalog::ObjectsPage, Catalog::TablesContainer, u"MSysObjects", CatalogObject::TableKind, &Engine},
    {Catalog::PermissionsPage, Catalog::TablesContainer, u"MSysACEs", CatalogObject::TableKind, &Engine},
    {Catalog::QueriesPage, Catalog::TablesContainer, u"MSysQueries", CatalogObject::TableKind, &Engine},
    {Catalog::RelationshipsPage, Catalog::TablesContainer, u"MSysRelationships", CatalogObject::TableKind,
     &Engine},
};

struct PermissionRow {
    std::int32_t object;
    const Bytes* who;
    std::int32_t what;
    bool inheritable = false;
};

const PermissionRow Permissions[] = {
    {Catalog::ObjectsPage, &Administrator, 0x060000},
    {Catalog::PermissionsPage, &Administrator, 0x060000},
    {Catalog::QueriesPage, &Administrator, 0x060000},
    {Catalog::RelationshipsPage, &Administrator, 0x0E0000},
    {Catalog::TablesContainer, &Creator, 0x0F00FE, true},
    {Catalog::TablesContainer, &Administrator, 0x060001},
    {Catalog::RelationshipsContainer, &Creator, 0x0F00FE, true},
    {Catalog::RelationshipsContainer, &Administrator, 0x060001},
    {DatabasesContainer, &Administrator, 0x060000},
    {DatabaseObject, &Administrator, 0x06000E},
    {DatabaseObject, &Users, 0x00000E},
    {Catalog::QueriesPage, &Users, 0x000014},
    {Catalog::RelationshipsPage, &Users, 0x000014},
    {Catalog::ObjectsPage, &Users, 0x000014},
    {Catalog::TablesContainer, &Users, 0x0FFEFF, true},
    {Catalog::RelationshipsContainer, &Users, 0x0FFFFF, true},
};

// Pages 0 and 1, and the page of maps.
Bytes firstPages() {
    Bytes image(FirstDataPage * PageSize, 0);
    PageZero header;
    header.created = Date{std::bit_cast<double>(HeaderDate)};
    EncodePageZero(header, {image.data(), PageSize});

    Bytes map(UsageMapRowLength, 0);
    std::uint8_t* maps = image.data() + MapPage * PageSize;
    datapage::Format(maps, 0);
    for (int row = 0; row < MapRows; ++row)
        datapage::Add(maps, map);

    constexpr std::uint32_t globalOwner = 1;
    std::uint8_t* global = image.data() + PageSize;
    datapage::Format(global, globalOwner);
    Bytes free = map;
    constexpr std::size_t bitsAt = 5;
    for (PageNumber page = FirstDataPage; page < PagesInFirstMap; ++page)
        free[bitsAt + page / 8] |= static_cast<std::uint8_t>(1u << page % 8);
    datapage::Add(global, free);
    datapage::Add(global, map);
    return image;
}

} // namespace

Bytes FreshDatabase(Date created) {
    MemoryPager pager(firstPages());
    for (const TableRow& row : systemTables()) {
        const TableDefinition definition = definitionOf(row);
        for (const RealIndex& index : definition.realIndexes)
            IndexTree(pager, index.root, definition.page, UsageMap(pager, index.pages)).create();
        WriteTableDefinition(pager, definition);
    }
    Table objects(pager, Catalog::ObjectsPage);
    for (const ObjectRow& row : Objects) {
        std::vector<Value> values(objects.definition().columns.size());
        const auto set = [&](const char16_t* name, Value value) {
            values[static_cast<std::size_t>(objects.definition().findColumn(name))] = std::move(value);
        };
        set(u"Id", row.id);
        set(u"ParentId", row.parent);
        set(u"Name", std::u16string(row.name));
        set(u"Type", row.kind);
        set(u"DateCreate", created);
        set(u"DateUpdate", created);
        set(u"Owner", *row.owner);
        set(u"Flags", SystemObject);
        objects.insert(values);
    }
    Table permissions(pager, Catalog::PermissionsPage);
    for (const PermissionRow& row : Permissions) {
        // In the order of the table's columns.
        Value values[] = {row.what, row.inheritable, row.object, *row.who};
        permissions.insert(values);
    }
    return pager.image();
}

} // namespace jet
