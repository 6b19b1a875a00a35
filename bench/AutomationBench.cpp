// The automation player's windows: opening the settings of a full database, OK beside a committed transaction
// of the engine alone, and listing databases beside opening each of them.
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

#include <climits>

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
    // From the first OK on the table has a row for nearly every item.
    UsersState nobody(settings);
    KOVADatabaseSettings record;
    AutomationEditing first(record, settings, nobody);
    if (first.open(Log))
        first.store();
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

// OK with one item changed, and with all of them.
enum class Changed { One, All };

void press(benchmark::State& state, Changed changed) {
    const Settings& settings = prepare();
    UsersState users(settings);
    KOVADatabaseSettings record;
    AutomationEditing editing(record, settings, users);
    editing.open(Log);
    int value = 0;
    for (auto _ : state) {
        ++value;
        for (const AutomationItem& item : AutomationItems())
            if (changed == Changed::All || &item == &AutomationItems().front())
                TakeMember(item, 1 + value % 2, record);
        if (!editing.store())
            return state.SkipWithError("not stored");
    }
}
void StoreOneSetting(benchmark::State& state) {
    press(state, Changed::One);
}
BENCHMARK(StoreOneSetting)->Unit(benchmark::kMillisecond);
void StoreAllSettings(benchmark::State& state) {
    press(state, Changed::All);
}
BENCHMARK(StoreAllSettings)->Unit(benchmark::kMillisecond);

// The engine alone: all rows of the table changed, and committed.
void commitRows(benchmark::State& state, int most) {
    prepare();
    const auto database = OpenSuiteDatabase(Log);
    int value = 0;
    for (auto _ : state) {
        ++value;
        DatabaseTransaction transaction(*database);
        const auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
        for (int at = 0; at < most && !rows->eof(); ++at, rows->moveNext()) {
            rows->edit();
            rows->set(QStringLiteral("Value"), QString::number(1 + value % 2));
            rows->update();
        }
        transaction.commit();
    }
}
void CommitOneRow(benchmark::State& state) {
    commitRows(state, 1);
}
BENCHMARK(CommitOneRow)->Unit(benchmark::kMillisecond);
void CommitAllRows(benchmark::State& state) {
    commitRows(state, INT_MAX);
}
BENCHMARK(CommitAllRows)->Unit(benchmark::kMillisecond);

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
