// Loading all settings of a workstation from a full ini file, and saving them: what happens at each start and
// at each OK of a form.
#include "QuietFile.h"

#include "core/exchange/SettingsDocument.h"
#include "core/settings/SaveLocalSettings.h"
#include "core/settings/SettingsLoader.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileFile.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

const QString ini = QStringLiteral("TOLVEX.INI");

void loadLocal() {
    for (const SettingGroup& group : AllSettings())
        if (group.file == SettingsFile::Local) {
            LoadRows(group.rows, {ini});
            SizeJumpCartButtons();
        }
}

class Workstation : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        platform::SetMachineFolder(folder_.path());
        ResetSettings();
        loadLocal();
        SaveLocalSettings(ini);
        // The other programs' keys.
        platform::ProfileBatch batch(ini);
        for (int line = 1; line <= 1000; ++line)
            batch.put(QStringLiteral("Hardware%1").arg(line % 3 + 1), QStringLiteral("LineType%1").arg(line),
                      line);
        batch.commit();
        MakeQuiet(ini);
    }

private:
    QTemporaryDir folder_;
};

} // namespace

BENCHMARK_F(Workstation, LoadLocalRows)(benchmark::State& state) {
    for (auto _ : state)
        loadLocal();
}

BENCHMARK_F(Workstation, LoadLocalRowsOfAChangedFile)(benchmark::State& state) {
    for (auto _ : state) {
        platform::ForgetProfiles();
        loadLocal();
    }
}

BENCHMARK_F(Workstation, SaveUnchanged)(benchmark::State& state) {
    for (auto _ : state)
        SaveLocalSettings(ini);
}

BENCHMARK_F(Workstation, SaveOneChange)(benchmark::State& state) {
    for (auto _ : state) {
        settings().ShowClock = settings().ShowClock ? 0 : 1;
        SaveLocalSettings(ini);
    }
}

BENCHMARK_F(Workstation, ExportAll)(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ExportSettings({ini, {}, {}}));
}

BENCHMARK_MAIN();
