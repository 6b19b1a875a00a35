// The cost of the database engine's lowest layers alone: reading cached pages, transactions, brackets in a
// shared file, opening.
#include "jet/Database.h"
#include "jet/table/TableDesign.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <unistd.h>

using namespace jet;

namespace {

// A database with a table and some thousand pages.
class Storage : public benchmark::Fixture {
public:
    static constexpr PageNumber Pages = 3000;

    void SetUp(benchmark::State&) override {
        std::filesystem::create_directories(folder_);
        OpenOptions options;
        options.exclusive = true;
        Database database = Database::create(path_, options);
        AppendTable(database.catalog(), {u"Settings",
                                         {{u"Key", ColumnType::Text, 50}, {u"Value", ColumnType::Text, 255}},
                                         {{.name = u"Main", .fields = {{u"Key"}}, .unique = true}},
                                         {}});
        std::vector<Value> values{std::u16string(u"Volume"), std::u16string(u"11")};
        database.catalog().table(u"Settings").insert(values);
        Transaction transaction(database);
        for (PageNumber page = 0; page < Pages; ++page)
            first_ = std::min(first_, database.pager().allocate());
        transaction.commit();
    }
    void TearDown(benchmark::State&) override { std::filesystem::remove_all(folder_); }

protected:
    Database open(bool exclusive) const {
        OpenOptions options;
        options.exclusive = exclusive;
        return Database::open(path_, options);
    }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("jet-storage-bench-" + std::to_string(::getpid()));
    std::string path_ = folder_ / "BENCH.MDB";
    PageNumber first_ = ~0u;
};

BENCHMARK_F(Storage, ReadWarmPage)(benchmark::State& state) {
    Database database = open(true);
    Pager& pager = database.pager();
    PageNumber page = 0;
    for (auto _ : state) {
        page = (page + 1009) % Pages;
        benchmark::DoNotOptimize(*pager.read(first_ + page));
    }
}

BENCHMARK_F(Storage, EditPageInTransaction)(benchmark::State& state) {
    Database database = open(true);
    Pager& pager = database.pager();
    const Transaction transaction(database);
    PageNumber page = 0;
    for (auto _ : state) {
        page = (page + 1) % 100;
        Changing change(pager);
        pager.edit(first_ + page)[page] = 1;
        change.commit();
    }
}

void readOperation(benchmark::State& state, Database database, PageNumber page) {
    for (auto _ : state) {
        const Reading reading(database.pager());
        benchmark::DoNotOptimize(*database.pager().read(page));
    }
}
BENCHMARK_F(Storage, ReadOperationExclusive)(benchmark::State& state) {
    readOperation(state, open(true), first_);
}
BENCHMARK_F(Storage, ReadOperationShared)(benchmark::State& state) {
    readOperation(state, open(false), first_);
}

// Changes four pages, like adding a row.
void commitFour(benchmark::State& state, Database database, PageNumber first, bool flush) {
    for (auto _ : state) {
        Changing change(database.pager());
        for (PageNumber page = 0; page < 4; ++page)
            ++database.pager().edit(first + page)[0];
        change.commit();
        if (flush)
            database.flush();
    }
}
BENCHMARK_F(Storage, CommitExclusive)(benchmark::State& state) {
    commitFour(state, open(true), first_, false);
}
BENCHMARK_F(Storage, CommitShared)(benchmark::State& state) {
    commitFour(state, open(false), first_, false);
}
BENCHMARK_F(Storage, CommitAndFlush)(benchmark::State& state) {
    commitFour(state, open(true), first_, true);
}

BENCHMARK_F(Storage, OpenReadOneSettingClose)(benchmark::State& state) {
    for (auto _ : state) {
        Database database = open(false);
        const Table table = database.catalog().table(u"Settings");
        RowPointer at;
        RowView row;
        Value value;
        if (table.next(at, row))
            table.value(row, 1, value);
        benchmark::DoNotOptimize(value);
        database.close();
    }
}

} // namespace

BENCHMARK_MAIN();
