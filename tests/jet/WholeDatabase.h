// A database with an example of everything: tables with all kinds of
// columns and values, moved and deleted rows, indexes of two levels,
// dropped columns, properties, and a relationship between two tables.
#pragma once

#include "jet/pager/MemoryPager.h"
#include "jet/sql/Execute.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

namespace jet::tests {

// Adds a row to a system table; the other columns stay null.
inline void AddSystemRow(Pager& pager, PageNumber page,
                         std::initializer_list<std::pair<const char16_t*, Value>> fields) {
    Table table(pager, page);
    std::vector<Value> row(table.definition().columns.size());
    for (const auto& [name, value] : fields)
        row[static_cast<std::size_t>(table.definition().findColumn(name))] = value;
    table.insert(row);
}

// Makes `column` of a table refer to the primary key of another, as another
// engine would: an index on each side that names the other, rows in the
// catalogue, rights. The column's index has the relationship's name.
inline void Relate(Catalog& catalog, const char16_t* name, const char16_t* table, const char16_t* column,
                   const char16_t* referenced, const char16_t* key) {
    Pager& pager = catalog.pager();
    TableDefinition from = catalog.table(table).definition();
    TableDefinition to = catalog.table(referenced).definition();
    LogicalIndex hidden;
    hidden.name = u".rA";
    hidden.real = to.primaryKey()->real;
    for (const LogicalIndex& other : to.logicalIndexes)
        hidden.number = std::max(hidden.number, other.number + 1);
    for (LogicalIndex& index : from.logicalIndexes) {
        if (index.name != name)
            continue;
        index.role = LogicalIndex::Role::Referencing;
        index.kind = LogicalIndex::Kind::Foreign;
        index.otherTable = to.page;
        index.otherNumber = hidden.number;
        hidden.otherNumber = index.number;
    }
    hidden.role = LogicalIndex::Role::Referenced;
    hidden.kind = LogicalIndex::Kind::Foreign;
    hidden.otherTable = from.page;
    to.logicalIndexes.insert(to.logicalIndexes.begin(), hidden);
    WriteTableDefinition(pager, from);
    WriteTableDefinition(pager, to);

    constexpr auto id = static_cast<std::int32_t>(0x80000001);
    AddSystemRow(pager, Catalog::RelationshipsPage,
                 {{u"szRelationship", std::u16string(name)},
                  {u"grbit", 0},
                  {u"ccolumn", 1},
                  {u"icolumn", 0},
                  {u"szObject", std::u16string(table)},
                  {u"szColumn", std::u16string(column)},
                  {u"szReferencedObject", std::u16string(referenced)},
                  {u"szReferencedColumn", std::u16string(key)}});
    AddSystemRow(pager, Catalog::ObjectsPage,
                 {{u"Id", id},
                  {u"ParentId", Catalog::RelationshipsContainer},
                  {u"Name", std::u16string(name)},
                  {u"Type", static_cast<std::int16_t>(CatalogObject::RelationshipKind)},
                  {u"DateCreate", Date{45000}},
                  {u"DateUpdate", Date{45000}},
                  {u"Owner", Bytes{0x64, 0x8B}},
                  {u"Flags", 0}});
    AddSystemRow(pager, Catalog::PermissionsPage,
                 {{u"ObjectId", id}, {u"SID", Bytes{0x65, 0x8B}}, {u"ACM", 0x0FFFFF}});
}

inline Bytes WholeDatabase() {
    MemoryPager pager(FreshDatabase(Date{45000}));
    Catalog catalog(pager);
    AppendTable(catalog, {u"Shows",
                          {{u"Id", ColumnType::Long, 0, true}, {u"Title", ColumnType::Text, 60, false, true}},
                          {{u"Main", {{u"Id"}}, true, true}, {u"ByTitle", {{u"Title"}}, true}},
                          {}});
    AppendTable(catalog, {u"Carts",
                          {{u"Number", ColumnType::Long},
                           {u"Title", ColumnType::Text, 100, false, true, true},
                           {u"Dropped", ColumnType::Text, 20},
                           {u"Notes", ColumnType::Memo, 0, false, false, true},
                           {u"Audio", ColumnType::Ole},
                           {u"Show", ColumnType::Long},
                           {u"Loop", ColumnType::Boolean},
                           {u"Price", ColumnType::Currency},
                           {u"Length", ColumnType::Double}},
                          {{u"Main", {{u"Number"}}, true, true},
                           {u"ByLength", {{u"Length", true}, {u"Title"}}},
                           {u"ShowsCarts", {{u"Show"}}, false, false, false, true}},
                          {}});
    AppendTable(catalog, {u"Log",
                          {{u"When", ColumnType::DateTime},
                           {u"Event", ColumnType::Integer},
                           {u"Kind", ColumnType::Byte},
                           {u"Gain", ColumnType::Single},
                           {u"Mark", ColumnType::Guid},
                           {u"Sum", ColumnType::Numeric},
                           {u"Key", ColumnType::Binary, 20}},
                          {{u"Main", {{u"When"}, {u"Event"}}, true, true}, {u"ByKey", {{u"Key"}}}},
                          {}});
    Table shows = catalog.table(u"Shows");
    for (std::int32_t i = 1; i <= 12; ++i) {
        std::vector<Value> row{i, ToUtf16("Show " + std::to_string(i))};
        shows.insert(row);
    }
    Table carts = catalog.table(u"Carts");
    for (std::int32_t i = 0; i < 150; ++i) {
        const auto length = static_cast<std::size_t>(i % 50 == 7 ? 9000 : i % 9 * 30);
        std::vector<Value> row{i * 7 % 150,
                               std::u16string(static_cast<std::size_t>(i % 40), u'é') +
                                   ToUtf16(std::to_string(i)),
                               std::u16string(u"gone"),
                               std::u16string(length, i % 2 == 0 ? u'n' : u'Ω'),
                               Bytes(length / 2, 1),
                               i % 5 == 0 ? Value() : Value(i % 12 + 1),
                               i % 2 == 0,
                               Currency{i * 100},
                               i * 0.5};
        carts.insert(row);
    }
    Table log = catalog.table(u"Log");
    for (std::int32_t i = 0; i < 100; ++i) {
        Guid guid;
        guid.bytes[0] = static_cast<std::uint8_t>(i);
        const std::int32_t day = 45000 + i / 3; // three rows of each
        std::vector<Value> row{Date{static_cast<double>(day)},
                               static_cast<std::int16_t>(i),
                               static_cast<std::uint8_t>(i),
                               static_cast<float>(i),
                               guid,
                               Numeric{i % 2 == 0, {0, 0, 0, static_cast<std::uint32_t>(i)}},
                               Bytes(static_cast<std::size_t>(i % 15), static_cast<std::uint8_t>(i))};
        log.insert(row);
    }
    Execute(catalog, u"UPDATE Carts SET Title = '" + std::u16string(95, u'x') + u"' WHERE Number < 9");
    Execute(catalog, u"DELETE FROM Carts WHERE Number BETWEEN 70 AND 80");
    DropField(catalog, u"Carts", u"Dropped");
    Relate(catalog, u"ShowsCarts", u"Carts", u"Show", u"Shows", u"Id");
    return pager.image();
}

} // namespace jet::tests
