// Whole tables and files: scan, export beside mdb-export, compaction beside a copy of the file, making a
// file, reading one setting, and the integrity check.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/Database.h"
#include "jet/TableDesign.h"
#include "jet/Transfer.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

using namespace jet;

namespace {

constexpr std::int32_t rowCount = 200000;

const std::filesystem::path& folder() {
    static const auto path = [] {
        auto made = std::filesystem::temp_directory_path() / ("tolvex-bench-" + std::to_string(getpid()));
        std::filesystem::create_directories(made);
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return made;
    }();
    return path;
}

std::string inFolder(const char* name) {
    return (folder() / name).string();
}

// Number, text, date and memo with two indexes: what most tables of the suite look like.
const std::string& logFile() {
    static const std::string path = [] {
        std::string file = inFolder("log.mdb");
        Database database = Database::create(file);
        AppendTable(database.catalog(), {u"Log",
                                         {{u"Id", ColumnType::Long},
                                          {u"Title", ColumnType::Text, 50},
                                          {u"Played", ColumnType::DateTime},
                                          {u"Note", ColumnType::Memo}},
                                         {{u"Main", {{u"Id"}}, true, true}, {u"ByTitle", {{u"Title"}}}},
                                         {}});
        Transaction transaction(database);
        Table table = database.catalog().table(u"Log");
        for (std::int32_t i = 0; i < rowCount; ++i) {
            std::vector<Value> row{i, u"Some title " + ToUtf16(std::to_string(i * 7919 % rowCount)),
                                   Date{40000.0 + i / 86400.0}, std::u16string(u"A note of some length")};
            table.insert(row);
        }
        transaction.commit();
        database.close();
        return file;
    }();
    return path;
}

void countRows(benchmark::State& state) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * rowCount);
}

void ScanTable(benchmark::State& state) {
    Database database = Database::open(logFile());
    const Table table = database.catalog().table(u"Log");
    std::vector<Value> values;
    for (auto _ : state) {
        const Reading reading(database.pager()); // one look at the locks instead of one a row
        RowPointer at;
        for (RowView row; table.next(at, row);)
            table.values(row, values);
    }
    countRows(state);
}
BENCHMARK(ScanTable)->Unit(benchmark::kMillisecond);

void ScanWithCriterion(benchmark::State& state) {
    Database database = Database::open(logFile());
    const Table table = database.catalog().table(u"Log");
    const Selection selection(table, sql::ParseCriterion(u"Title LIKE '*99' AND Played > #1/1/2000#"));
    for (auto _ : state)
        benchmark::DoNotOptimize(selection.rows());
    countRows(state);
}
BENCHMARK(ScanWithCriterion)->Unit(benchmark::kMillisecond);

void selectAll(benchmark::State& state, const char16_t* sql) {
    Database database = Database::open(logFile());
    const Table table = database.catalog().table(u"Log");
    const auto select = std::get<sql::Select>(sql::ParseStatement(sql));
    const Selection selection(table, select);
    std::size_t rows = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(rows = selection.rows().size());
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * rows));
}
BENCHMARK_CAPTURE(selectAll, Sorted, u"SELECT * FROM Log ORDER BY Played DESC")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(selectAll, InIndexOrder, u"SELECT * FROM Log ORDER BY Title DESC")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(selectAll, BeginningLike, u"SELECT * FROM Log WHERE Title LIKE 'some title 12*'")
    ->Unit(benchmark::kMillisecond);

// Opens the file, too, as mdb-export below does. Both write to /dev/null.
void ExportCsv(benchmark::State& state) {
    logFile();
    for (auto _ : state) {
        OpenOptions options;
        options.readOnly = true;
        Database database = Database::open(logFile(), options);
        const Table table = database.catalog().table(u"Log");
        std::FILE* null = std::fopen("/dev/null", "w");
        ExportRows(Selection(table, std::nullopt), TextFormat::Csv,
                   [&](std::string_view text) { std::fwrite(text.data(), 1, text.size(), null); });
        std::fclose(null);
    }
    countRows(state);
}
BENCHMARK(ExportCsv)->Unit(benchmark::kMillisecond)->UseRealTime();

void ExportByMdbtools(benchmark::State& state) {
    const std::string command = "mdb-export " + logFile() + " Log > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0)
            state.SkipWithError("mdb-export is not here");
    }
    countRows(state);
}
BENCHMARK(ExportByMdbtools)->Unit(benchmark::kMillisecond)->UseRealTime();

void Compaction(benchmark::State& state) {
    logFile();
    const std::string target = inFolder("compact.mdb");
    for (auto _ : state) {
        std::filesystem::remove(target);
        CompactDatabase(logFile(), target, {}, [](const Fault&) {});
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(logFile())));
}
BENCHMARK(Compaction)->Unit(benchmark::kMillisecond)->UseRealTime();

// A copy that is on the disk when it is done, as the compacted file is.
void PlainCopy(benchmark::State& state) {
    const std::string target = inFolder("copy.mdb");
    const std::string command = "cp " + logFile() + " " + target + " && sync " + target;
    for (auto _ : state) {
        std::filesystem::remove(target);
        if (std::system(command.c_str()) != 0)
            state.SkipWithError("no copy");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(logFile())));
}
BENCHMARK(PlainCopy)->Unit(benchmark::kMillisecond)->UseRealTime();

void CheckFile(benchmark::State& state) {
    Database database = Database::open(logFile());
    for (auto _ : state)
        benchmark::DoNotOptimize(CheckDatabase(database.pager(), [](const Fault&) {}));
    countRows(state);
}
BENCHMARK(CheckFile)->Unit(benchmark::kMillisecond);

void CreateAndOpen(benchmark::State& state) {
    const std::string path = inFolder("new.mdb");
    for (auto _ : state) {
        Database::create(path).close();
        std::filesystem::remove(path);
    }
}
BENCHMARK(CreateAndOpen)->Unit(benchmark::kMicrosecond)->UseRealTime();

// What every program of the suite does at its start: open, one look-up in a settings table, close.
void ReadOneSetting(benchmark::State& state) {
    const std::string path = inFolder("settings.mdb");
    {
        std::filesystem::remove(path);
        Database database = Database::create(path);
        AppendTable(database.catalog(), {u"Settings",
                                         {{u"Item", ColumnType::Text, 250}, {u"Value", ColumnType::Memo}},
                                         {{u"Main", {{u"Item"}}, true}},
                                         {}});
        Table table = database.catalog().table(u"Settings");
        Transaction transaction(database);
        for (int i = 0; i < 200; ++i) {
            std::vector<Value> row{u"Item " + ToUtf16(std::to_string(i)), std::u16string(u"value")};
            table.insert(row);
        }
        transaction.commit();
        database.close();
    }
    for (auto _ : state) {
        OpenOptions options;
        options.readOnly = true;
        Database database = Database::open(path, options);
        const Table table = database.catalog().table(u"Settings");
        const Selection selection(table, sql::ParseCriterion(u"Item = 'Item 123'"));
        Value value;
        selection.forEach([&](RowPointer, const RowView& row) {
            table.value(row, 1, value);
            return false;
        });
        if (!std::holds_alternative<std::u16string>(value))
            state.SkipWithError("the setting was not found");
    }
}
BENCHMARK(ReadOneSetting)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
