// The cost of automatic configuration: making everything on an empty machine, finding everything already
// made, and the search for an existing system.
#include "console/AutoConfiguration.h"
#include "console/SearchDrives.h"
#include "platform/paths/Paths.h"
#include "station/LoadSettings.h"
#include "station/Workstation.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <optional>

using namespace tolvex;

namespace {

// A start of the program.
void begin(std::optional<Workstation>& station, const QTemporaryDir& folder) {
    platform::SetMachineFolder(folder.path());
    LoadLocalSettings(station.emplace());
}

void InstallOnAnEmptyMachine(benchmark::State& state) {
    std::optional<Workstation> station;
    for (auto _ : state) {
        state.PauseTiming();
        const QTemporaryDir folder;
        begin(station, folder);
        state.ResumeTiming();
        DefaultLocalInstall(*station);
        state.PauseTiming();
        station.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(InstallOnAnEmptyMachine)->Unit(benchmark::kMillisecond);

void InstallAgain(benchmark::State& state) {
    std::optional<Workstation> station;
    const QTemporaryDir folder;
    begin(station, folder);
    for (auto _ : state)
        DefaultLocalInstall(*station);
}
BENCHMARK(InstallAgain)->Unit(benchmark::kMillisecond);

void Search(benchmark::State& state) {
    std::optional<Workstation> station;
    const QTemporaryDir folder;
    begin(station, folder);
    for (int drive = 0; drive < state.range(0); ++drive)
        QDir(folder.path()).mkpath(QStringLiteral("dosdevices/%1:").arg(QChar(u'd' + drive)));
    platform::SetMachineFolder(folder.path());
    for (auto _ : state)
        benchmark::DoNotOptimize(SearchDrives(false));
}
BENCHMARK(Search)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
