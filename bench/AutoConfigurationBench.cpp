// What automatic configuration costs: everything made on an empty machine, everything found made already, and
// the search for an existing system.
#include "console/AutoConfiguration.h"
#include "console/LoadSettings.h"
#include "console/SearchDrives.h"
#include "databases/users/UsersDatabase.h"
#include "network/TerminalList.h"
#include "platform/paths/Paths.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

void begin(const QTemporaryDir& folder) {
    platform::SetMachineFolder(folder.path());
    ResetSettings();
    LoadLocalSettings();
}

void end() {
    ResetUsersState();
    ResetTerminalList();
}

void InstallOnAnEmptyMachine(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        const QTemporaryDir folder;
        begin(folder);
        state.ResumeTiming();
        DefaultLocalInstall();
        state.PauseTiming();
        end();
        state.ResumeTiming();
    }
}
BENCHMARK(InstallOnAnEmptyMachine)->Unit(benchmark::kMillisecond);

void InstallAgain(benchmark::State& state) {
    const QTemporaryDir folder;
    begin(folder);
    for (auto _ : state)
        DefaultLocalInstall();
    end();
}
BENCHMARK(InstallAgain)->Unit(benchmark::kMillisecond);

void Search(benchmark::State& state) {
    const QTemporaryDir folder;
    begin(folder);
    for (int drive = 0; drive < state.range(0); ++drive)
        QDir(folder.path()).mkpath(QStringLiteral("dosdevices/%1:").arg(QChar(u'd' + drive)));
    platform::SetMachineFolder(folder.path());
    for (auto _ : state)
        benchmark::DoNotOptimize(SearchDrives(false));
}
BENCHMARK(Search)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
