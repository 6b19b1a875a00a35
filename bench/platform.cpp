// The cost of asking the machine: paths, records, replacing a file.
#include "platform/devices/WaveDevices.h"
#include "platform/files/Files.h"
#include "platform/host/HostFiles.h"
#include "platform/paths/DriveAsker.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThread>

#include <benchmark/benchmark.h>

using namespace tolvex::platform;

namespace {

// A machine folder with a data folder of `files` names in it.
class Machine {
public:
    explicit Machine(int files) {
        SetMachineFolder(folder_.path());
        QDir(HostPath("C:\\")).mkpath("Tolvex/System/Users");
        for (int i = 0; i < files; ++i)
            AppendToFile(QString("C:\\Tolvex\\System\\Users\\Name%1.Txt").arg(i), "x");
        AppendToFile("C:\\Tolvex\\System\\Users\\Users25.mdb", "x");
    }

private:
    QTemporaryDir folder_;
};

void resolve(benchmark::State& state, const QString& path) {
    const Machine machine(1000);
    HostPath(path);
    // A folder at rest, like nearly all of them: one that changed just now is listed each time.
    QThread::msleep(50);
    for (auto _ : state)
        benchmark::DoNotOptimize(HostPath(path));
}
void PathAsSpelled(benchmark::State& state) {
    resolve(state, "C:\\Tolvex\\System\\Users\\Users25.mdb");
}
void PathInAnotherCase(benchmark::State& state) {
    resolve(state, "C:\\TOLVEX\\SYSTEM\\USERS\\USERS25.MDB");
}
void PathOfAMissingFile(benchmark::State& state) {
    resolve(state, "C:\\Tolvex\\System\\Users\\MISSING.MDB");
}
BENCHMARK(PathAsSpelled);
BENCHMARK(PathInAnotherCase);
BENCHMARK(PathOfAMissingFile);

// A search of one drive, including its thread: 69 files, none of them existing.
void SearchADrive(benchmark::State& state) {
    const Machine machine(1000);
    QThread::msleep(50);
    QStringList files;
    for (int i = 0; i < 69; ++i)
        files += QString("C:\\Tolvex\\System\\Users\\Carts%1.LST").arg(i);
    const auto progress = prompts().beginProgress("Search", true);
    for (auto _ : state)
        benchmark::DoNotOptimize(DriveAsker().ask(files, FileSize, *progress));
}
BENCHMARK(SearchADrive)->Unit(benchmark::kMillisecond)->UseRealTime();

void SplitPathOnly(benchmark::State& state) {
    const QString path = "C:\\TOLVEX\\SYSTEM\\USERS\\USERS25.MDB";
    for (auto _ : state)
        benchmark::DoNotOptimize(SplitPath(path, {}));
}
BENCHMARK(SplitPathOnly);

// A whole wall: 11 list files of 300-byte records, 30 MB in all.
void EveryRecordOfAWall(benchmark::State& state) {
    const Machine machine(0);
    constexpr int length = 300;
    constexpr qint64 counts[] = {1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 90000};
    std::vector<std::unique_ptr<RecordFile>> files;
    qint64 total = 0;
    for (const qint64 count : counts) {
        files.push_back(RecordFile::open(QString("C:\\Carts%1.lst").arg(files.size() + 1), length, true));
        files.back()->append(QByteArray(length, 'x'), count);
        total += count;
    }
    char record[length];
    for (auto _ : state)
        for (size_t i = 0; i < files.size(); ++i)
            for (qint64 number = 1; number <= counts[i]; ++number)
                files[i]->read(number, record);
    state.SetItemsProcessed(state.iterations() * total);
}
BENCHMARK(EveryRecordOfAWall)->Unit(benchmark::kMillisecond);

void WriteARecord(benchmark::State& state) {
    const Machine machine(0);
    const auto file = RecordFile::open("C:\\Carts1.lst", 300, true);
    const QByteArray record(300, 'x');
    file->append(record, 1000);
    qint64 number = 0;
    for (auto _ : state)
        file->write(number++ % 1000 + 1, record.constData());
}
BENCHMARK(WriteARecord);

void ReplaceASmallFile(benchmark::State& state) {
    const Machine machine(0);
    const QByteArray bytes(20'000, 'x');
    for (auto _ : state)
        ReplaceWholeFile("C:\\WINDOWS\\TOLVEX.INI", bytes);
}
BENCHMARK(ReplaceASmallFile);

void AskForWaveDevices(benchmark::State& state) {
    const Machine machine(0);
    for (auto _ : state) {
        RefreshWaveDevices();
        benchmark::DoNotOptimize(WaveOutputs());
    }
}
BENCHMARK(AskForWaveDevices)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
