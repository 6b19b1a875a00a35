// Loading all settings of a workstation from a full ini file, and saving them: done at each start and at each
// OK of a form.
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

void loadLocal(Settings& settings) {
    for (const SettingGroup& group : AllSettings())
        if (group.file == SettingsFile::Local) {
            LoadRows(group.rows, {ini}, settings);
            SizeJumpCartButtons(settings);
        }
}

class StoredLocally : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        platform::SetMachineFolder(folder_.path());
        settings = {};
        loadLocal(settings);
        SaveLocalSettings(settings, ini);
        // The other programs' keys.
        platform::ProfileBatch batch(ini);
        for (int line = 1; line <= 1000; ++line)
            batch.put(QStringLiteral("Hardware%1").arg(line % 3 + 1), QStringLiteral("LineType%1").arg(line),
                      line);
        batch.commit();
        MakeQuiet(ini);
    }

    Settings settings;

private:
    QTemporaryDir folder_;
};

} // namespace

BENCHMARK_F(StoredLocally, LoadLocalRows)(benchmark::State& state) {
    for (auto _ : state)
        loadLocal(settings);
}

BENCHMARK_F(StoredLocally, LoadLocalRowsOfAChangedFile)(benchmark::State& state) {
    for (auto _ : state) {
        platform::ForgetProfiles();
        loadLocal(settings);
    }
}

BENCHMARK_F(StoredLocally, SaveUnchanged)(benchmark::State& state) {
    for (auto _ : state)
        SaveLocalSettings(settings, ini);
}

BENCHMARK_F(StoredLocally, SaveOneChange)(benchmark::State& state) {
    for (auto _ : state) {
        settings.ShowClock = settings.ShowClock ? 0 : 1;
        SaveLocalSettings(settings, ini);
    }
}

BENCHMARK_F(StoredLocally, ExportAll)(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ExportSettings({ini, {}, {}}));
}

BENCHMARK_MAIN();
