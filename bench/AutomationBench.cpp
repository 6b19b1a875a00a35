// The automation player's windows: opening the settings of a full database, OK beside one committed
// transaction of the engine, and listing databases beside opening each of them.
#include "automation/AutomationEditing.h"
#include "automation/AutomationSchema.h"
#include "automation/forms/frmKOVADatabaseSettings.h"
#include "core/settings/Settings.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseList.h"
#include "databases/suite/ValidateDatabase.h"
#include "databases/users/UsersDatabase.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

const QString Log = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");
const QString Folder = QStringLiteral("C:\\MANY");
constexpr int Databases = 100;
constexpr int LogEntries = 20000;

// A database with a week's log and all settings, and a folder of databases.
const Settings& prepare() {
    static const QTemporaryDir folder;
    static Settings settings;
    if (platform::MachineFolder() == folder.path())
        return settings;
    platform::SetMachineFolder(folder.path());
    settings.DataLocation = QStringLiteral("C:\\DATA");
    settings.NoCarts = 9999;
    QString title = QStringLiteral("Log");
    ValidateDatabase(Log, KOVAType, true, &title);
    ValidateKOVADatabaseTables(Log);
    platform::MakeFolder(Folder);
    for (int i = 0; i < Databases; ++i)
        platform::CopyWholeFile(Log, Folder + QStringLiteral("\\D%1.MDB").arg(i));
    const auto database = OpenSuiteDatabase(Log);
    DatabaseTransaction transaction(*database);
    const auto rows = database->open(QStringLiteral("Log"), RecordsetMode::Table);
    for (int i = 0; i < LogEntries; ++i) {
        rows->addNew();
        rows->set(QStringLiteral("KIndex"), double(i));
        rows->set(QStringLiteral("Description1"), QStringLiteral("Entry %1").arg(i));
        rows->update();
    }
    transaction.commit();
    return settings;
}

void OpenSettingsWindow(benchmark::State& state) {
    const Settings& settings = prepare();
    UsersState users(settings);
    KOVADatabaseSettings record;
    for (auto _ : state) {
        frmKOVADatabaseSettings form(record, settings, users);
        form.setDatabase(Log);
        form.show();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(OpenSettingsWindow)->Unit(benchmark::kMillisecond);

void StoreSettings(benchmark::State& state) {
    const Settings& settings = prepare();
    UsersState users(settings);
    KOVADatabaseSettings record;
    AutomationEditing editing(record, settings, users);
    editing.open(Log);
    for (auto _ : state) {
        record.KOVA_PreCueTime = static_cast<qint16>(record.KOVA_PreCueTime % 100 + 1);
        editing.store();
    }
}
BENCHMARK(StoreSettings)->Unit(benchmark::kMillisecond);

// The engine alone: as many rows of the table changed, and committed.
void CommitAsManyRows(benchmark::State& state) {
    prepare();
    const auto database = OpenSuiteDatabase(Log);
    int value = 0;
    for (auto _ : state) {
        ++value;
        DatabaseTransaction transaction(*database);
        const auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
        for (; !rows->eof(); rows->moveNext()) {
            rows->edit();
            rows->set(QStringLiteral("Value"), QString::number(value % 100));
            rows->update();
        }
        transaction.commit();
    }
}
BENCHMARK(CommitAsManyRows)->Unit(benchmark::kMillisecond);

class Unstopped : public platform::Progress {
public:
    bool step(qint64, qint64, const QString&) override { return true; }
};

void List100Databases(benchmark::State& state) {
    prepare();
    DatabaseLister lister;
    Unstopped progress;
    int found = 0;
    for (auto _ : state)
        lister.list(Folder, progress, [&found](const ListedDatabase&) { ++found; });
    benchmark::DoNotOptimize(found);
}
BENCHMARK(List100Databases)->Unit(benchmark::kMillisecond);

void LookAt100Databases(benchmark::State& state) {
    prepare();
    for (auto _ : state)
        for (const QString& file : DatabaseFilesIn(Folder))
            benchmark::DoNotOptimize(LookAtDatabase(file));
}
BENCHMARK(LookAt100Databases)->Unit(benchmark::kMillisecond);

void Open100Databases(benchmark::State& state) {
    prepare();
    for (auto _ : state)
        for (const QString& file : DatabaseFilesIn(Folder)) {
            const auto database = OpenSuiteDatabase(file);
            const auto row = database->open(QStringLiteral("Description"), RecordsetMode::Table);
            benchmark::DoNotOptimize(row->value(QStringLiteral("Type")));
        }
}
BENCHMARK(Open100Databases)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ApplyStyle(application, Scheme::Light);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
