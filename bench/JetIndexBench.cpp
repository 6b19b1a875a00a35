// Index trees alone, on pages in memory, then rows with their index entries in a file: inserts, seeks, edits
// and deletes.
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/index/ExternalSort.h"
#include "jet/index/IndexBuilder.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/pager/MemoryPager.h"
#include "jet/table/TableDesign.h"
#include "jet/text/Collation.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <optional>

using namespace jet;

namespace {

// A permutation: any number to a different one.
std::uint32_t scattered(std::uint32_t number) {
    return number * 2654435761u;
}

// A Long column's key, or a Text column's of about 14 letters.
void makeKey(bool text, std::uint32_t number, Bytes& key) {
    key.clear();
    if (text) {
        std::u16string name = u"Some title ";
        for (std::uint32_t rest = number; rest != 0; rest /= 26)
            name += static_cast<char16_t>(u'a' + rest % 26);
        AppendKey(ColumnType::Text, true, name, key);
    } else {
        AppendKey(ColumnType::Long, true, static_cast<std::int32_t>(number), key);
    }
}

struct Tree {
    MemoryPager pager{3};
    IndexTree tree;

    Tree()
        : tree(makeTree(pager)) {
        tree.create();
    }
    static IndexTree makeTree(Pager& pager) {
        datapage::Format(pager.edit(1), 0);
        datapage::Add(pager.edit(1), Bytes(UsageMapRowLength, 0));
        return {pager, 2, 9, UsageMap(pager, {1, 0})};
    }
};

RowPointer rowOf(std::uint32_t number) {
    return {100 + number / 200, static_cast<std::uint8_t>(number % 200)};
}

void insertEntries(benchmark::State& state, bool text, bool ascending) {
    const auto count = static_cast<std::uint32_t>(state.range(0));
    std::vector<Bytes> keys(count);
    for (std::uint32_t i = 0; i < count; ++i)
        makeKey(text, ascending ? i : scattered(i), keys[i]);
    for (auto _ : state) {
        state.PauseTiming();
        auto tree = std::make_unique<Tree>();
        state.ResumeTiming();
        for (std::uint32_t i = 0; i < count; ++i)
            tree->tree.insert(keys[i], rowOf(i));
        state.PauseTiming();
        tree.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}

// A tree of a million entries, made once.
Tree& millionEntries(bool text) {
    static std::unique_ptr<Tree> trees[2];
    std::unique_ptr<Tree>& tree = trees[text];
    if (tree == nullptr) {
        tree = std::make_unique<Tree>();
        Bytes key;
        for (std::uint32_t i = 0; i < 1000000; ++i) {
            makeKey(text, scattered(i), key);
            tree->tree.insert(key, rowOf(i));
        }
    }
    return *tree;
}

void seek(benchmark::State& state, bool text) {
    Tree& tree = millionEntries(text);
    IndexCursor cursor(tree.tree);
    Bytes key;
    std::uint32_t number = 0;
    for (auto _ : state) {
        makeKey(text, scattered(number = (number + 7919) % 1000000), key);
        if (!cursor.seekFrom(key) || !cursor.matches(key))
            state.SkipWithError("an entry is missing");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void walk(benchmark::State& state, bool forward) {
    Tree& tree = millionEntries(false);
    IndexCursor cursor(tree.tree);
    bool more = forward ? cursor.first() : cursor.last();
    for (auto _ : state) {
        if (!more)
            more = forward ? cursor.first() : cursor.last();
        else
            more = forward ? cursor.next() : cursor.previous();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void removeAndInsert(benchmark::State& state) {
    Tree& tree = millionEntries(true);
    Bytes key;
    std::uint32_t number = 0;
    for (auto _ : state) {
        number = (number + 7919) % 1000000;
        makeKey(true, scattered(number), key);
        tree.tree.remove(key, rowOf(number));
        tree.tree.insert(key, rowOf(number));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

// Sorting and building, in memory and through a file.
void build(benchmark::State& state, std::size_t memory) {
    constexpr std::uint32_t count = 1000000;
    for (auto _ : state) {
        Tree tree;
        ExternalSort entries(memory);
        Bytes key;
        for (std::uint32_t i = 0; i < count; ++i) {
            makeKey(false, scattered(i), key);
            entries.add(key, rowOf(i));
        }
        entries.sort();
        IndexBuilder builder(tree.tree);
        while (entries.next())
            builder.add(entries.entry());
        builder.finish();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}

void textKey(benchmark::State& state) {
    const std::u16string text = u"The quick brown fox jumps over the dog";
    Bytes key;
    for (auto _ : state) {
        key.clear();
        AppendTextKey(text, key);
        benchmark::DoNotOptimize(key.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size() * 2));
}

void compareTexts(benchmark::State& state) {
    const std::u16string a = u"The quick brown fox jumps over the dog";
    const std::u16string b = u"THE QUICK BROWN FOX JUMPS OVER THE CAT";
    for (auto _ : state)
        benchmark::DoNotOptimize(CompareTexts(a, b));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * a.size() * 2));
}

// A file of one table with two indexes: a Long key, Text(50), DateTime and a Memo.
class File {
public:
    explicit File(std::size_t cachePages = 4096)
        : path_(std::filesystem::temp_directory_path() / "tolvex-bench-rows.mdb") {
        std::filesystem::remove(path_);
        OpenOptions options;
        options.exclusive = true;
        options.cachePages = cachePages;
        database_ = std::make_unique<Database>(Database::create(path_.string(), options));
        TableDesign design;
        design.name = u"Songs";
        const std::pair<const char16_t*, ColumnType> fields[] = {{u"Id", ColumnType::Long},
                                                                 {u"Title", ColumnType::Text},
                                                                 {u"Played", ColumnType::DateTime},
                                                                 {u"Note", ColumnType::Memo}};
        for (const auto& [name, type] : fields) {
            FieldDesign field;
            field.name = name;
            field.type = type;
            field.size = 50;
            field.allowZeroLength = true;
            design.fields.push_back(field);
        }
        design.indexes = {{.name = u"Main", .fields = {{u"Id"}}, .unique = true, .primary = true},
                          {.name = u"ByTitle", .fields = {{u"Title"}}}};
        AppendTable(database_->catalog(), design);
    }
    ~File() {
        database_.reset();
        std::filesystem::remove(path_);
    }
    Database& operator*() { return *database_; }
    Database* operator->() { return database_.get(); }

    void insert(Table& table, std::uint32_t from, std::uint32_t to) {
        values_.resize(4);
        for (std::uint32_t i = from; i < to; ++i) {
            values_[0] = static_cast<std::int32_t>(scattered(i));
            auto* title = std::get_if<std::u16string>(&values_[1]);
            if (title == nullptr)
                title = &values_[1].emplace<std::u16string>();
            *title = u"Some title ";
            for (std::uint32_t rest = scattered(i); rest != 0; rest /= 26)
                *title += static_cast<char16_t>(u'a' + rest % 26);
            values_[2] = Date{40000 + i / 1000.0};
            if (!std::holds_alternative<std::u16string>(values_[3]))
                values_[3] = u"Played at the request of a listener";
            table.insert(values_);
        }
    }

private:
    std::filesystem::path path_;
    std::unique_ptr<Database> database_;
    std::vector<Value> values_;
};

void insertRows(benchmark::State& state) {
    const auto count = static_cast<std::uint32_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto file = std::make_unique<File>();
        Table table = (*file)->catalog().table(u"Songs");
        state.ResumeTiming();
        Transaction transaction(**file);
        file->insert(table, 0, count);
        transaction.commit();
        state.PauseTiming();
        file.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}

// A table of a million rows in a file that fits in the page cache, made once.
File& millionRows() {
    static std::unique_ptr<File> file;
    if (file == nullptr) {
        file = std::make_unique<File>(100000);
        Table table = (*file)->catalog().table(u"Songs");
        for (std::uint32_t i = 0; i < 1000000; i += 20000) {
            Transaction transaction(**file);
            file->insert(table, i, i + 20000);
            transaction.commit();
        }
    }
    return *file;
}

void seekRows(benchmark::State& state, bool read) {
    Recordset set = Recordset::open(*millionRows(), u"Songs");
    set.setIndex(u"Main");
    std::uint32_t number = 0;
    for (auto _ : state) {
        set.seek(SeekComparison::Equal, Value(static_cast<std::int32_t>(scattered(number))));
        number = (number + 7919) % 1000000;
        if (set.noMatch() || (read && IsNull(set.value(1))))
            state.SkipWithError("a row is missing");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

// Reads the first field of row after row, again and again.
void walk(benchmark::State& state, Recordset& set) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(set.value(0));
        set.moveNext();
        if (set.eof())
            set.moveFirst();
    }
}

void walkRows(benchmark::State& state, const char16_t* index) {
    Recordset set = Recordset::open(*millionRows(), u"Songs");
    set.setIndex(index);
    walk(state, set);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

// The same in a file that others may use, too: alone, and within one Reading.
void walkShared(benchmark::State& state, bool withinReading) {
    const auto path = std::filesystem::temp_directory_path() / "tolvex-bench-shared.mdb";
    std::filesystem::remove(path);
    {
        Database database = Database::create(path.string());
        AppendTable(database.catalog(), {u"Songs", {{u"Id", ColumnType::Long}}, {}, {}});
        Table table = database.catalog().table(u"Songs");
        Transaction transaction(database);
        for (std::int32_t i = 0; i < 10000; ++i) {
            std::vector<Value> row{i};
            table.insert(row);
        }
        transaction.commit();
        Recordset set = Recordset::open(database, u"Songs");
        std::optional<Reading> reading;
        if (withinReading)
            reading.emplace(database.pager());
        walk(state, set);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
    std::filesystem::remove(path);
}

void editRows(benchmark::State& state) {
    File& file = millionRows();
    Recordset set = Recordset::open(*file, u"Songs");
    set.setIndex(u"Main");
    std::uint32_t number = 0;
    auto transaction = std::make_unique<Transaction>(*file);
    for (auto _ : state) {
        set.seek(SeekComparison::Equal, Value(static_cast<std::int32_t>(scattered(number))));
        number = (number + 7919) % 1000000;
        set.edit();
        set.set(2, Date{1.0 + number});
        set.update();
    }
    transaction->commit();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void removeRows(benchmark::State& state) {
    constexpr std::uint32_t count = 100000;
    for (auto _ : state) {
        state.PauseTiming();
        auto file = std::make_unique<File>();
        Table table = (*file)->catalog().table(u"Songs");
        {
            Transaction transaction(**file);
            file->insert(table, 0, count);
            transaction.commit();
        }
        Recordset set = Recordset::open(**file, u"Songs");
        set.setIndex(u"ByTitle");
        state.ResumeTiming();
        Transaction transaction(**file);
        for (; !set.eof(); set.moveNext())
            set.remove();
        transaction.commit();
        state.PauseTiming();
        file.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}

BENCHMARK_CAPTURE(insertEntries, LongAscending, false, true)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(insertEntries, LongScattered, false, false)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(insertEntries, TextScattered, true, false)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(seek, Long, false);
BENCHMARK_CAPTURE(seek, Text, true);
BENCHMARK_CAPTURE(walk, Forward, true);
BENCHMARK_CAPTURE(walk, Backward, false);
BENCHMARK(removeAndInsert);
BENCHMARK_CAPTURE(build, InMemory, ExternalSort::DefaultMemory)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, InRuns, std::size_t{4} << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(textKey);
BENCHMARK(compareTexts);
BENCHMARK(insertRows)->Arg(20000)->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(seekRows, Find, false);
BENCHMARK_CAPTURE(seekRows, FindAndRead, true);
BENCHMARK_CAPTURE(walkRows, ByPage, u"");
BENCHMARK_CAPTURE(walkRows, ById, u"Main");
BENCHMARK_CAPTURE(walkShared, RowByRow, false);
BENCHMARK_CAPTURE(walkShared, WithinReading, true);
BENCHMARK(editRows);
BENCHMARK(removeRows)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
