// Rows with every kind of column and of long value, and every kind of move, compared with their input.
#include "jet/NewDatabase.h"

#include "jet/Check.h"
#include "jet/index/IndexIntegrity.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/record/DefinitionFaults.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <map>
#include <random>
#include <set>

using namespace jet;
using namespace jet::tests;

namespace {

using T = ColumnType;
using Row = std::vector<Value>;

// A column of every kind, numbered, with a primary key, a composite index and one that ignores nulls.
TableDesign everyKind() {
    TableDesign design;
    design.name = u"Every";
    design.fields = {
        FieldOf(u"Id", T::Long),         FieldOf(u"Flag", T::Boolean),       FieldOf(u"Byte", T::Byte),
        FieldOf(u"Integer", T::Integer), FieldOf(u"Currency", T::Currency),  FieldOf(u"Single", T::Single),
        FieldOf(u"Double", T::Double),   FieldOf(u"Time", T::DateTime),      FieldOf(u"Text", T::Text, 50),
        FieldOf(u"Memo", T::Memo),       FieldOf(u"Binary", T::Binary, 100), FieldOf(u"Ole", T::Ole),
        FieldOf(u"Guid", T::Guid),       FieldOf(u"Numeric", T::Numeric)};
    design.fields[0].autonumber = true;
    design.indexes = {{u"PrimaryKey", {{u"Id"}}, true, true},
                      {u"ByText", {{u"Text"}, {u"Time", true}}},
                      {u"ByDouble", {{u"Double"}}, false, false, false, true}};
    return design;
}
constexpr int TextColumn = 8;
constexpr int MemoColumn = 9;
constexpr int OleColumn = 11;

std::u16string text(std::size_t length, std::mt19937& random) {
    std::u16string made(length, u' ');
    for (char16_t& unit : made)
        unit = static_cast<char16_t>(random() % 30 == 0 ? 0x20AC : 0x41 + random() % 0xB0);
    return made;
}

Bytes bytes(std::size_t length, std::mt19937& random) {
    Bytes made(length);
    for (std::uint8_t& byte : made)
        byte = static_cast<std::uint8_t>(random());
    return made;
}

Value randomValue(T type, std::mt19937& random) {
    if (type != T::Boolean && random() % 8 == 0)
        return {};
    const auto number = static_cast<std::int32_t>(random());
    switch (type) {
    case T::Boolean:
        return number % 2 == 0;
    case T::Byte:
        return static_cast<std::uint8_t>(number);
    case T::Integer:
        return static_cast<std::int16_t>(number);
    case T::Long:
        return number;
    case T::Currency:
        return Currency{std::int64_t{number} * 100003};
    case T::Single:
        return static_cast<float>(number) / 7;
    case T::Double:
        return number / 7.0;
    case T::DateTime:
        return Date{number / 100000.0};
    case T::Text:
        return text(random() % 51, random);
    case T::Memo:
        return text(random() % 10 == 0 ? random() % 9000 : random() % 100, random);
    case T::Binary:
        return bytes(random() % 101, random);
    case T::Ole:
        return bytes(random() % 10 == 0 ? random() % 20000 : random() % 100, random);
    case T::Guid: {
        Guid guid;
        for (std::uint8_t& byte : guid.bytes)
            byte = static_cast<std::uint8_t>(random());
        return guid;
    }
    default:
        return Numeric{number < 0, {0, 0, 7, static_cast<std::uint32_t>(number)}};
    }
}

// The table holds exactly these rows, forwards and backwards, and its indexes one entry for each.
void expectRows(const Table& table, const std::map<RowPointer, Row>& model) {
    EXPECT_EQ(table.rowCount(), model.size());
    std::vector<RowPointer> forwards, backwards;
    Row values;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        table.values(row, values);
        forwards.push_back(at);
        const auto found = model.find(at);
        ASSERT_TRUE(found != model.end());
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_TRUE(values[i] == found->second[i]) << ToUtf8(table.definition().columns[i].name);
    }
    EXPECT_EQ(forwards.size(), model.size());
    at = {};
    for (RowView row; table.previous(at, row);)
        backwards.insert(backwards.begin(), at);
    EXPECT_EQ(backwards, forwards);
    for (std::size_t i = 0; i < table.definition().realIndexes.size(); ++i) {
        std::set<RowPointer> entries;
        CheckIndex(
            table.index(static_cast<int>(i)),
            [](const IndexFault& fault) { ADD_FAILURE() << "page " << fault.page << ": " << fault.reason; },
            [&](KeyView, RowPointer row) { EXPECT_TRUE(entries.insert(row).second); });
        const RealIndex& real = table.definition().realIndexes[i];
        const auto column =
            static_cast<std::size_t>(table.definition().findColumnNumber(real.columns[0].number));
        std::size_t expected = 0;
        for (const auto& [row, held] : model)
            expected += real.ignoresNulls() && IsNull(held[column]) ? 0 : 1;
        EXPECT_EQ(entries.size(), expected);
    }
}

} // namespace

TEST(JetTable, HoldsWhatWasPutInThroughAnyOrderOfChanges) {
    for (const unsigned seed : {1u, 2u, 3u}) {
        NewDatabase database;
        AppendTable(database.catalog, everyKind());
        const PageNumber emptyPages = database.usedPages();
        Table table = database.catalog.table(u"every");
        const auto& columns = table.definition().columns;
        std::mt19937 random(seed);
        std::map<RowPointer, Row> model;
        for (int step = 0; step < 1500; ++step) {
            const unsigned choice = random() % 10;
            if (choice < 6 || model.empty()) {
                Row row;
                for (const Column& column : columns)
                    row.push_back(column.isAutonumber() ? Value() : randomValue(column.type, random));
                const RowPointer at = table.insert(row);
                EXPECT_TRUE(model.emplace(at, row).second);
                continue;
            }
            auto row = model.begin();
            std::advance(row, random() % model.size());
            if (choice < 9) {
                std::vector<FieldChange> changes;
                for (int i = 0; i < 3; ++i) {
                    const auto column = 1 + random() % (columns.size() - 1);
                    const Value value = randomValue(columns[column].type, random);
                    changes.push_back({static_cast<int>(column), value});
                    row->second[column] = value;
                }
                table.update(row->first, changes);
            } else {
                table.remove(row->first);
                EXPECT_EQ(ErrorOf([&] { table.remove(row->first); }), 3167);
                model.erase(row);
            }
        }
        expectRows(table, model);
        // The last row frees everything that rows used.
        for (const auto& [at, row] : model)
            table.remove(at);
        expectRows(table, {});
        EXPECT_EQ(database.usedPages(), emptyPages);
    }
}

TEST(JetTable, KeepsTheLimitsOfEveryKind) {
    NewDatabase database;
    AppendTable(database.catalog, everyKind());
    Table table = database.catalog.table(u"Every");
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = 0xFFFFFFFFu;
    std::map<RowPointer, Row> model;
    for (Row row : {Row{std::int32_t{-5}, true, std::uint8_t{255}, std::int16_t{-32768}, Currency{lowest},
                        3.4028235e38f, -1.7976931348623157e308, Date{-1.25}, std::u16string(50, u'\u20AC'),
                        std::u16string(), Bytes(100, 0), Bytes(), Guid{{1, 2, 3}},
                        Numeric{true, {most, most, most, most}}},
                    Row{std::int32_t{7}, false, std::uint8_t{0}, std::int16_t{32767}, Currency{-1}, 1e-45f,
                        5e-324, Date{2958465.9999}, std::u16string(u"\u00E9\u00E8 \u2019"),
                        std::u16string(u"\u0001x\u00FF"), Bytes{0xFF, 0xFE, 0}, Bytes{0}, Guid{}, Numeric{}},
                    Row{Value(), Value(false), {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}}}) {
        const RowPointer at = table.insert(row);
        model[at] = row;
    }
    EXPECT_EQ(model.rbegin()->second[0], Value(std::int32_t{8}));
    expectRows(table, model);
}

TEST(JetTable, KeepsLongValuesOfEveryForm) {
    NewDatabase database;
    AppendTable(database.catalog, everyKind());
    Table table = database.catalog.table(u"Every");
    std::mt19937 random(5);
    // In the row, in one piece, in a chain, and the limits
    // between them; texts up to 1024 are compressed.
    const std::size_t lengths[] = {0,    1,    2,    3,    32,   62,   63,   64,   65,    1024,   1025,
                                   1900, 1901, 3798, 3799, 3800, 3801, 4072, 4073, 12216, 200000, 0};
    Row row(table.definition().columns.size());
    row[1] = false;
    const RowPointer at = table.insert(row);
    const PageNumber before = database.usedPages();
    for (const std::size_t length : lengths)
        for (const bool squeezable : {true, false}) {
            row[MemoColumn] = squeezable ? std::u16string(length, u'\u00E4') : text(length, random);
            row[OleColumn] = bytes(length, random);
            table.update(at, std::array{FieldChange{MemoColumn, row[MemoColumn]},
                                        FieldChange{OleColumn, row[OleColumn]}});
            expectRows(table, {{at, row}});
        }
    EXPECT_EQ(database.usedPages(), before);

    // A row with many short ones puts them on pages of their own rather than become too long.
    TableDesign wide;
    wide.name = u"Wide";
    for (int i = 0; i < 80; ++i)
        wide.fields.push_back(FieldOf((u"M" + ToUtf16(std::to_string(i))).c_str(), T::Ole));
    AppendTable(database.catalog, wide);
    Table table2 = database.catalog.table(u"Wide");
    Row many;
    for (int i = 0; i < 80; ++i)
        many.push_back(bytes(60, random));
    const RowPointer there = table2.insert(many);
    expectRows(table2, {{there, many}});
}

TEST(JetTable, RefusesARowBeforeAnythingIsChanged) {
    NewDatabase database;
    TableDesign design = everyKind();
    design.fields[2].required = true;
    design.fields[TextColumn].allowZeroLength = false;
    design.indexes.push_back({u"Unique", {{u"Integer"}}, true});
    for (int i = 0; i < 10; ++i)
        design.fields.push_back(FieldOf((u"Long" + ToUtf16(std::to_string(i))).c_str(), T::Text, 255));
    AppendTable(database.catalog, design);
    Table table = database.catalog.table(u"Every");
    Row good(table.definition().columns.size());
    good[0] = std::int32_t{1};
    good[1] = true;
    good[2] = std::uint8_t{1};
    good[3] = std::int16_t{10};
    const RowPointer at = table.insert(good);
    Row second = good;
    second[0] = std::int32_t{2};
    second[3] = Value();
    table.insert(second);
    const Bytes image = database.pager.image();

    const auto insertWith = [&](std::size_t column, Value value) {
        Row row = good;
        row[0] = std::int32_t{3};
        row[3] = std::int16_t{11};
        row[MemoColumn] = std::u16string(10000, u'x');
        row[column] = std::move(value);
        return ErrorOf([&] { table.insert(row); });
    };
    EXPECT_EQ(insertWith(0, std::int32_t{1}), 3022);
    EXPECT_EQ(insertWith(3, std::int16_t{10}), 3022);
    EXPECT_EQ(insertWith(2, Value()), 3314);
    EXPECT_EQ(insertWith(TextColumn, std::u16string()), 3315);
    EXPECT_EQ(insertWith(TextColumn, std::u16string(51, u'x')), 3163);
    EXPECT_EQ(insertWith(10, Bytes(101)), 3163);
    EXPECT_EQ(insertWith(2, std::int32_t{256}), 3421);
    EXPECT_EQ(insertWith(6, std::u16string(u"no number")), 3421);
    EXPECT_EQ(ErrorOf([&] {
                  Row row = good;
                  row[0] = std::int32_t{3};
                  row[3] = std::int16_t{11};
                  for (std::size_t i = row.size() - 10; i < row.size(); ++i)
                      row[i] = std::u16string(255, u'\u20AC');
                  table.insert(row);
              }),
              3047);
    EXPECT_EQ(ErrorOf([&] { table.update(at, std::array{FieldChange{0, std::int32_t{2}}}); }), 3022);
    EXPECT_EQ(ErrorOf([&] { table.update(at, std::array{FieldChange{0, Value()}}); }), 3058);
    EXPECT_EQ(database.pager.image(), image);

    // Values of other kinds are converted; unique keys that are all null do not conflict.
    Row converted = good;
    converted[0] = std::u16string(u" 3 ");
    converted[3] = Value();
    converted[4] = 2.5;
    converted[7] = std::int32_t{40000};
    converted[TextColumn] = std::int16_t{-12};
    table.insert(converted);
    EXPECT_EQ(converted[0], Value(std::int32_t{3}));
    EXPECT_EQ(converted[4], Value(Currency{25000}));
    EXPECT_EQ(converted[7], Value(Date{40000}));
    EXPECT_EQ(converted[TextColumn], Value(std::u16string(u"-12")));
}

// Statements of other engines make Numeric columns in the variable part with a declared size of 9 bytes;
// their values have all 17.
TEST(JetTable, ReadsANumericOfVariablePlace) {
    NewDatabase database;
    const PageNumber page = AppendTable(
        database.catalog,
        {u"Prices",
         {{u"Id", ColumnType::Long}, {u"Price", ColumnType::Numeric}, {u"Name", ColumnType::Text}},
         {{u"ByPrice", {{u"Price"}}}},
         {}});
    TableDefinition definition = ReadTableDefinition(database.pager, page);
    Column& price = definition.columns[1];
    price.flags &= static_cast<std::uint8_t>(~Column::FixedLength);
    price.size = 9;
    price.variableIndex = 0;
    definition.columns[2].variableIndex = 1;
    definition.variableColumns = 2;
    WriteTableDefinition(database.pager, definition);

    Table table = database.catalog.table(u"Prices");
    const Numeric number{true, {0, 0, 1, 1995}};
    std::vector<Value> values{1, number, std::u16string(u"Carts")};
    const RowPointer at = table.insert(values);
    RowView row;
    ASSERT_TRUE(table.fetch(at, row));
    EXPECT_EQ(row.bytes(table.definition().columns[1]).size(), 17u);
    std::vector<Value> read;
    table.values(row, read);
    EXPECT_EQ(read, values);
    Bytes key;
    KeyEncoder(definition, definition.realIndexes[0]).encodeRow(values, key);
    EXPECT_TRUE(table.index(0).contains(key));
    CheckDatabase(database.pager, [](const Fault& fault) { EXPECT_TRUE(fault.harmless) << fault.reason; });

    price.type = ColumnType::Long; // a fixed kind in a place of its own size, or not at all
    EXPECT_NE(FaultOfDefinition(definition), "");
}

TEST(JetTable, WalksOnBehindADamagedPage) {
    NewDatabase database;
    AppendTable(database.catalog, everyKind());
    Table table = database.catalog.table(u"Every");
    std::mt19937 random(9);
    std::set<PageNumber> pages;
    for (int i = 0; i < 200; ++i) {
        Row row(table.definition().columns.size());
        row[1] = false;
        row[TextColumn] = text(50, random);
        pages.insert(table.insert(row).page);
    }
    ASSERT_GT(pages.size(), 4u);
    // One is of another kind; others claim more slots than a row pointer can name.
    int lost = 0;
    auto bad = std::next(pages.begin());
    for (const std::size_t byte : {0u, 13u, 12u}) {
        std::uint8_t* page = database.pager.edit(*bad++);
        lost += datapage::SlotCount(page);
        if (byte == 12)
            Store16(page + byte, 0xFFFF);
        else
            page[byte] = 9;
    }
    // The list of pages continues beyond the end of the file: the walk reports it and stops moving.
    UsageMap(database.pager, table.definition().ownedMap).add(database.pager.pageCount() + 100);
    for (const bool forwards : {true, false}) {
        int rows = 0, faults = 0;
        RowPointer at;
        for (bool more = true; more;) {
            RowView row;
            const RowPointer before = at;
            try {
                more = forwards ? table.next(at, row) : table.previous(at, row);
                rows += more ? 1 : 0;
            } catch (const Error& error) {
                EXPECT_EQ(error.number(), 3428);
                ++faults;
                more = at != before;
            }
        }
        EXPECT_EQ(rows, 200 - lost);
        EXPECT_EQ(faults, forwards ? 4 : 3);
    }
}
