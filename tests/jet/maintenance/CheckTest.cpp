// The integrity check: our files have no faults, and each kind of damage is found in its place.
#include "jet/Check.h"

#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"
#include "jet/pager/MemoryPager.h"
#include "jet/sql/Execute.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace jet {
namespace {

std::vector<Fault> faultsOf(Pager& pager) {
    std::vector<Fault> faults;
    CheckDatabase(pager, [&](const Fault& fault) {
        if (!fault.harmless)
            faults.push_back(fault);
    });
    return faults;
}

std::string describe(const std::vector<Fault>& faults) {
    std::string text;
    for (const Fault& fault : faults)
        text +=
            "page " + std::to_string(fault.page) + " [" + ToUtf8(fault.table) + "] " + fault.reason + "\n";
    return text;
}

// A database with a table of everything that can go wrong: indexes of two levels, moved rows, memos of all
// three forms, deleted rows.
class DamageTest : public ::testing::Test {
protected:
    DamageTest() {
        AppendTable(catalog_, {u"Log",
                               {{u"Id", ColumnType::Long},
                                {u"Text", ColumnType::Text, 100},
                                {u"Note", ColumnType::Memo},
                                {u"When", ColumnType::DateTime}},
                               {{u"Main", {{u"Id"}}, true, true}, {u"ByText", {{u"Text"}}}},
                               {}});
        Table table = catalog_.table(u"Log");
        for (std::int32_t i = 0; i < 2000; ++i) {
            const std::size_t length = i == 7 ? 9000 : i % 3 == 0 ? 500 : 5;
            std::vector<Value> row{i, ToUtf16("text " + std::to_string(i)), std::u16string(length, u'é'),
                                   Date{1}};
            table.insert(row);
        }
        Execute(catalog_, u"UPDATE Log SET Text = '" + std::u16string(90, u'x') + u"' WHERE Id = 3");
        Execute(catalog_, u"DELETE FROM Log WHERE Id BETWEEN 100 AND 110");
        definition_ = catalog_.table(u"Log").definition();
        rows_ = UsageMap(pager_, definition_.ownedMap).pages();
        const Column& note = definition_.columns[static_cast<std::size_t>(definition_.findColumn(u"Note"))];
        longPages_ = UsageMap(pager_, note.ownedMap).pages();
    }
    std::uint8_t* edit(PageNumber page) { return pager_.edit(page); }
    // The slot of a page that has these flags.
    int slotWith(PageNumber page, bool hidden, bool pointer) {
        for (int row = 0; row < datapage::SlotCount(pager_.read(page)); ++row) {
            const auto slot = datapage::Find(pager_.read(page), page, row);
            if (slot.hidden == hidden && slot.pointer == pointer)
                return row;
        }
        return -1;
    }
    void expectFault(PageNumber page, const std::string& reason) {
        const std::vector<Fault> faults = faultsOf(pager_);
        const bool found = std::any_of(faults.begin(), faults.end(), [&](const Fault& fault) {
            return fault.page == page && fault.reason.find(reason) != std::string::npos;
        });
        EXPECT_TRUE(found) << "expected page " << page << ": " << reason << "\ngot:\n" << describe(faults);
    }
    PageNumber mainRoot() const { return definition_.realIndexes[definition_.findIndex(u"Main")->real].root; }

    MemoryPager pager_{FreshDatabase(LocalTime())};
    Catalog catalog_{pager_};
    TableDefinition definition_;
    std::vector<PageNumber> rows_;
    std::vector<PageNumber> longPages_;
};

TEST_F(DamageTest, SoundBefore) {
    EXPECT_EQ(describe(faultsOf(pager_)), "");
    ASSERT_GT(rows_.size(), 5u);
    ASSERT_GT(longPages_.size(), 5u);
    EXPECT_EQ(pager_.read(mainRoot())[0], 3) << "two levels are wanted";
}

TEST_F(DamageTest, FreeBytes) {
    edit(rows_[1])[2] ^= 1;
    expectFault(rows_[1], "free bytes");
}

TEST_F(DamageTest, PageOfAnotherKind) {
    edit(rows_[1])[0] = 9;
    expectFault(rows_[1], "is no data page");
    expectFault(rows_[1], "is none, but index 'Main' has an entry for it");
}

TEST_F(DamageTest, SlotBeyondThePage) {
    Store16(edit(rows_[2]) + 14 + 2 * 3, 0x0FFF);
    expectFault(rows_[2], "lies outside its place");
}

TEST_F(DamageTest, ChangedKey) {
    const auto slot = datapage::Find(pager_.read(rows_[1]), rows_[1], 0);
    edit(rows_[1])[slot.offset + 2] ^= 0x40;
    expectFault(rows_[1], "row 0 has another key than its entry in index 'Main'");
    expectFault(rows_[1], "row 0 has no entry in index 'Main'");
}

TEST_F(DamageTest, RowOutOfBounds) {
    const auto slot = datapage::Find(pager_.read(rows_[1]), rows_[1], 1);
    Store16(edit(rows_[1]) + slot.offset, 200); // columns
    expectFault(rows_[1], "");
}

TEST_F(DamageTest, MovedRowWithoutPointer) {
    PageNumber page = 0;
    int pointer = -1;
    for (std::size_t i = 0; i < rows_.size() && pointer < 0; ++i)
        pointer = slotWith(page = rows_[i], false, true);
    ASSERT_GE(pointer, 0);
    const auto slot = datapage::Find(pager_.read(page), page, pointer);
    const RowPointer target = LoadRowPointer(pager_.read(page) + slot.offset);
    edit(page)[slot.offset] = 254;
    expectFault(page, "points to no row");
    expectFault(target.page, "no row points to it");
}

TEST_F(DamageTest, LongValues) {
    PageNumber chain = 0;
    for (const PageNumber page : longPages_) {
        if (Load32(pager_.read(page) + 8) != 0)
            chain = page;
    }
    ASSERT_NE(chain, 0u);
    const auto slot = datapage::Find(pager_.read(chain), chain, 0);
    StoreRowPointer(edit(chain) + slot.offset, {chain, 0}); // a loop
    expectFault(chain, "is part of two of the long values of column 'Note'");
    StoreRowPointer(edit(chain) + slot.offset, {rows_[0], 0});
    expectFault(rows_[0], "not listed among them");
    StoreRowPointer(edit(chain) + slot.offset, {});
    expectFault(rows_[0], "bytes long but says 18000");
}

TEST_F(DamageTest, FreePageInUse) {
    // Bit of a row page in the map of free pages (row 0 of page 1).
    const auto slot = datapage::Find(pager_.read(1), 1, 0);
    edit(1)[slot.offset + 5 + rows_[1] / 8] |= static_cast<std::uint8_t>(1 << rows_[1] % 8);
    expectFault(rows_[1], "is listed as free but belongs to the rows of table 'Log'");
}

TEST_F(DamageTest, PageOfTwoOwners) {
    UsageMap(pager_, definition_.ownedMap).add(longPages_[0]);
    expectFault(longPages_[0], "belongs to the rows");
    UsageMap(pager_, definition_.ownedMap).remove(longPages_[0]);
    UsageMap(pager_, definition_.freeMap).add(longPages_[0]);
    expectFault(longPages_[0], "is listed as having room");
    UsageMap(pager_, definition_.freeMap).remove(longPages_[0]);
    UsageMap(pager_, definition_.ownedMap).add(400);
    expectFault(400, "lies outside the file");
}

TEST_F(DamageTest, Index) {
    edit(mainRoot())[0x1E0 + 1] ^= 0x10; // in the key of the first separator
    expectFault(mainRoot(), "is not the last one of its child");
}

TEST_F(DamageTest, Counters) {
    TableCounters::addRows(pager_, definition_.page, 1);
    expectFault(definition_.page, "instead of 1989");
}

// Each plants one fault in the definition, the rows or the catalogue, and says what must be found.
struct Planted {
    const char* name;
    std::function<void(Pager&, TableDefinition&)> plant;
    std::u16string_view table; // whose definition page has the fault
    const char* reason;
};

class PlantedTest : public DamageTest, public ::testing::WithParamInterface<Planted> {};

TEST_P(PlantedTest, IsFound) {
    TableDefinition definition = definition_;
    GetParam().plant(pager_, definition);
    expectFault(GetParam().table.empty() ? 0 : definition_.page, GetParam().reason);
}

// Writes the changed definition back.
std::function<void(Pager&, TableDefinition&)> changed(const std::function<void(TableDefinition&)>& change) {
    return [change](Pager& pager, TableDefinition& definition) {
        definition.rowCount = TableCounters::rowCount(pager, definition.page);
        change(definition);
        WriteTableDefinition(pager, definition);
    };
}

INSTANTIATE_TEST_SUITE_P(
    Faults, PlantedTest,
    ::testing::Values(
        Planted{"FreeBytes", [](Pager& pager, TableDefinition& in) { pager.edit(in.page)[2] ^= 1; }, u"Log",
                "free bytes instead of"},
        Planted{"Length", [](Pager& pager, TableDefinition& in) { pager.edit(in.page)[8] += 4; }, u"Log",
                "says that the table definition has"},
        Planted{"SecondByte", [](Pager& pager, TableDefinition& in) { pager.edit(in.page)[1] = 0; }, u"Log",
                "as its second byte"},
        Planted{"TwoColumnsOfAName", changed([](TableDefinition& in) { in.columns[1].name = u"WHEN"; }),
                u"Log", "has two columns of the name"},
        Planted{"TwoIndexesOfAName",
                changed([](TableDefinition& in) { in.logicalIndexes[0].name = in.logicalIndexes[1].name; }),
                u"Log", "has two indexes of the name 'Main'"},
        Planted{"SizeOfATextColumn", changed([](TableDefinition& in) { in.columns[1].size = 600; }), u"Log",
                "a size of 600 bytes"},
        Planted{"SharedPlace",
                changed([](TableDefinition& in) { in.columns[3].fixedOffset = in.columns[0].fixedOffset; }),
                u"Log", "the place of another in the row"},
        Planted{"RelationshipOfOneSide", changed([](TableDefinition& in) {
                    in.logicalIndexes[0].role = LogicalIndex::Role::Referencing;
                    in.logicalIndexes[0].otherTable = 2;
                    in.logicalIndexes[0].otherNumber = 0;
                }),
                u"Log", "that the table of page 2 does not have"},
        Planted{"PageOfTheCatalogue",
                [](Pager& pager, TableDefinition&) {
                    PageZero header = DecodePageZero({pager.read(0), PageSize});
                    header.permissions = 7;
                    EncodePageZero(header, {pager.edit(0), PageSize});
                },
                u"", "names page 7 as the definition of MSysACEs instead of page 3"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(DamageTest, TextLongerThanItsColumn) {
    definition_.rowCount = TableCounters::rowCount(pager_, definition_.page);
    definition_.columns[1].size = 100;
    WriteTableDefinition(pager_, definition_);
    const std::vector<Fault> faults = faultsOf(pager_);
    ASSERT_EQ(faults.size(), 1u) << describe(faults);
    EXPECT_NE(faults[0].reason.find("holds more in column 'Text' than its size"), std::string::npos);
}

TEST_F(DamageTest, Catalogue) {
    const CatalogObject object = *catalog_.findTable(u"Log");
    edit(definition_.page)[0] = 1;
    expectFault(definition_.page, "is no table definition");
    edit(definition_.page)[0] = 2;
    const Table objects = catalog_.table(u"MSysObjects");
    Table(pager_, Catalog::ObjectsPage).remove(object.row);
    RowPointer relationships;
    for (const CatalogObject& one : catalog_.objects())
        if (one.id == Catalog::RelationshipsContainer)
            relationships = one.row;
    const FieldChange parent{objects.definition().findColumn(u"ParentId"), Value(std::int32_t{99})};
    Table(pager_, Catalog::ObjectsPage).update(relationships, {&parent, 1});
    expectFault(relationships.page, "'Relationships', which belongs to an object that is not there");
    const std::vector<Fault> faults = faultsOf(pager_);
    EXPECT_TRUE(std::any_of(faults.begin(), faults.end(), [](const Fault& fault) {
        return fault.table == u"MSysACEs" && fault.reason.find("not there") != std::string::npos;
    })) << describe(faults);
}

} // namespace
} // namespace jet
