// The cost of the stores: reading a key of an unchanged ini file, loading and saving a workstation's worth of
// keys, and sizes that no station has.
#include "platform/host/HostFiles.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileDocument.h"
#include "platform/profile/ProfileFile.h"
#include "platform/registry/RegistryStore.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <sys/time.h>

using namespace tolvex::platform;

namespace {

const QString ini = QStringLiteral("C:\\TOLVEX.INI");

// A local ini file with three full hardware cards: 3 x 100 lines of 10 keys.
QByteArray workstation() {
    QByteArray text;
    for (int card = 1; card <= 3; ++card) {
        text += "[Hardware" + QByteArray::number(card) + "]\r\n";
        for (int line = 1; line <= 100; ++line)
            for (int key = 0; key < 10; ++key)
                text += "Action" + QByteArray::number(line) + "Data" + QByteArray::number(key) + "=12345\r\n";
    }
    return text;
}

// A machine folder whose ini file was last changed long ago, as files usually are.
struct Machine {
    explicit Machine(const QByteArray& bytes) {
        SetMachineFolder(folder.path());
        ReplaceHostFile(HostPath(ini), bytes);
        settle();
    }
    static void settle() {
        const timeval times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        ::utimes(HostName(HostPath(ini)).constData(), times);
    }
    QTemporaryDir folder;
};

void ReadKeyOfUnchangedFile(benchmark::State& state) {
    const Machine machine(workstation());
    for (auto _ : state)
        benchmark::DoNotOptimize(ProfileInteger("Hardware3", "Action100Data9", 0, ini));
}
BENCHMARK(ReadKeyOfUnchangedFile);

// Within seconds of a change the bytes are compared as well.
void ReadKeyOfFreshFile(benchmark::State& state) {
    const Machine machine(workstation());
    ::utimes(HostName(HostPath(ini)).constData(), nullptr);
    for (auto _ : state)
        benchmark::DoNotOptimize(ProfileInteger("Hardware3", "Action100Data9", 0, ini));
}
BENCHMARK(ReadKeyOfFreshFile);

void ParseWorkstation(benchmark::State& state) {
    const QByteArray bytes = workstation();
    for (auto _ : state)
        benchmark::DoNotOptimize(ProfileDocument(bytes).valid());
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(ParseWorkstation);

// The whole table as one group: one lock, one replacement, two flushes.
void SaveThreeThousandKeys(benchmark::State& state) {
    const Machine machine(workstation());
    int round = 0;
    for (auto _ : state) {
        ProfileBatch batch(ini);
        ++round;
        for (int card = 1; card <= 3; ++card)
            for (int line = 1; line <= 100; ++line)
                for (int key = 0; key < 10; ++key)
                    batch.put(QStringLiteral("Hardware%1").arg(card),
                              QStringLiteral("Action%1Data%2").arg(line).arg(key), round);
        batch.commit();
    }
}
BENCHMARK(SaveThreeThousandKeys)->Unit(benchmark::kMillisecond);

void SaveOneKey(benchmark::State& state) {
    const Machine machine(workstation());
    int round = 0;
    for (auto _ : state)
        WriteProfileText("Hardware1", "Action1Data1", QString::number(++round), ini);
}
BENCHMARK(SaveOneKey)->Unit(benchmark::kMicrosecond);

void ParseFiftyMegabytes(benchmark::State& state) {
    const QByteArray bytes = "[s]\r\n" + QByteArray("some key name=some value\r\n").repeated(2'000'000);
    for (auto _ : state)
        benchmark::DoNotOptimize(ProfileDocument(bytes).valid());
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(ParseFiftyMegabytes)->Unit(benchmark::kMillisecond);

// By the argument: keys in one section, added one after the other in one group.
void PutNewKeys(benchmark::State& state) {
    for (auto _ : state) {
        ProfileDocument document;
        for (int i = 0; i < state.range(0); ++i)
            document.set("s", QString::number(i), "value");
        benchmark::DoNotOptimize(document.bytes());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PutNewKeys)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void ReadRegistryValue(benchmark::State& state) {
    const Machine machine({});
    RegistryWrite(LocalMachineHive, "Software\\Norvane\\Tolvex v2", "Users", {RegistryType::Text, "C:\\U"});
    for (auto _ : state)
        benchmark::DoNotOptimize(RegistryRead(LocalMachineHive, "SOFTWARE\\Norvane\\Tolvex v2", "Users"));
}
BENCHMARK(ReadRegistryValue);

void WriteRegistryValue(benchmark::State& state) {
    const Machine machine({});
    int round = 0;
    for (auto _ : state)
        RegistryWrite(LocalMachineHive, "Software\\Norvane\\Tolvex v2", "Users",
                      {RegistryType::Text, QByteArray::number(++round)});
}
BENCHMARK(WriteRegistryValue)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
