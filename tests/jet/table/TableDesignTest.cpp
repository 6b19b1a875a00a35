// Tables, fields and indexes that are added, dropped and renamed, on empty and on filled tables.
#include "jet/NewDatabase.h"

#include "jet/index/IndexIntegrity.h"

#include <gtest/gtest.h>

#include <set>

using namespace jet;
using namespace jet::tests;

namespace {

using T = ColumnType;

FieldDesign field(std::u16string name, T type = T::Long) {
    FieldDesign design;
    design.name = std::move(name);
    design.type = type;
    return design;
}

std::u16string numbered(const char16_t* name, int number) {
    return name + ToUtf16(std::to_string(number));
}

std::size_t entriesOf(const Table& table, std::u16string_view name) {
    const LogicalIndex* index = table.definition().findIndex(name);
    std::size_t entries = 0;
    if (index == nullptr)
        return entries;
    CheckIndex(
        table.index(static_cast<int>(index->real)),
        [](const IndexFault& fault) { ADD_FAILURE() << "page " << fault.page << ": " << fault.reason; },
        [&](KeyView, RowPointer) { ++entries; });
    return entries;
}

Value valueOf(const Table& table, RowPointer at, std::u16string_view name) {
    RowView row;
    EXPECT_TRUE(table.fetch(at, row));
    Value value;
    table.value(row, table.definition().findColumn(name), value);
    return value;
}

} // namespace

TEST(JetTableDesign, ADefinitionMaySpanPagesAndGoAgain) {
    NewDatabase database;
    const PageNumber before = database.usedPages();
    TableDesign design;
    design.name = u"Wide";
    for (int i = 0; i < MaximumColumns; ++i)
        design.fields.push_back(
            field(numbered(std::u16string(60, u'\u00DC').c_str(), i), i % 3 == 0 ? T::Text : T::Long));
    for (int i = 0; i < MaximumIndexes; ++i)
        design.indexes.push_back(
            {numbered(u"Index", i), {{design.fields[static_cast<std::size_t>(i)].name, i % 2 == 0}}});
    const PageNumber page = AppendTable(database.catalog, design);
    EXPECT_GT(DefinitionPages(database.pager, page).size(), 8u);

    Table table = database.catalog.table(u"WIDE");
    std::vector<Value> row(MaximumColumns);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = i % 3 == 0 ? Value(std::u16string(u"x")) : Value(static_cast<std::int32_t>(i));
    const RowPointer at = table.insert(row);
    EXPECT_EQ(valueOf(table, at, design.fields[254].name), Value(std::int32_t{254}));
    EXPECT_EQ(ErrorOf([&] { AppendField(database.catalog, u"Wide", field(u"More")); }), 3190);
    EXPECT_EQ(ErrorOf([&] {
                  AppendIndex(database.catalog, u"Wide", {u"More", {{design.fields[200].name}}});
              }),
              3626);

    // After most fields are dropped the rest still reads correctly, and takes fewer pages.
    for (std::size_t i = 254; i > 40; --i)
        DropField(database.catalog, u"Wide", design.fields[i].name);
    EXPECT_LT(DefinitionPages(database.pager, page).size(), 4u);
    EXPECT_EQ(valueOf(database.catalog.table(u"Wide"), at, design.fields[40].name), Value(std::int32_t{40}));
    DropTable(database.catalog, u"Wide");
    EXPECT_EQ(database.usedPages(), before);
    EXPECT_EQ(ErrorOf([&] { database.catalog.table(u"Wide"); }), 3265);
}

TEST(JetTableDesign, ChangesAFilledTable) {
    NewDatabase database;
    Catalog& catalog = database.catalog;
    TableDesign design;
    design.name = u"Stock";
    design.fields = {field(u"Code"), field(u"On", T::Boolean)};
    AppendTable(catalog, design);
    Table table = catalog.table(u"Stock");
    std::vector<RowPointer> rows;
    for (std::int32_t i = 0; i < 2000; ++i) {
        Value values[] = {i / 2, i % 2 == 0};
        rows.push_back(table.insert(values));
    }

    // The first field of varying length gives every row a new part.
    FieldDesign text = field(u"Name", T::Text);
    text.size = 20;
    text.properties = {{u"Description", false, T::Text, Bytes{'x', 0}}};
    AppendField(catalog, u"Stock", text);
    FieldDesign number = field(u"Id");
    number.autonumber = true;
    AppendField(catalog, u"Stock", number);
    EXPECT_EQ(ErrorOf([&] { table.remove(rows[0]); }), 3197) << "an object from before the change is stale";
    table = catalog.table(u"Stock");
    EXPECT_EQ(table.rowCount(), 2000u);
    EXPECT_EQ(valueOf(table, rows[999], u"Code"), Value(std::int32_t{499}));
    EXPECT_EQ(valueOf(table, rows[1000], u"On"), Value(true));
    EXPECT_EQ(valueOf(table, rows[7], u"Name"), Value());
    std::set<std::int32_t> ids;
    for (const RowPointer row : rows)
        ids.insert(std::get<std::int32_t>(valueOf(table, row, u"Id")));
    EXPECT_EQ(ids.size(), 2000u);
    Value next[] = {std::int32_t{7}, true, std::u16string(u"new"), Value()};
    table.insert(next);
    EXPECT_EQ(next[3], Value(std::int32_t{2001}));

    // Indexes are built from the rows; a failed one leaves no trace.
    EXPECT_EQ(ErrorOf([&] { AppendIndex(catalog, u"Stock", {u"ByCode", {{u"Code"}}, true}); }), 3022);
    EXPECT_EQ(ErrorOf([&] { AppendIndex(catalog, u"Stock", {u"ByName", {{u"Name"}}, true, true}); }), 3058);
    EXPECT_EQ(catalog.table(u"Stock").definition().realIndexes.size(), 0u);
    AppendIndex(catalog, u"Stock", {u"ByCode", {{u"Code", true}, {u"On"}}});
    AppendIndex(catalog, u"Stock", {u"PrimaryKey", {{u"id"}}, true, true});
    EXPECT_EQ(ErrorOf([&] { AppendIndex(catalog, u"Stock", {u"Second", {{u"Code"}}, true, true}); }), 3284);
    EXPECT_EQ(ErrorOf([&] { AppendIndex(catalog, u"Stock", {u"bycode", {{u"Id"}}}); }), 3284);
    EXPECT_EQ(ErrorOf([&] { AppendIndex(catalog, u"Stock", {u"Else", {{u"Nothing"}}}); }), 3265);
    table = catalog.table(u"Stock");
    EXPECT_EQ(entriesOf(table, u"ByCode"), 2001u);
    EXPECT_EQ(entriesOf(table, u"PrimaryKey"), 2001u);
    table.remove(rows[5]);
    EXPECT_EQ(entriesOf(table, u"PrimaryKey"), 2000u);

    EXPECT_EQ(ErrorOf([&] { DropField(catalog, u"Stock", u"Code"); }), 3280);
    DropIndex(catalog, u"Stock", u"ByCode");
    DropField(catalog, u"Stock", u"Code");
    RenameIndex(catalog, u"Stock", u"PrimaryKey", u"Main");
    RenameField(catalog, u"Stock", u"Name", u"Title");
    EXPECT_EQ(ErrorOf([&] { RenameField(catalog, u"Stock", u"Title", u"ID"); }), 3191);
    RenameTable(catalog, u"Stock", u"Items");
    EXPECT_EQ(ErrorOf([&] { catalog.table(u"Stock"); }), 3265);
    table = catalog.table(u"Items");
    EXPECT_EQ(entriesOf(table, u"Main"), 2000u);
    EXPECT_EQ(valueOf(table, rows[1000], u"On"), Value(true));
    EXPECT_EQ(catalog.properties(*catalog.findTable(u"Items")).text(u"Title", u"Description"), u"x");
    DropTable(catalog, u"Items");
}

TEST(JetTableDesign, RefusesWhatCannotBe) {
    NewDatabase database;
    Catalog& catalog = database.catalog;
    TableDesign design;
    design.name = u"Table";
    EXPECT_EQ(ErrorOf([&] { AppendTable(catalog, design); }), 3001);
    design.fields = {field(u"A"), field(u"a")};
    EXPECT_EQ(ErrorOf([&] { AppendTable(catalog, design); }), 3191);
    design.fields[1] = field(u"Memo", T::Memo);
    AppendTable(catalog, design);
    EXPECT_EQ(ErrorOf([&] { AppendTable(catalog, design); }), 3010);
    design.name = u"MSYSOBJECTS";
    EXPECT_EQ(ErrorOf([&] { AppendTable(catalog, design); }), 3010);
    EXPECT_EQ(ErrorOf([&] { RenameTable(catalog, u"table", u"msysaces"); }), 3010);
    EXPECT_EQ(ErrorOf([&] { DropTable(catalog, u"MSysACEs"); }), 3027);
    for (const char16_t* name : {u"", u" x", u"a.b", u"a!", u"[a", u"b]", u"`", u"a\n"})
        EXPECT_EQ(ErrorOf([&] { RenameTable(catalog, u"Table", name); }), 3001) << ToUtf8(name);
    FieldDesign wide = field(u"Wide", T::Text);
    wide.size = 256;
    EXPECT_EQ(ErrorOf([&] { AppendField(catalog, u"Table", wide); }), 3001);
    EXPECT_EQ(ErrorOf([&] { AppendField(catalog, u"Nothing", wide); }), 3265);
}

TEST(JetTableDesign, ADescriptionMakesTheSameTable) {
    NewDatabase database;
    Catalog& catalog = database.catalog;
    TableDesign design;
    design.name = u"One";
    design.fields = {field(u"Id"), field(u"Text", T::Text), field(u"Number", T::Numeric),
                     field(u"Binary", T::Binary)};
    design.fields[0].autonumber = true;
    design.fields[1].size = 17;
    design.fields[1].required = true;
    design.fields[1].properties = {{u"DefaultValue", false, T::Memo, Bytes{'1', 0}}};
    design.fields[2].precision = 12;
    design.fields[2].scale = 3;
    design.fields[3].size = 40;
    design.indexes = {{u"A", {{u"Text", true}, {u"Id"}}, true, false, false, true},
                      {u"B", {{u"Id"}}, true, true}};
    design.properties = {{u"Description", false, T::Text, Bytes{'t', 0}}};
    AppendTable(catalog, design);
    TableDesign described = DescribeTable(catalog, *catalog.findTable(u"One"));
    described.name = u"Two";
    AppendTable(catalog, described);
    const CatalogObject one = *catalog.findTable(u"One"), two = *catalog.findTable(u"Two");
    EXPECT_EQ(EncodeProperties(catalog.properties(one)), EncodeProperties(catalog.properties(two)));
    const TableDefinition a = catalog.table(one).definition(), b = catalog.table(two).definition();
    ASSERT_EQ(a.columns.size(), b.columns.size());
    for (std::size_t i = 0; i < a.columns.size(); ++i) {
        EXPECT_EQ(a.columns[i].name, b.columns[i].name);
        EXPECT_EQ(a.columns[i].size, b.columns[i].size);
        EXPECT_EQ(a.columns[i].language, b.columns[i].language);
        EXPECT_EQ(a.columns[i].flags, b.columns[i].flags);
    }
    ASSERT_EQ(a.realIndexes.size(), b.realIndexes.size());
    for (std::size_t i = 0; i < a.realIndexes.size(); ++i)
        EXPECT_EQ(a.realIndexes[i].flags, b.realIndexes[i].flags);

    // The owner and the users get the rights that the container of tables passes on.
    const Table permissions(database.pager, Catalog::PermissionsPage);
    int found = 0;
    RowPointer at;
    for (RowView row; permissions.next(at, row);)
        found += valueOf(permissions, at, u"ObjectId") == Value(one.id) ? 1 : 0;
    EXPECT_EQ(found, 2);
}
