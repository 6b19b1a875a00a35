// Files of the older format: read, checked, and compacted to files of the present one.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/NewDatabase.h"
#include "jet/jet3/Jet3Builder.h"
#include "jet/pager/Sharing.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"

#include <gtest/gtest.h>

#include <functional>

namespace jet::tests {
namespace {

constexpr char Path[] = "OLD.MDB";
constexpr char Target[] = "NEW.MDB";

class Jet3Test : public testing::Test {
protected:
    void store() { storage_.put(Path, built_.file); }
    static std::string rowsOf(Database& database, const char16_t* order) {
        std::string text;
        const Table table = database.catalog().table(u"Songs");
        const sql::Statement statement =
            sql::ParseStatement(std::u16string(u"SELECT * FROM Songs ORDER BY ") + order);
        ExportRows(Filter(table, std::get<sql::Select>(statement)), TextFormat::Csv,
                   [&](std::string_view piece) { text += piece; });
        return text.substr(text.find('\n') + 1);
    }
    static std::string faultsOf(Database& database, bool harmless) {
        std::string text;
        CheckDatabase(database, [&](const Fault& fault) {
            if (fault.harmless == harmless)
                text += std::to_string(fault.page) + ' ' + ToUtf8(fault.table) + ' ' + fault.reason + '\n';
        });
        return text;
    }

    Jet3Builder built_;
    FaultyStorage storage_;
};

TEST_F(Jet3Test, EveryKindOfRowAndValueIsRead) {
    store();
    Database database = Database::open(storage_, Path);
    EXPECT_EQ(rowsOf(database, u"Id"), "1,0,\"\",,0\r\n"
                                       "2,-1,caf\xC3\xA9 \xE2\x82\xAC,a row of its own,0\r\n"
                                       "3,1965,Yesterday,in row,1\r\n"
                                       "4,4,Four,,1\r\n"
                                       "9,9," +
                                           std::string(200, 'x') + Jet3Builder::LongTitle +
                                           ",piece by piece,1\r\n");
    EXPECT_EQ(faultsOf(database, false), "");
    EXPECT_EQ(faultsOf(database, true), "2  names the query 'Old songs', which is not taken over\n");
}

TEST_F(Jet3Test, TheFileIsForReading) {
    store();
    Database database = Database::open(storage_, Path);
    EXPECT_EQ(database.header().version, PageZero::Jet3);
    EXPECT_FALSE(database.readOnlyReason().empty());
    Table songs = database.catalog().table(u"Songs");
    RowPointer at;
    RowView row;
    ASSERT_TRUE(songs.next(at, row));
    const std::function<void()> changes[] = {[&] { database.beginTransaction(); }, [&] { songs.remove(at); },
                                             [&] { DropTable(database.catalog(), u"Songs"); }};
    for (const std::function<void()>& change : changes)
        EXPECT_EQ(tests::ErrorOf(change), 3027);
    database.flush();
    database.close();
    EXPECT_EQ(storage_.get(Path), built_.file);
}

TEST_F(Jet3Test, TheCheckTellsWhatCannotBeRead) {
    Store32(built_.at(Jet3Builder::Songs) + 0x0C, 7);
    Store16(built_.at(Jet3Builder::SongRows) + 10, 0x0FFF); // the first row's place
    built_.at(Jet3Builder::LongValues)[0] = 9;
    store();
    Database database = Database::open(storage_, Path);
    EXPECT_EQ(faultsOf(database, false), "5 Songs row 0 lies outside its place\n"
                                         "5 Songs row 1 lies outside its place\n"
                                         "7 Songs is no data page\n"
                                         "4 Songs says that the table has 7 rows instead of 3\n");
    // An unreadable value is null, and its row exists.
    EXPECT_EQ(rowsOf(database, u"Id").substr(0, 25), "1,0,\"\",,0\r\n4,4,Four,,1\r\n9");
}

// Rows whose notes share the same pieces, one of which leads back to itself, and an index without columns: a
// piece that is named often is read once.
TEST_F(Jet3Test, DamageDoesNotMakeAFileLarger) {
    std::uint8_t* pieces = built_.at(Jet3Builder::LongValues);
    const auto startOf = [&](int row) { return Load16(pieces + 10 + 2 * row) & 0x1FFFu; };
    Bytes note(12);
    Store32(note.data(), 1000);
    Store32(note.data() + 4, Jet3Builder::LongValues << 8 | 1);
    Store32(pieces + startOf(1), Jet3Builder::LongValues << 8 | 1);
    for (std::int32_t id = 20; id < 25; ++id)
        built_.addRow(Jet3Builder::MoreRows, Jet3Builder::song(id, 1, "Again", note, false));
    store();
    Database database = Database::open(storage_, Path);
    const std::string faults = faultsOf(database, false);
    EXPECT_NE(faults.find("7 Songs row 1 is part of two long values"), std::string::npos) << faults;
    EXPECT_NE(rowsOf(database, u"Id").find("24,1,Again,,0"), std::string::npos);
}

TEST_F(Jet3Test, CompactionMakesAFileOfThePresentFormat) {
    store();
    std::string lost;
    const CompactResult result =
        CompactDatabase(storage_, Path, Target, {}, [&](const Fault& loss) { lost += loss.reason + '\n'; });
    EXPECT_EQ(lost, "names the query 'Old songs', which is not taken over\n");
    EXPECT_EQ(result.losses, 1u);
    Database old = Database::open(storage_, Path);
    Database database = Database::open(storage_, Target);
    EXPECT_EQ(database.header().version, PageZero::Jet4);
    EXPECT_EQ(faultsOf(database, false), "");
    EXPECT_EQ(rowsOf(database, u"Id"), rowsOf(old, u"Id"));
    const TableDesign design = DescribeTable(database.catalog(), *database.catalog().findTable(u"Songs"));
    ASSERT_EQ(design.indexes.size(), 1u);
    EXPECT_TRUE(design.indexes[0].primary);
    EXPECT_EQ(design.fields[2].size, 255);
    AppendTable(database.catalog(), {u"After", {{u"Id", ColumnType::Long}}, {}, {}});

    // Not while a program with another engine has the file open.
    storage_.remove(Target);
    storage_.put("OLD.LDB", {});
    const auto lockFile = storage_.open("OLD.LDB", Storage::Open::ReadWrite);
    ASSERT_TRUE(lockFile->lock(0x10000001, 1, true, false));
    EXPECT_THROW(CompactDatabase(storage_, Path, Target, {}, [](const Fault&) {}), Error);
    EXPECT_FALSE(storage_.exists(Target));
}

} // namespace
} // namespace jet::tests
