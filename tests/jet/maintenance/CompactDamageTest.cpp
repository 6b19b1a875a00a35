// What compaction rescues from each kind of damage, and that nothing left out remains linked to the rest.
#include "jet/WholeDatabase.h"

#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/FaultyStorage.h"
#include "jet/base/Error.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"
#include "jet/pager/NewFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet::tests {
namespace {

class CompactDamageTest : public testing::Test {
protected:
    // Compacts the current content of source_; the new file has no fault.
    void compact() {
        tests::FaultyStorage storage;
        const auto file = storage.open("b.mdb", Storage::Open::CreateNew);
        NewFile target(*file, PageZero());
        CompactPages(source_, target,
                     [&](const Fault& loss) { losses_ += ToUtf8(loss.table) + ": " + loss.reason + "\n"; });
        target.finish();
        made_ = std::make_unique<MemoryPager>(storage.get("b.mdb"));
        CheckDatabase(*made_, [&](const Fault& fault) {
            EXPECT_TRUE(fault.harmless) << fault.page << ' ' << fault.reason << '\n' << losses_;
        });
    }
    Catalog made() const { return Catalog(*made_); }
    std::size_t rowsOf(const char16_t* table) const { return made().table(table).rowCount(); }
    bool isTold(const std::string& loss) const { return losses_.find(loss) != std::string::npos; }

    Catalog source() { return Catalog(source_); }
    CatalogObject object(const char16_t* table) { return source().findTable(table).value(); }
    std::uint8_t* page(PageNumber number) { return source_.edit(number); }
    // The bytes of a row in place.
    std::uint8_t* row(RowPointer at) {
        return page(at.page) + datapage::Find(source_.read(at.page), at.page, at.row).offset;
    }
    RowPointer firstRow(const char16_t* table) {
        RowPointer at;
        RowView view;
        EXPECT_TRUE(source().table(table).next(at, view));
        return at;
    }
    void redefine(const char16_t* table, const std::function<void(TableDefinition&)>& change) {
        TableDefinition definition = source().table(table).definition();
        change(definition);
        WriteTableDefinition(source_, definition);
    }
    static int column(const Table& table, const char16_t* name) {
        return table.definition().findColumn(name);
    }

    MemoryPager source_{WholeDatabase()};
    std::unique_ptr<MemoryPager> made_;
    std::string losses_;
};

TEST_F(CompactDamageTest, OfASoundFileNothingIsLost) {
    compact();
    EXPECT_EQ(losses_, "");
    EXPECT_EQ(made().relationships().size(), 1u);
    EXPECT_EQ(made().objects().size(), source().objects().size());
    EXPECT_EQ(made().table(u"Shows").definition().logicalIndexes.size(), 3u);
}

// A table that others refer to is lost: their side of the relationship is removed, with its rows, its object
// and all rights.
TEST_F(CompactDamageTest, ALostTableTakesItsRelationshipsAlong) {
    page(static_cast<PageNumber>(object(u"Shows").id))[0] = 0;
    compact();
    EXPECT_TRUE(isTold("Shows: names page"));
    EXPECT_TRUE(isTold("relationship 'ShowsCarts'"));
    EXPECT_TRUE(made().relationships().empty());
    EXPECT_EQ(made().objects().size(), source().objects().size() - 2);
    EXPECT_EQ(made().table(u"Carts").definition().findIndex(u"ShowsCarts"), nullptr);
    EXPECT_EQ(made().table(u"Carts").definition().realIndexes.size(), 2u);
    EXPECT_EQ(rowsOf(u"Carts"), source().table(u"Carts").rowCount());
    DropTable(*std::make_unique<Catalog>(*made_), u"Carts"); // nothing needs it any more
}

// One side has lost its reference to the other: the primary key that the relationship uses stays.
TEST_F(CompactDamageTest, HalfARelationshipEndsOnBothSides) {
    redefine(u"Carts", [](TableDefinition& in) {
        for (LogicalIndex& index : in.logicalIndexes)
            index.otherNumber += index.role == LogicalIndex::Role::None ? 0 : 7;
    });
    redefine(u"Log", [](TableDefinition& in) { in.logicalIndexes[1].role = LogicalIndex::Role::Referenced; });
    compact();
    EXPECT_TRUE(made().relationships().empty());
    EXPECT_EQ(made().table(u"Shows").definition().logicalIndexes.size(), 2u);
    ASSERT_NE(made().table(u"Shows").definition().primaryKey(), nullptr);
    EXPECT_EQ(made().table(u"Log").definition().logicalIndexes[1].role, LogicalIndex::Role::None);
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
}

// Bits of the list of pages are lost, or the list itself: the pages are identified by their heads, and freed
// ones do not count.
TEST_F(CompactDamageTest, PagesThatNoListNamesAreFound) {
    const std::uint32_t rows = source().table(u"Carts").rowCount();
    const RowPointer map = source().table(u"Carts").definition().ownedMap;
    UsageMap pages(source_, map);
    pages.remove(pages.pages().at(1));
    const RowPointer ofLog = source().table(u"Log").definition().ownedMap;
    row(ofLog)[0] = 9;
    const PageNumber freed = source_.allocate();
    std::copy_n(source_.read(firstRow(u"Shows").page), PageSize, page(freed));
    source_.release(freed);
    redefine(u"Shows", [](TableDefinition& in) { in.ownedMap.row = 200; });
    compact();
    EXPECT_EQ(losses_, "");
    EXPECT_EQ(rowsOf(u"Carts"), rows);
    EXPECT_EQ(rowsOf(u"Log"), 100u);
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
}

// The number of rows of a page is damaged: its free space determines it, on the catalogue's page as on
// others.
TEST_F(CompactDamageTest, RowsAreCountedByTheFreeSpace) {
    Store16(page(firstRow(u"Shows").page) + datapage::CountField, 3);
    Store16(page(firstRow(u"Log").page) + datapage::CountField, 255);
    Store16(page(object(u"Log").row.page) + datapage::CountField, 0x1A11);
    compact();
    EXPECT_EQ(losses_, "");
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
    EXPECT_EQ(rowsOf(u"Log"), 100u);
}

// A wrong bit makes a row look deleted: the counts of the tables reveal it. The table missing in the
// catalogue is found, and the missing rows are reported.
TEST_F(CompactDamageTest, RowsThatLookDeletedAreMissed) {
    const auto takeAway = [this](RowPointer at) {
        std::uint8_t* place = page(at.page) + datapage::CountField + 2 + 2 * std::size_t{at.row};
        Store16(place, static_cast<std::uint16_t>(Load16(place) | datapage::HiddenFlag));
    };
    takeAway(object(u"Log").row);
    takeAway(firstRow(u"Shows"));
    compact();
    EXPECT_TRUE(isTold("Shows: counts 12 rows, of which 11 are there"));
    EXPECT_TRUE(isTold("is the definition of a table without a name"));
    EXPECT_EQ(rowsOf(u"Shows"), 11u);
    EXPECT_EQ(rowsOf(u"Recovered"), 100u);
}

// A row of the catalogue is unreadable: its table is found and gets a name. One with a wrong number is found
// again.
TEST_F(CompactDamageTest, TablesThatNoObjectNamesAreFound) {
    Store16(row(object(u"Log").row), 0xFFFF); // the number of columns
    compact();
    EXPECT_TRUE(isTold("Recovered: is the definition of a table without a name"));
    EXPECT_EQ(rowsOf(u"Recovered"), 100u);
    EXPECT_EQ(rowsOf(u"Carts"), source().table(u"Carts").rowCount());
}

TEST_F(CompactDamageTest, ATableIsFoundByItsDefinition) {
    constexpr int idField = 2; // after the column count
    Store32(row(object(u"Log").row) + idField, 0x00FFFFFF);
    compact();
    EXPECT_EQ(rowsOf(u"Log"), 100u);
    constexpr int typeField = 10;
    Store16(row(object(u"Carts").row) + typeField, CatalogObject::QueryKind);
    compact();
    EXPECT_EQ(rowsOf(u"Carts"), 139u);
}

TEST_F(CompactDamageTest, TwoTablesOfANameAreBothKept) {
    const CatalogObject shows = object(u"Shows");
    const CatalogObject carts = object(u"Carts");
    const Table objects(source_, Catalog::ObjectsPage);
    RowView view;
    ASSERT_TRUE(objects.fetch(carts.row, view));
    const auto name =
        view.bytes(objects.definition().columns[static_cast<std::size_t>(column(objects, u"Name"))]);
    std::copy_n(u"shows", 5, reinterpret_cast<char16_t*>(const_cast<std::uint8_t*>(name.data())));
    compact();
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
    EXPECT_EQ(rowsOf(u"shows 2"), 139u);
}

// Standard objects and all rights are lost with a page: every object gets some again.
TEST_F(CompactDamageTest, StandardObjectsAndRightsComeBack) {
    const auto objects = source().objects();
    const auto container = std::find_if(objects.begin(), objects.end(), [](const CatalogObject& one) {
        return one.id == Catalog::TablesContainer;
    });
    row(container->row)[0] = 0xFF;
    row(container->row)[1] = 0xFF;
    page(UsageMap(source_, Table(source_, Catalog::PermissionsPage).definition().ownedMap).next(0))[0] = 0;
    compact();
    EXPECT_TRUE(made().findTable(u"Carts"));
    const Table rights(*made_, Catalog::PermissionsPage);
    std::map<std::int32_t, int> count;
    RowPointer at;
    Value id;
    for (RowView view; rights.next(at, view);) {
        rights.value(view, column(rights, u"ObjectId"), id);
        ++count[std::get<std::int32_t>(id)];
    }
    for (const CatalogObject& one : made().objects())
        EXPECT_GE(count[one.id], 1) << ToUtf8(one.name);
    EXPECT_EQ(count[made().findTable(u"Carts")->id], 2);
}

// A text that cannot be ordered keeps its place in the index, with its key from the old one; if that fails
// the index is left out, never the text.
TEST_F(CompactDamageTest, TextsWithoutAPlaceKeepTheirKeys) {
    const Table shows = source().table(u"Shows");
    const RowPointer at = firstRow(u"Shows");
    RowView view;
    ASSERT_TRUE(shows.fetch(at, view));
    const std::u16string text{0x4E00, 0x4E01, 0x4E02};
    const Column& title = shows.definition().columns[1];
    const auto bytes = view.bytes(title);
    ASSERT_EQ(bytes.size(), 8u); // compressed, of "Show 1"
    for (std::size_t i = 0; i < 4; ++i)
        Store16(const_cast<std::uint8_t*>(bytes.data()) + 2 * i, text[i % 3]);
    const Bytes damaged = source_.image();
    Bytes key;
    KeyEncoder(shows.definition(),
               shows.definition().realIndexes[shows.definition().findIndex(u"ByTitle")->real])
        .encodeLeading(std::array{Value(std::u16string(u"Show 1"))}, key);

    compact();
    EXPECT_EQ(losses_, "");
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
    const Table made = this->made().table(u"Shows");
    const LogicalIndex* index = made.definition().findIndex(u"ByTitle");
    ASSERT_NE(index, nullptr);
    EXPECT_TRUE(made.index(static_cast<int>(index->real)).contains(key));

    page(shows.definition().realIndexes[shows.definition().findIndex(u"ByTitle")->real].root)[0] = 0;
    compact();
    EXPECT_TRUE(isTold("lost index 'ByTitle'"));
    EXPECT_EQ(rowsOf(u"Shows"), 12u);
}

// The sort order of a column is unknown: the order of the old index is kept.
TEST_F(CompactDamageTest, AnIndexInAnotherOrderIsTakenOver) {
    redefine(u"Carts", [](TableDefinition& in) { in.columns[1].language = 0x041F; });
    const auto keysOf = [](const Table& table) {
        std::vector<Bytes> keys;
        IndexCursor cursor(table.index(static_cast<int>(table.definition().findIndex(u"ByLength")->real)));
        for (bool more = cursor.first(); more; more = cursor.next())
            keys.emplace_back(cursor.key().begin(), cursor.key().end());
        return keys;
    };
    const auto before = keysOf(source().table(u"Carts"));
    compact();
    EXPECT_EQ(losses_, "");
    EXPECT_EQ(keysOf(made().table(u"Carts")), before);
}

// The key of a row is null although the index requires a value: keeping the row is more important.
TEST_F(CompactDamageTest, RowsWithoutTheirKeyStay) {
    const Table log = source().table(u"Log");
    RowPointer at = firstRow(u"Log");
    RowView view;
    ASSERT_TRUE(log.fetch(at, view));
    row(at)[view.all().size() - 1] &= 0xFE; // no value in the first column
    compact();
    EXPECT_TRUE(isTold("which does not demand one any more"));
    EXPECT_EQ(rowsOf(u"Log"), 100u);
    EXPECT_TRUE(made().table(u"Log").definition().realIndexes[0].isUnique());
}

// Two rows share the pieces of a long value: one keeps it, and the new file is not larger because of that.
TEST_F(CompactDamageTest, PiecesOfLongValuesAreCopiedOnce) {
    const Table carts = source().table(u"Carts");
    const auto notes = static_cast<std::size_t>(column(carts, u"Notes"));
    std::vector<std::uint8_t*> definitions;
    RowPointer at;
    for (RowView view; carts.next(at, view);)
        if (const auto bytes = view.bytes(carts.definition().columns[notes]); bytes.size() == 12)
            definitions.push_back(const_cast<std::uint8_t*>(bytes.data()));
    ASSERT_GT(definitions.size(), 20u);
    const auto longest =
        std::max_element(definitions.begin(), definitions.end(), [](const auto* a, const auto* b) {
            return (Load32(a) & 0x3FFFFFFF) < (Load32(b) & 0x3FFFFFFF);
        });
    for (std::uint8_t* definition : definitions)
        if (definition != *longest)
            std::copy_n(*longest, 12, definition);
    compact();
    EXPECT_TRUE(isTold("is part of two long values"));
    EXPECT_EQ(rowsOf(u"Carts"), carts.rowCount());
    EXPECT_LT(made_->pageCount(), source_.pageCount());
}

// A column declares a size smaller than its values: it grows. A value that no column can hold is lost.
TEST_F(CompactDamageTest, ColumnsGrowToTheirValues) {
    redefine(u"Carts", [](TableDefinition& in) { in.columns[1].size = 10; });
    redefine(u"Shows", [](TableDefinition& in) { in.columns[1].size = 0; });
    compact();
    EXPECT_TRUE(isTold("column 'Title' holds 10 bytes, but values have up to"));
    EXPECT_EQ(made().table(u"Carts").definition().columns[1].size, 190);
    EXPECT_EQ(made().table(u"Shows").definition().columns[1].size, 510);
}

// Two columns with one place in the row, in a table that dropped one: neither is reliable, the rest is.
TEST_F(CompactDamageTest, ColumnsInOnePlaceAreLeftOut) {
    redefine(u"Carts", [](TableDefinition& in) {
        in.columns[static_cast<std::size_t>(in.findColumn(u"Price"))].fixedOffset =
            in.columns[static_cast<std::size_t>(in.findColumn(u"Length"))].fixedOffset;
    });
    compact();
    EXPECT_TRUE(isTold("lost column 'Price', which has the place of another in the row"));
    EXPECT_TRUE(isTold("lost index 'ByLength', which names a column that is not there"));
    EXPECT_EQ(rowsOf(u"Carts"), 139u);
    EXPECT_EQ(made().table(u"Carts").definition().columns.size(), 6u);
}

} // namespace
} // namespace jet::tests
