// Compaction keeps everything, rescues as much as possible from damaged files, and leaves either a complete
// new file or none.
#include "jet/Compact.h"

#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/SortedRows.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/sql/Execute.h"
#include "jet/table/OrderedRows.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet {
namespace {

using tests::FaultyStorage;

const std::string source = "a.mdb";
const std::string target = "b.mdb";

std::vector<Fault> compact(FaultyStorage& storage, CompactResult* result = nullptr) {
    std::vector<Fault> losses;
    const CompactResult told =
        CompactDatabase(storage, source, target, {}, [&](const Fault& loss) { losses.push_back(loss); });
    EXPECT_EQ(told.losses, losses.size());
    if (result != nullptr)
        *result = told;
    return losses;
}

std::string faultsOf(const Bytes& image) {
    MemoryPager pager(image);
    std::string text;
    CheckDatabase(pager, [&](const Fault& fault) {
        if (!fault.harmless)
            text += "page " + std::to_string(fault.page) + " " + fault.reason + "\n";
    });
    return text;
}

// Every table's rows as sorted lines.
std::map<std::u16string, std::vector<std::string>> rowsOf(const Bytes& image) {
    MemoryPager pager(image);
    const Catalog catalog(pager);
    std::map<std::u16string, std::vector<std::string>> all;
    for (const CatalogObject& object : catalog.objects()) {
        if (!object.isTable() || object.name.starts_with(u"MSysObjects") || object.name == u"MSysACEs")
            continue; // these hold the new pages
        all[object.name] = tests::SortedRows(catalog.table(object));
    }
    return all;
}

class CompactOwnTest : public ::testing::Test {
protected:
    CompactOwnTest() {
        Database database = Database::create(storage_, source);
        AppendTable(database.catalog(), {u"Log",
                                         {{u"Id", ColumnType::Long, 0, true},
                                          {u"Text", ColumnType::Text, 60},
                                          {u"Gone", ColumnType::Text, 60},
                                          {u"Note", ColumnType::Memo}},
                                         {{u"Main", {{u"Id", true}}, true, true},
                                          {u"ByText", {{u"Text"}}},
                                          {u"Unique", {{u"Text"}, {u"Id"}}, true}},
                                         {}});
        Transaction transaction(database);
        Table table = database.catalog().table(u"Log");
        for (int i = 0; i < 900; ++i) {
            std::vector<Value> row{Value{}, ToUtf16("text " + std::to_string(i % 10)),
                                   std::u16string(50, u'g'), std::u16string(i % 7 == 0 ? 9000 : 40, u'n')};
            table.insert(row);
        }
        Execute(database.catalog(), u"DELETE FROM Log WHERE Id > 800");
        Execute(database.catalog(), u"DELETE FROM Log WHERE Text = 'text 3'");
        transaction.commit();
        DropField(database.catalog(), u"Log", u"Gone");
        database.close();
        image_ = storage_.get(source);
    }
    TableDefinition definition(const Bytes& image) {
        MemoryPager pager(image);
        return Catalog(pager).table(u"Log").definition();
    }

    FaultyStorage storage_;
    Bytes image_;
};

TEST_F(CompactOwnTest, LeavesNothingOver) {
    ASSERT_EQ(faultsOf(image_), "");
    EXPECT_TRUE(compact(storage_).empty());
    const Bytes small = storage_.get(target);
    EXPECT_EQ(faultsOf(small), "");
    EXPECT_EQ(rowsOf(small), rowsOf(image_));
    MemoryPager pager(small);
    const Table table = Catalog(pager).table(u"Log");
    EXPECT_EQ(table.definition().lastAutonumber, 900u);
    RowPointer at;
    Value id;
    std::int32_t before = 1000;
    for (RowView row; table.next(at, row);) { // the primary key is descending
        table.value(row, 0, id);
        ASSERT_LT(std::get<std::int32_t>(id), before);
        before = std::get<std::int32_t>(id);
    }
    for (PageNumber page = 0; page < pager.pageCount(); ++page)
        ASSERT_FALSE(FreeMap(pager, {1, 0}).isFree(page));
    // Again: there is nothing left to gain.
    FaultyStorage again;
    again.put(source, small);
    compact(again);
    EXPECT_EQ(again.get(target).size(), small.size());
}

// However many rows are fetched at a time, and whether their entries were sorted in memory or not.
TEST_F(CompactOwnTest, RowsComeInTheOrderOfTheirKeys) {
    MemoryPager pager(image_);
    const Table table = Catalog(pager).table(u"Log");
    const Reading reading(pager);
    const KeyEncoder encoder(table.definition(),
                             table.definition().realIndexes[table.definition().findIndex(u"Unique")->real]);
    std::vector<std::pair<Bytes, RowPointer>> expected;
    Bytes key;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        encoder.encodeStored(pager, row, table.definition().columns, key);
        expected.emplace_back(key, at);
    }
    std::sort(expected.begin(), expected.end());
    for (const std::size_t memory : {1, 900, 20000, 1000000}) {
        ExternalSort entries(memory);
        for (const auto& [one, where] : expected)
            entries.add(one, where);
        entries.add(key, {99999, 0}); // missing
        entries.sort();
        OrderedRows rows(table, entries, memory);
        for (const auto& [one, where] : expected) {
            ASSERT_TRUE(rows.next());
            ASSERT_EQ(rows.at(), where);
            ASSERT_TRUE(std::equal(one.begin(), one.end(), rows.key().begin(), rows.key().end()));
            RowView row;
            ASSERT_TRUE(table.fetch(where, row));
            ASSERT_TRUE(std::equal(row.all().begin(), row.all().end(), rows.row().all().begin(),
                                   rows.row().all().end()));
        }
        EXPECT_FALSE(rows.next());
        EXPECT_FALSE(rows.next());
    }
}

// The disk fails at every call in turn, or the power fails: the source stays, and no partial file remains.
TEST_F(CompactOwnTest, FailsWhole) {
    FaultyStorage counted;
    counted.put(source, image_);
    const int before = counted.calls();
    compact(counted);
    const int calls = counted.calls() - before;
    ASSERT_GT(calls, 5);
    for (int call = 1; call <= calls; ++call) {
        FaultyStorage storage;
        storage.put(source, image_);
        storage.failAt(storage.calls() + call, ErrorNumber::DiskFull, false);
        try {
            compact(storage);
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorNumber::DiskFull);
            EXPECT_FALSE(storage.exists(target)) << call;
        }
        EXPECT_EQ(storage.get(source), image_);
        if (storage.exists(target)) {
            EXPECT_EQ(faultsOf(storage.get(target)), "") << call;
        }
    }
    counted.put(target, {1, 2, 3});
    EXPECT_THROW(compact(counted), Error);
    EXPECT_EQ(counted.get(target), (Bytes{1, 2, 3})) << "a file that was there is not ours";
}

TEST_F(CompactOwnTest, SavesWhatCanBeRead) {
    const TableDefinition log = definition(image_);
    MemoryPager pager(image_);
    const std::vector<PageNumber> rows = UsageMap(pager, log.ownedMap).pages();
    ASSERT_GT(rows.size(), 5u);
    const std::size_t all = rowsOf(image_)[u"Log"].size();

    // A page of rows is missing, an index is garbage, a memo points nowhere.
    Bytes damaged = image_;
    const auto at = [&](PageNumber page) { return damaged.data() + std::size_t{page} * PageSize; };
    const std::size_t lostRows = static_cast<std::size_t>(datapage::SlotCount(at(rows[1])));
    std::fill_n(at(rows[1]), PageSize, std::uint8_t{0xEE});
    std::fill_n(at(log.realIndexes[1].root), PageSize, std::uint8_t{0xEE});
    const PageNumber memos = UsageMap(pager, log.columns[2].ownedMap).pages().front();
    at(memos)[0] = 0;
    storage_.put(source, damaged);
    CompactResult result;
    const std::vector<Fault> losses = compact(storage_, &result);
    EXPECT_EQ(faultsOf(storage_.get(target)), "");
    const std::size_t saved = rowsOf(storage_.get(target))[u"Log"].size();
    EXPECT_LE(saved, all);
    EXPECT_GE(saved, all - lostRows);
    EXPECT_TRUE(std::any_of(losses.begin(), losses.end(),
                            [&](const Fault& loss) { return loss.page == rows[1] && loss.table == u"Log"; }));
    EXPECT_TRUE(std::any_of(losses.begin(), losses.end(), [&](const Fault& loss) {
        return loss.reason.find("lost its 'Note'") != std::string::npos;
    }));
}

// Rows are in order except some that took the place of others, which is discovered during the copy: the
// copied part is taken back, and damage is reported once.
TEST(CompactTest, BeginsAnewWhenRowsLieOutOfOrder) {
    FaultyStorage storage;
    Database database = Database::create(storage, source);
    AppendTable(database.catalog(),
                {u"Log",
                 {{u"Id", ColumnType::Long}, {u"Text", ColumnType::Text, 60}, {u"Note", ColumnType::Memo}},
                 {{u"Main", {{u"Id"}}, true, true}, {u"ByText", {{u"Text"}}}},
                 {}});
    const auto insert = [&](std::int32_t from, std::int32_t to) {
        Transaction transaction(database);
        Table table = database.catalog().table(u"Log");
        for (std::int32_t i = from; i < to; ++i) {
            std::vector<Value> row{i, ToUtf16("text " + std::to_string(i % 10)),
                                   std::u16string(i == 3 || i == 800 ? 9000 : 10, u'n')};
            table.insert(row);
        }
        transaction.commit();
    };
    insert(0, 1000);
    Execute(database.catalog(), u"DELETE FROM Log WHERE Id BETWEEN 105 AND 120");
    insert(5000, 5012);
    const Table table = database.catalog().table(u"Log");
    RowPointer at;
    Value id;
    std::vector<std::int32_t> ids;
    for (RowView row; table.next(at, row);) {
        table.value(row, 0, id);
        ids.push_back(std::get<std::int32_t>(id));
    }
    ASSERT_FALSE(std::is_sorted(ids.begin(), ids.end()));
    const std::vector<PageNumber> memos =
        UsageMap(database.pager(), table.definition().columns[2].ownedMap).pages();
    database.close();
    Bytes damaged = storage.get(source);
    for (const PageNumber page : memos)
        damaged[std::size_t{page} * PageSize] = 0;
    storage.put(source, damaged);

    EXPECT_EQ(compact(storage).size(), 2u);
    const Bytes made = storage.get(target);
    EXPECT_EQ(faultsOf(made), "");
    EXPECT_EQ(rowsOf(made)[u"Log"].size(), ids.size());
    MemoryPager pager(made);
    const Table compacted = Catalog(pager).table(u"Log");
    std::int32_t before = -1;
    RowPointer there;
    for (RowView row; compacted.next(there, row); before = std::get<std::int32_t>(id)) {
        compacted.value(row, 0, id);
        ASSERT_LT(before, std::get<std::int32_t>(id));
    }
    for (PageNumber page = 0; page < pager.pageCount(); ++page)
        EXPECT_FALSE(FreeMap(pager, {1, 0}).isFree(page)) << page;
}

// Duplicate keys are found after all rows have been copied: then everything starts again.
TEST_F(CompactOwnTest, LeavesOutRowsWithEqualKeys) {
    MemoryPager pager(image_);
    TableDefinition log = definition(image_);
    const auto byText = log.findIndex(u"ByText")->real;
    log.realIndexes[byText].flags |= RealIndex::Unique;
    WriteTableDefinition(pager, log);
    storage_.put(source, pager.image());
    CompactResult result;
    const std::size_t lost = compact(storage_, &result).size();
    const Bytes small = storage_.get(target);
    EXPECT_EQ(faultsOf(small), "");
    const auto rows = rowsOf(small)[u"Log"];
    EXPECT_EQ(rows.size(), 9u); // one for each text
    EXPECT_EQ(rows.size() + lost, rowsOf(image_)[u"Log"].size());
    for (const std::string& row : rows)
        EXPECT_EQ(std::count(rows.begin(), rows.end(), row), 1) << row;
}

TEST_F(CompactOwnTest, LosesATableWithoutDefinition) {
    Bytes damaged = image_;
    damaged[std::size_t{definition(image_).page} * PageSize] = 0;
    storage_.put(source, damaged);
    const std::vector<Fault> losses = compact(storage_);
    ASSERT_EQ(losses.size(), 1u);
    EXPECT_EQ(losses[0].table, u"Log");
    EXPECT_EQ(faultsOf(storage_.get(target)), "");
    MemoryPager pager(storage_.get(target));
    EXPECT_TRUE(Catalog(pager).tables().empty());
}

} // namespace
} // namespace jet
