// Compaction in place: whichever disk call is the last one, or fails, there is one complete database under
// the name, and nothing is left beside it after it was opened again.
#include "jet/CompactInPlace.h"
#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/base/Convert.h"
#include "jet/pager/WriteAheadLog.h"
#include "jet/sql/Execute.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"

#include <gtest/gtest.h>

namespace jet::tests {
namespace {

const std::string Path = "/data/SONGS.MDB";
const std::string Backup = "/data/SONGS-0002.BAK";

std::string backupName(int number) {
    return "/data/SONGS-000" + std::to_string(number) + ".BAK";
}

std::string rowsOf(Storage& storage, const std::string& path) {
    std::string text;
    Database database = Database::open(storage, path);
    ExportRows(Filter(FindTable(database.catalog(), u"Songs"), std::nullopt), TextFormat::Csv,
               [&](std::string_view piece) { text += piece; });
    database.close();
    return text;
}

class SwapTest : public testing::TestWithParam<bool> {
protected:
    SwapTest() {
        Database database = Database::create(made_, Path);
        AppendTable(database.catalog(), {u"Songs", {{u"Id", ColumnType::Long}}, {}, {}});
        for (const char16_t* text : {u"INSERT INTO Songs VALUES (1)", u"INSERT INTO Songs VALUES (2)",
                                     u"DELETE FROM Songs WHERE Id = 1"})
            Execute(database.catalog(), text);
        database.close();
    }
    // A disk with the database and an older backup.
    void prepare(FaultyStorage& storage) const {
        storage.put(Path, made_.get(Path));
        storage.put(backupName(1), {1, 2, 3});
        storage.setLinks(GetParam());
    }
    static void compact(Storage& storage) {
        CompactInPlace(storage, Path, {"MDB12AB.TMP", backupName}, {}, [](const Fault&) {});
    }
    int callsOfOne() const {
        FaultyStorage storage;
        prepare(storage);
        compact(storage);
        const int calls = storage.calls();
        EXPECT_EQ(storage.names(), (std::vector<std::string>{backupName(1), Backup, Path}));
        EXPECT_EQ(storage.get(Backup), made_.get(Path));
        EXPECT_EQ(rowsOf(storage, Path), rows_);
        return calls;
    }
    // After an interruption: opening finds the database and cleans up.
    void expectWhole(FaultyStorage& storage) const {
        ASSERT_TRUE(storage.exists(Path));
        EXPECT_EQ(rowsOf(storage, Path), rows_);
        std::vector<std::string> names = storage.names();
        if (storage.exists(Backup)) {
            EXPECT_FALSE(storage.open(Backup, Storage::Open::ReadOnly)->isNow(Path));
            EXPECT_EQ(storage.get(Backup), made_.get(Path));
            std::erase(names, Backup);
        }
        EXPECT_EQ(names, (std::vector<std::string>{backupName(1), Path}));
        EXPECT_EQ(storage.get(backupName(1)), (FaultyStorage::Bytes{1, 2, 3}));
        // And it can be repeated.
        compact(storage);
        EXPECT_EQ(rowsOf(storage, Path), rows_);
    }

    FaultyStorage made_;
    const std::string rows_ = "Id\r\n2\r\n";
};

TEST_P(SwapTest, AtEveryCallThePowerGoes) {
    const int calls = callsOfOne();
    ASSERT_GT(calls, 10);
    for (int cut = 1; cut <= calls && !HasFailure(); ++cut)
        for (std::uint32_t loss = 0; loss < 8; ++loss) {
            SCOPED_TRACE("cut " + std::to_string(cut) + ", loss " + std::to_string(loss));
            FaultyStorage storage;
            prepare(storage);
            storage.cutAt(cut);
            try {
                compact(storage);
                EXPECT_EQ(cut, calls); // only the note may silently stay
            } catch (const Error&) {
                EXPECT_LT(cut, calls);
            }
            FaultyStorage after;
            storage.afterPowerCut(loss == 0   ? FaultyStorage::Loss::Everything
                                  : loss == 1 ? FaultyStorage::Loss::Nothing
                                              : FaultyStorage::Loss::Random,
                                  static_cast<std::uint32_t>(cut) * 100 + loss, after);
            expectWhole(after);
        }
}

TEST_P(SwapTest, AtEveryCallTheDiskFails) {
    const int calls = callsOfOne();
    for (const bool lasting : {false, true})
        for (int call = 1; call <= calls && !HasFailure(); ++call) {
            SCOPED_TRACE("call " + std::to_string(call) + (lasting ? " and later ones" : ""));
            FaultyStorage storage;
            prepare(storage);
            storage.failAt(call, ErrorNumber::DiskFull, lasting);
            bool done = true;
            try {
                compact(storage);
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorNumber::DiskFull);
                done = false;
            }
            storage.failAt(0, ErrorNumber::DiskFull, false);
            EXPECT_TRUE(done || storage.get(Path) == made_.get(Path));
            expectWhole(storage);
        }
}

TEST_P(SwapTest, NobodyElseGetsIn) {
    FaultyStorage storage;
    prepare(storage);
    int asked = 0;
    const auto askedMeanwhile = [&](int number) {
        for (const bool readOnly : {false, true}) {
            OpenOptions options;
            options.readOnly = readOnly;
            EXPECT_THROW(Database::open(storage, Path, options), Error);
        }
        ++asked;
        return backupName(number);
    };
    CompactInPlace(storage, Path, {"MDB12AB.TMP", askedMeanwhile}, {}, [](const Fault&) {});
    EXPECT_EQ(asked, 2); // the first name is taken
    Database other = Database::open(storage, Path);
    EXPECT_THROW(compact(storage), Error);
}

INSTANTIATE_TEST_SUITE_P(Disks, SwapTest, testing::Bool(), [](const auto& links) {
    return std::string(links.param ? "WithLinks" : "WithoutLinks");
});

} // namespace
} // namespace jet::tests
