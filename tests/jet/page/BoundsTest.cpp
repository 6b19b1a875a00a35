// Numbers of a damaged page that would lead beyond it, or in circles: each causes an error where it is read,
// and sound neighbours keep working.
#include "jet/NewDatabase.h"

#include "jet/Check.h"
#include "jet/index/IndexPath.h"
#include "jet/page/DataPage.h"
#include "jet/record/DefinitionFaults.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

using namespace jet;
using namespace jet::tests;

namespace {

constexpr int Damage = 3428;

class BoundsTest : public testing::Test {
protected:
    BoundsTest() {
        AppendTable(
            database_.catalog,
            {u"Log",
             {{u"Id", ColumnType::Long}, {u"Text", ColumnType::Text, 60}, {u"Note", ColumnType::Memo}},
             {{u"Main", {{u"Id"}}, true, true}, {u"ByText", {{u"Text"}}}},
             {}});
        Table table = log();
        for (std::int32_t i = 0; i < 200; ++i)
            last_ = add(table, i);
    }
    Table log() const { return database_.catalog.table(u"Log"); }
    static RowPointer add(Table& table, std::int32_t id, std::size_t note = 5) {
        std::vector<Value> row{id, ToUtf16("text " + std::to_string(id)), std::u16string(note, u'Ω')};
        return table.insert(row);
    }
    std::uint8_t* edit(PageNumber page) { return database_.pager.edit(page); }
    Bytes bytesOf(PageNumber page) {
        const std::uint8_t* bytes = database_.pager.read(page);
        return Bytes(bytes, bytes + PageSize);
    }
    // Overwrites the table's definition with a changed one.
    void redefine(const std::function<void(TableDefinition&)>& change) {
        TableDefinition definition = log().definition();
        change(definition);
        WriteTableDefinition(database_.pager, definition);
    }

    NewDatabase database_;
    RowPointer last_;
};

struct BadDefinition {
    const char* name;
    void (*change)(TableDefinition&);
    const char* reason;
};

class DefinitionBoundsTest : public BoundsTest, public testing::WithParamInterface<BadDefinition> {};

// A broken definition is reported with its page and the fault; the other tables open as before.
TEST_P(DefinitionBoundsTest, IsRefusedByItselfAlone) {
    AppendTable(database_.catalog, {u"Other", {{u"Id", ColumnType::Long}}, {}, {}});
    const CatalogObject object = *database_.catalog.findTable(u"Log");
    redefine(GetParam().change);
    try {
        log();
        FAIL() << "opened";
    } catch (const Error& error) {
        EXPECT_EQ(error.detail(), "page " + std::to_string(object.id) + ": " + GetParam().reason);
    }
    EXPECT_EQ(ErrorOf([&] { DescribeTable(database_.catalog, object); }), Damage);
    EXPECT_EQ(database_.catalog.table(u"Other").rowCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Damage, DefinitionBoundsTest,
    testing::Values(
        BadDefinition{"IndexOfNoColumn",
                      [](TableDefinition& in) { in.realIndexes[1].columns[0].number = 77; },
                      "index 'ByText' names a column that is not there"},
        BadDefinition{"IndexWithoutColumns", [](TableDefinition& in) { in.realIndexes[0].columns.clear(); },
                      "index 'Main' has no columns"},
        BadDefinition{"IndexWithoutTree", [](TableDefinition& in) { in.logicalIndexes[0].real = 2; },
                      "index 'ByText' has no tree"},
        BadDefinition{"NumberBeyondTheMask", [](TableDefinition& in) { in.columns[1].number = 3; },
                      "column 'Text' has a bad number"},
        BadDefinition{"NumberOfAnother", [](TableDefinition& in) { in.columns[1].number = 0; },
                      "column 'Text' has the number of another"},
        BadDefinition{"FixedBeyondThePage", [](TableDefinition& in) { in.columns[0].fixedOffset = 4093; },
                      "column 'Id' lies outside the row"},
        BadDefinition{"VariableBeyondTheOthers", [](TableDefinition& in) { in.columns[2].variableIndex = 2; },
                      "column 'Note' has a bad place in the row"},
        BadDefinition{"SizeOfANumber", [](TableDefinition& in) { in.columns[0].size = 8; },
                      "column 'Id' has a bad size"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(BoundsTest, CountsOfADefinitionAreLimited) {
    const PageNumber page = log().definition().page;
    for (const std::size_t count : {0x2Du, 0x2Fu, 0x33u}) { // columns, indexes by name, trees
        const Bytes sound = bytesOf(page);
        edit(page)[count + 1] = 2;
        EXPECT_EQ(ErrorOf([&] { log(); }), Damage) << count;
        std::copy(sound.begin(), sound.end(), edit(page));
    }
    Store32(edit(page) + 4, page); // a page followed by itself
    Store32(edit(page) + 8, 0x10000);
    EXPECT_EQ(ErrorOf([&] { log(); }), Damage);
}

// A row of another object is unreadable: tables that are found open all the same, and no duplicate is made of
// a name that may exist.
TEST_F(BoundsTest, ADamagedObjectHidesNoOther) {
    AppendTable(database_.catalog, {u"Other", {{u"Id", ColumnType::Long}}, {}, {}});
    const RowPointer row = database_.catalog.findTable(u"Other")->row;
    std::uint8_t* page = edit(row.page);
    const datapage::Slot slot = datapage::Find(page, row.page, row.row);
    page[slot.offset] = 0xFF; // more columns than it has bits for
    page[slot.offset + 1] = 0xFF;
    EXPECT_EQ(log().rowCount(), 200u);
    EXPECT_EQ(ErrorOf([&] { database_.catalog.findTable(u"Missing"); }), Damage);
    EXPECT_EQ(ErrorOf([&] {
                  AppendTable(database_.catalog, {u"Other", {{u"Id", ColumnType::Long}}, {}, {}});
              }),
              Damage);
}

// Rows are never put on a page whose slots lead beyond it, or that belongs to another owner.
TEST_F(BoundsTest, NewRowsKeepOffDamagedPages) {
    const int slots = datapage::SlotCount(database_.pager.read(last_.page));
    Store16(edit(last_.page) + datapage::HeadLength + 2 * (slots - 1), 0x1FFF);
    const Bytes damaged = bytesOf(last_.page);
    Table table = log();
    for (std::int32_t i = 200; i < 220; ++i)
        EXPECT_NE(add(table, i).page, last_.page);
    EXPECT_EQ(bytesOf(last_.page), damaged);
    EXPECT_EQ(ErrorOf([&] { datapage::Replace(edit(last_.page), last_.page, 0, {}, 0); }), Damage);

    // The map of another table lists a page of this one: neither its rows nor its maps go there.
    AppendTable(database_.catalog, {u"Other", {{u"Id", ColumnType::Long}}, {}, {}});
    Table other = database_.catalog.table(u"Other");
    const RowPointer of{log().definition().ownedMap};
    const PageNumber own = UsageMap(database_.pager, of).next(0);
    UsageMap(database_.pager, other.definition().ownedMap).add(own);
    UsageMap(database_.pager, other.definition().freeMap).add(own);
    std::vector<Value> row{1};
    EXPECT_NE(other.insert(row).page, own);
    const Bytes sound = bytesOf(own);
    EXPECT_EQ(ErrorOf([&] { DropTable(database_.catalog, u"Other"); }), Damage);
    EXPECT_EQ(bytesOf(own), sound);
}

TEST_F(BoundsTest, LongValuesThatRunInACircleEnd) {
    Table table = log();
    const RowPointer at = add(table, 1000, 9000); // five pieces
    RowView row;
    ASSERT_TRUE(table.fetch(at, row));
    const RowPointer first = LoadRowPointer(row.bytes(table.definition().columns[2]).data() + 4);
    std::uint8_t* page = edit(first.page);
    StoreRowPointer(page + datapage::Find(page, first.page, first.row).offset, first);
    Value value;
    EXPECT_EQ(ErrorOf([&] {
                  RowView again;
                  ASSERT_TRUE(table.fetch(at, again));
                  table.value(again, 2, value);
              }),
              Damage);
    EXPECT_EQ(ErrorOf([&] { table.remove(at); }), Damage);
}

// Two leaves that lead to each other, the first of them unordered: 5, 1, 2, 5, ...
TEST_F(BoundsTest, WalksAlongAnIndexEnd) {
    using namespace indexpage;
    const IndexTree tree = log().index(0);
    UsageMap pages = tree.pages();
    const PageNumber other = database_.pager.allocate();
    pages.add(other);
    const auto write = [&](PageNumber page, std::initializer_list<std::uint8_t> keys) {
        Entries entries;
        for (const std::uint8_t key : keys)
            entries.add(EntryBuffer(Bytes{0x7F, 0x80, 0, 0, key}, {last_.page, key}).view());
        const PageNumber neighbour = page == other ? tree.root() : other;
        Format(edit(page), {.table = tree.table(), .previous = neighbour, .next = neighbour});
        WriteEntries(edit(page), entries, {0, entries.count()});
    };
    write(tree.root(), {5, 1});
    write(other, {2});
    for (const bool forward : {true, false}) {
        IndexCursor cursor(tree);
        int steps = 0;
        EXPECT_EQ(ErrorOf([&] {
                      for (bool more = forward ? cursor.first() : cursor.last(); more && steps < 100; ++steps)
                          more = forward ? cursor.next() : cursor.previous();
                  }),
                  Damage);
        EXPECT_LT(steps, 4);
    }
}

// A node with entries shorter than a row pointer overflows: the entries are refused, not cut.
TEST_F(BoundsTest, ShortEntriesAreNotSplit) {
    using namespace indexpage;
    const IndexTree tree = log().index(0);
    std::uint8_t* page = edit(tree.root());
    constexpr int mask = 0x1B;
    std::memset(page + mask, 0xFF, 453); // an entry ends at every byte
    Store16(page + 2, 0);                // and all are used
    Entries entries;
    EXPECT_EQ(ErrorOf([&] { ReadEntries(page, tree.root(), Prefix(page), Used(page), entries); }), Damage);
    EXPECT_EQ(Before(page, 0), Prefix(page));
    Table table = log();
    EXPECT_EQ(ErrorOf([&] { add(table, 5000); }), Damage);
}

} // namespace
