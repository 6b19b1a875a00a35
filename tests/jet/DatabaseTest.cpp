// A database as programs open it, on the machine's own files.
#include "jet/Database.h"

#include "jet/NewDatabase.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace jet::tests {
namespace {

class DatabaseTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(folder_); }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    static int numberOf(ErrorNumber number) { return static_cast<int>(number); }
    static std::uint32_t insert(Database& database, std::int32_t id) {
        Table table = database.catalog().table(u"Numbers");
        std::vector<Value> values{id};
        table.insert(values);
        return table.rowCount();
    }
    static TableDesign numbers() { return {u"Numbers", {{u"Id", ColumnType::Long}}, {}, {}}; }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("jet-database-" + std::to_string(::getpid()));
    std::string path_ = folder_ / "USERS25.MDB";
};

TEST_F(DatabaseTest, IsMadeWholeAndNeverOverAnother) {
    Database::create(path_).close();
    EXPECT_EQ(std::filesystem::file_size(path_), 65536u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
    EXPECT_EQ(ErrorOf([&] { Database::create(path_); }), numberOf(ErrorNumber::DatabaseExists));
    EXPECT_EQ(ErrorOf([&] { Database::create(folder_ / "none" / "A.MDB"); }),
              numberOf(ErrorNumber::FileNotFound));
    std::filesystem::create_directory(folder_ / "B.MDB");
    EXPECT_EQ(ErrorOf([&] { Database::open(folder_ / "B.MDB"); }), numberOf(ErrorNumber::CannotOpenFile));
    std::ofstream(folder_ / "C.MDB") << "[Settings]\nnot a database\n";
    EXPECT_EQ(ErrorOf([&] { Database::open(folder_ / "C.MDB"); }), numberOf(ErrorNumber::Unrecognised));
}

TEST_F(DatabaseTest, IsMadeBesideFilesOfOthers) {
    const auto beside = folder_ / "USERS25-new.TMP";
    std::ofstream(beside) << "text of somebody";
    Database::create(path_).close();
    EXPECT_EQ(std::filesystem::file_size(beside), 16u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
    // The leavings of a dead maker are taken over.
    std::filesystem::rename(path_, beside);
    Database::create(path_).close();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
}

TEST_F(DatabaseTest, TransactionsNest) {
    Database database = Database::create(path_);
    AppendTable(database.catalog(), numbers());
    {
        Transaction outer(database);
        insert(database, 1);
        database.beginTransaction();
        EXPECT_EQ(insert(database, 2), 2u);
        AppendTable(database.catalog(), {u"More", {{u"Id", ColumnType::Long}}, {}, {}});
        database.rollback();
        EXPECT_EQ(insert(database, 3), 2u);
        {
            const Transaction forgotten(database);
            insert(database, 4);
        }
        EXPECT_EQ(ErrorOf([&] { AppendTable(database.catalog(), numbers()); }),
                  numberOf(ErrorNumber::TableExists));
        EXPECT_EQ(database.transactionDepth(), 1);
        outer.commit();
    }
    EXPECT_EQ(ErrorOf([&] { database.commit(); }), numberOf(ErrorNumber::InvalidArgument));
    EXPECT_EQ(ErrorOf([&] { database.rollback(); }), numberOf(ErrorNumber::InvalidArgument));
    database.close();
    database = Database::open(path_);
    EXPECT_EQ(database.catalog().table(u"Numbers").rowCount(), 2u);
    EXPECT_FALSE(database.catalog().findTable(u"More"));
}

} // namespace
} // namespace jet::tests
