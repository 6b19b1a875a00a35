// The database work of start-up and the automation forms.
#include "automation/AutomationSchema.h"
#include "automation/AutomationStore.h"
#include "core/settings/Settings.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/FindDatabases.h"
#include "databases/suite/ValidateDatabase.h"
#include "databases/users/UsersDatabase.h"
#include "databases/users/UsersSchema.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

const QString Data = QStringLiteral("C:\\DATA");
const QString Users = QStringLiteral("C:\\DATA\\USERS\\USERS25.MDB");
const QString Log = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");

// A machine with a complete users database and a complete automation database.
void prepare() {
    static const QTemporaryDir folder;
    if (platform::MachineFolder() == folder.path())
        return;
    platform::SetMachineFolder(folder.path());
    const Settings settings;
    UsersState state(settings);
    OpenUsersDatabase(state, Users);
    QString title = QStringLiteral("Log");
    ValidateDatabase(Log, KOVAType, true, &title);
    ValidateKOVADatabaseTables(Log);
}

void CreateAutomationDatabase(benchmark::State& state) {
    prepare();
    const QString path = QStringLiteral("C:\\DATA\\NEW.MDB");
    for (auto _ : state) {
        platform::RemoveFile(path);
        QString title = QStringLiteral("New");
        ValidateDatabase(path, KOVAType, true, &title);
        ValidateKOVADatabaseTables(path);
    }
}
BENCHMARK(CreateAutomationDatabase)->Unit(benchmark::kMillisecond);

void ValidateUsersDatabase(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        QString title;
        ValidateDatabase(Users, UsersDatabaseType, true, &title);
        ValidateUsersDatabaseTables(Users);
    }
}
BENCHMARK(ValidateUsersDatabase)->Unit(benchmark::kMillisecond);

void ValidateAutomationDatabase(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        QString title;
        ValidateDatabase(Log, KOVAType, true, &title);
        ValidateKOVADatabaseTables(Log);
    }
}
BENCHMARK(ValidateAutomationDatabase)->Unit(benchmark::kMillisecond);

void SaveAutomationSettings(benchmark::State& state) {
    prepare();
    const auto database = OpenSuiteDatabase(Log);
    KOVADatabaseSettings record;
    LoadKOVASettings(*database, record, Data);
    for (auto _ : state) {
        ++record.KOVA_PreCueTime;
        SaveKOVASettings(*database, record, Data);
    }
}
BENCHMARK(SaveAutomationSettings)->Unit(benchmark::kMillisecond);

void LoadAutomationSettings(benchmark::State& state) {
    prepare();
    const auto database = OpenSuiteDatabase(Log);
    KOVADatabaseSettings record;
    for (auto _ : state)
        benchmark::DoNotOptimize(LoadKOVASettings(*database, record, Data));
}
BENCHMARK(LoadAutomationSettings)->Unit(benchmark::kMillisecond);

// Many in one second: each moves past those before it.
void AddHistoryEvent(benchmark::State& state) {
    prepare();
    const Settings settings;
    UsersState users(settings);
    OpenUsersDatabase(users, Users);
    for (auto _ : state)
        AddEventToUserHistory(users, QStringLiteral("ANN"), AutomationSettingsSaved, EventSucceeded, Log);
}
BENCHMARK(AddHistoryEvent)->Unit(benchmark::kMillisecond)->Iterations(100);

void FindAmong200Databases(benchmark::State& state) {
    prepare();
    platform::MakeFolder(QStringLiteral("C:\\FOUND"));
    for (int i = 0; i < 200; ++i)
        platform::CopyWholeFile(i % 4 == 0 ? Log : Users, QStringLiteral("C:\\FOUND\\D%1.MDB").arg(i));
    QString first;
    for (auto _ : state)
        benchmark::DoNotOptimize(FindDatabaseOfType(QStringLiteral("C:\\FOUND"), KOVAType, &first, 0));
}
BENCHMARK(FindAmong200Databases)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
