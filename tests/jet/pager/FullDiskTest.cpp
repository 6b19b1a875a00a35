// A disk that fills up in the middle of work, simulated by the system's limit on file sizes: every call that
// needs room fails with a clear error, and nothing is lost.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/Database.h"
#include "jet/pager/WriteAheadLog.h"
#include "jet/table/TableDesign.h"
#include "support/NoRoom.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace jet::tests {
namespace {

using tolvex::tests::NoRoom;

Bytes contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

class FullDiskTest : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(folder_);
        Database database = Database::create(path_);
        AppendTable(database.catalog(),
                    {u"Log",
                     {{u"Id", ColumnType::Long, 0, true}, {u"Note", ColumnType::Memo}},
                     {{.name = u"Main", .fields = {{u"Id"}}, .unique = true, .primary = true}},
                     {}});
        addRows(database, 50);
        database.close();
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    Database open() const {
        OpenOptions options;
        options.cachePages = 256;
        return Database::open(path_, options);
    }
    static void addRows(Database& database, int count) {
        Transaction transaction(database);
        Table table = database.catalog().table(u"Log");
        for (int i = 0; i < count; ++i) {
            std::vector<Value> row{Value{}, std::u16string(600, u'\u20AC')};
            table.insert(row);
        }
        transaction.commit();
    }
    static void expectRows(Database& database, std::uint64_t rows) {
        const CheckResult result = CheckDatabase(database, [](const Fault& fault) {
            if (!fault.harmless)
                ADD_FAILURE() << "page " << fault.page << ": " << fault.reason;
        });
        EXPECT_EQ(database.catalog().table(u"Log").rowCount(), rows);
        EXPECT_EQ(result.faults, 0u);
    }
    template<typename Call>
    static void expectFull(Call call) {
        try {
            call();
            ADD_FAILURE() << "there was room";
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorNumber::DiskFull) << error.what();
            EXPECT_NE(std::string(error.what()).find("There is not enough space on the disk"),
                      std::string::npos);
        }
    }
    std::uintmax_t size() const { return std::filesystem::file_size(path_); }
    std::string log() const { return WriteAheadLog::PathFor(path_); }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("jet-full-" + std::to_string(::getpid()));
    std::string path_ = folder_ / "LOG.MDB";
};

TEST_F(FullDiskTest, ATransactionThatDoesNotFitLeavesNothing) {
    Database database = open();
    std::uint64_t rows = 50;
    for (const int count : {200, 2000}) { // at the end, and when the cache is full
        {
            const NoRoom room(200000);
            expectFull([&] { addRows(database, count); });
            expectRows(database, rows);
            addRows(database, 1); // which fits
            expectRows(database, ++rows);
        }
        addRows(database, count);
        rows += static_cast<std::uint64_t>(count);
        database.flush();
    }
    database.close();
    Database again = open();
    expectRows(again, rows);
}

TEST_F(FullDiskTest, WhatFindsNoRoomInTheFileStaysInTheLog) {
    Database database = open();
    addRows(database, 300);
    {
        const NoRoom room(size());
        expectFull([&] { database.flush(); });
        expectRows(database, 350);
        expectFull([&] { database.close(); });
        Database again = open();
        expectRows(again, 350);
        expectFull([&] { again.close(); });
    }
    EXPECT_TRUE(std::filesystem::exists(log()));
    Database last = open();
    expectRows(last, 350);
    last.close();
    EXPECT_FALSE(std::filesystem::exists(log()));
}

TEST_F(FullDiskTest, ACompactionOrANewFileIsThereWholeOrNotAtAll) {
    const Bytes before = contentsOf(path_);
    const std::string target = folder_ / "NEW.MDB";
    for (const std::uintmax_t bytes : {std::uintmax_t{0}, std::uintmax_t{30000}, size() - 8192}) {
        const NoRoom room(bytes);
        expectFull([&] { CompactDatabase(path_, target, {}, [](const Fault&) {}); });
        if (bytes <= 30000)
            expectFull([&] { Database::create(target); });
        EXPECT_FALSE(std::filesystem::exists(target));
    }
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
        names.push_back(entry.path().filename());
    EXPECT_EQ(names, std::vector<std::string>{"LOG.MDB"});
    EXPECT_EQ(contentsOf(path_), before);
}

} // namespace
} // namespace jet::tests
