// Whole tables and files: scan, export compared with mdb-export, compaction compared with a copy of the file,
// making a file, reading one setting, and the integrity check.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

using namespace jet;

namespace {

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

// Two tables, both called "Log" and with two indexes. Small: number, text, date and memo, like most tables of
// the suite. Wide: the 44 fields of an automation log.
enum class Kind { Small, Wide };

std::int32_t rowCount(Kind kind) {
    return kind == Kind::Small ? 200000 : 40000;
}

// The fields of a wide row after the first four, five kinds in turn.
constexpr int MoreFields = 40;
constexpr ColumnType moreKinds[] = {ColumnType::Long, ColumnType::Text, ColumnType::Integer,
                                    ColumnType::Boolean, ColumnType::Single};

TableDesign designOf(Kind kind) {
    TableDesign design{u"Log",
                       {{u"Id", ColumnType::Long},
                        {u"Title", ColumnType::Text, 50},
                        {u"Played", ColumnType::DateTime},
                        {u"Note", ColumnType::Memo}},
                       {{u"Main", {{u"Id"}}, true, true}, {u"ByTitle", {{u"Title"}}}},
                       {}};
    for (int i = 0; kind == Kind::Wide && i < MoreFields; ++i)
        design.fields.push_back({u"Field" + ToUtf16(std::to_string(i)), moreKinds[i % 5], 50});
    return design;
}

std::vector<Value> rowOf(Kind kind, std::int32_t i) {
    std::vector<Value> row{i, u"Some title " + ToUtf16(std::to_string(i * 7919 % rowCount(kind))),
                           Date{40000.0 + i / 86400.0}, std::u16string(u"A note of some length")};
    for (int more = 0; kind == Kind::Wide && more < MoreFields; more += 5)
        row.insert(row.end(), {i + more, std::u16string(u"Some words"), static_cast<std::int16_t>(more),
                               i % 2 == 0, static_cast<float>(i) / 2});
    return row;
}

// In one transaction.
void insertRows(Database& database, Kind kind) {
    Transaction transaction(database);
    Table table = database.catalog().table(u"Log");
    for (std::int32_t i = 0; i < rowCount(kind); ++i) {
        std::vector<Value> row = rowOf(kind, i);
        table.insert(row);
    }
    transaction.commit();
}

std::string makeFile(Kind kind, const char* name) {
    std::string file = inFolder(name);
    Database database = Database::create(file);
    AppendTable(database.catalog(), designOf(kind));
    insertRows(database, kind);
    database.close();
    return file;
}

const std::string& logFile(Kind kind = Kind::Small) {
    static const std::string small = makeFile(Kind::Small, "small.mdb");
    static const std::string wide = makeFile(Kind::Wide, "wide.mdb");
    return kind == Kind::Small ? small : wide;
}

void countRows(benchmark::State& state, Kind kind = Kind::Small) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * rowCount(kind));
}

void ScanTable(benchmark::State& state, Kind kind) {
    Database database = Database::open(logFile(kind));
    const Table table = database.catalog().table(u"Log");
    std::vector<Value> values;
    for (auto _ : state) {
        const Reading reading(database.pager()); // checks the locks once instead of once per row
        RowPointer at;
        for (RowView row; table.next(at, row);)
            table.values(row, values);
    }
    countRows(state, kind);
}
BENCHMARK_CAPTURE(ScanTable, Small, Kind::Small)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScanTable, Wide, Kind::Wide)->Unit(benchmark::kMillisecond);

void ScanWithCriterion(benchmark::State& state) {
    Database database = Database::open(logFile());
    const Table table = database.catalog().table(u"Log");
    const Filter filter(table, sql::ParsePredicate(u"Title LIKE '*99' AND Played > #1/1/2000#"));
    for (auto _ : state)
        benchmark::DoNotOptimize(filter.rows());
    countRows(state);
}
BENCHMARK(ScanWithCriterion)->Unit(benchmark::kMillisecond);

void selectAll(benchmark::State& state, const char16_t* sql) {
    Database database = Database::open(logFile());
    const Table table = database.catalog().table(u"Log");
    const auto select = std::get<sql::Select>(sql::ParseStatement(sql));
    const Filter filter(table, select);
    std::size_t rows = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(rows = filter.rows().size());
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * rows));
}
BENCHMARK_CAPTURE(selectAll, Sorted, u"SELECT * FROM Log ORDER BY Played DESC")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(selectAll, InIndexOrder, u"SELECT * FROM Log ORDER BY Title DESC")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(selectAll, BeginningLike, u"SELECT * FROM Log WHERE Title LIKE 'some title 12*'")
    ->Unit(benchmark::kMillisecond);

// Opens the file, too, like mdb-export below. Both write to /dev/null.
void ExportCsv(benchmark::State& state, Kind kind) {
    logFile(kind);
    for (auto _ : state) {
        OpenOptions options;
        options.readOnly = true;
        Database database = Database::open(logFile(kind), options);
        const Table table = database.catalog().table(u"Log");
        std::FILE* null = std::fopen("/dev/null", "w");
        ExportRows(Filter(table, std::nullopt), TextFormat::Csv,
                   [&](std::string_view text) { std::fwrite(text.data(), 1, text.size(), null); });
        std::fclose(null);
    }
    countRows(state, kind);
}
BENCHMARK_CAPTURE(ExportCsv, Small, Kind::Small)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ExportCsv, Wide, Kind::Wide)->Unit(benchmark::kMillisecond)->UseRealTime();

void ExportByMdbtools(benchmark::State& state, Kind kind) {
    const std::string command = "mdb-export " + logFile(kind) + " Log > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0)
            state.SkipWithError("mdb-export is not here");
    }
    countRows(state, kind);
}
BENCHMARK_CAPTURE(ExportByMdbtools, Small, Kind::Small)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ExportByMdbtools, Wide, Kind::Wide)->Unit(benchmark::kMillisecond)->UseRealTime();

void Compaction(benchmark::State& state, Kind kind) {
    logFile(kind);
    const std::string target = inFolder("compact.mdb");
    for (auto _ : state) {
        std::filesystem::remove(target);
        CompactDatabase(logFile(kind), target, {}, [](const Fault&) {});
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(logFile(kind))));
}
BENCHMARK_CAPTURE(Compaction, Small, Kind::Small)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Compaction, Wide, Kind::Wide)->Unit(benchmark::kMillisecond)->UseRealTime();

// A copy that is on the disk when it ends, like the compacted file.
void PlainCopy(benchmark::State& state, Kind kind) {
    const std::string target = inFolder("copy.mdb");
    const std::string command = "cp " + logFile(kind) + " " + target + " && sync " + target;
    for (auto _ : state) {
        std::filesystem::remove(target);
        if (std::system(command.c_str()) != 0)
            state.SkipWithError("no copy");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(logFile(kind))));
}
BENCHMARK_CAPTURE(PlainCopy, Small, Kind::Small)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(PlainCopy, Wide, Kind::Wide)->Unit(benchmark::kMillisecond)->UseRealTime();

// Changes to wide rows; bench_jet_index has those to small ones.
void InsertWide(benchmark::State& state) {
    const std::string path = inFolder("insert.mdb");
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        Database database = Database::create(path);
        AppendTable(database.catalog(), designOf(Kind::Wide));
        state.ResumeTiming();
        insertRows(database, Kind::Wide);
        state.PauseTiming();
        database.close();
        state.ResumeTiming();
    }
    countRows(state, Kind::Wide);
}
BENCHMARK(InsertWide)->Unit(benchmark::kMillisecond);

void SeekWide(benchmark::State& state) {
    Database database = Database::open(logFile(Kind::Wide), [] {
        OpenOptions options;
        options.exclusive = true;
        return options;
    }());
    Recordset set = Recordset::open(database, u"Log");
    set.setIndex(u"Main");
    std::int32_t id = 0;
    for (auto _ : state) {
        id = (id + 7919) % rowCount(Kind::Wide);
        set.seek(SeekComparison::Equal, Value(id));
        if (set.noMatch())
            state.SkipWithError("a row is missing");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(SeekWide);

void DeleteWide(benchmark::State& state) {
    const std::string path = inFolder("delete.mdb");
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::copy_file(logFile(Kind::Wide), path,
                                   std::filesystem::copy_options::overwrite_existing);
        Database database = Database::open(path);
        Recordset set = Recordset::open(database, u"Log");
        state.ResumeTiming();
        Transaction transaction(database);
        for (; !set.eof(); set.moveNext())
            set.remove();
        transaction.commit();
        state.PauseTiming();
        database.close();
        state.ResumeTiming();
    }
    countRows(state, Kind::Wide);
}
BENCHMARK(DeleteWide)->Unit(benchmark::kMillisecond);

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

// The start of every program of the suite: open, one look-up in a settings table, close.
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
        const Filter filter(table, sql::ParsePredicate(u"Item = 'Item 123'"));
        Value value;
        filter.forEach([&](RowPointer, const RowView& row) {
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
