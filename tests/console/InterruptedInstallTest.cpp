// Automatic configuration that is interrupted at any of its file
// operations, or meets a disk that is full or broken from then on, and then
// runs again: everything is completed, and nothing that existed is lost.
#include "console/AutoConfiguration.h"

#include "console/Installation.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"
#include "station/LoadSettings.h"
#include "station/StationTest.h"
#include "support/FileFaults.h"

#include <QDirIterator>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

enum Result { Refused, Incomplete, Complete };

const QByteArray usedCarts = QByteArray(5 * CartListRecordLength, 'c') + "half a record";
const QByteArray defaultDatabase = "[KOVA]\r\nDefaultDatabase=KOVA26.MDB\r\n";
const QByteArray usedTerminals =
    QByteArray("Studio 1").leftJustified(30) + QByteArray("OTHERPC").leftJustified(30) + QByteArray(68, '\0');

// A machine with known carts and workstations that was never configured itself.
struct Station {
    Station() {
        machine.write("C:\\WINDOWS\\TOLVEX.INI", "; by hand\r\n[Other]\r\nKey=1\r\n");
        machine.write("C:\\TOLVEX\\AUDIO\\Carts1.lst", usedCarts);
        machine.write("C:\\TOLVEX\\AUDIO\\Audwall.ini", "[CDRipping]\r\nAutoTopAudio=0\r\n");
        machine.write("C:\\TOLVEX\\SYSTEM\\Terminal.Lst", usedTerminals);
    }

    Result configure() {
        machine.use();
        Workstation station;
        prompts.answers = {Answer::Yes};
        prompts.files = {std::nullopt};
        LoadLocalSettings(station);
        const bool ran = DefaultLocalInstall(station);
        const bool complete = prompts.texts().filter("could not be made").isEmpty();
        return !ran ? Refused : complete ? Complete : Incomplete;
    }

    TestMachine machine;
    ScriptedPrompts prompts;
};

// The order of a file's sections and a table's rows is the order of their first writing.
QByteArray inOrder(const QByteArray& text, char separator) {
    QList<QByteArray> parts = text.split(separator);
    std::sort(parts.begin(), parts.end());
    return parts.join(separator);
}

// All tables with their rows, after a check of every page.
QByteArray databaseText(const QString& hostPath) {
    QByteArray text;
    QByteArray rows;
    const auto sink = [&rows](std::string_view piece) { rows.append(piece.data(), qsizetype(piece.size())); };
    jet::Database database = jet::Database::open(hostPath.toStdString());
    const auto report = [&text](const jet::Fault& fault) { text += fault.reason.c_str(); };
    jet::CheckDatabase(database.pager(), report);
    for (const jet::CatalogObject& object : database.catalog().tables()) {
        text += QString::fromStdU16String(object.name).toUtf8() + ":\n";
        for (const jet::IndexDesign& index : jet::DescribeTable(database.catalog(), object).indexes)
            text += QString::fromStdU16String(index.name).toUtf8() + '\n';
        const jet::Table table = database.catalog().table(object);
        rows.clear();
        jet::ExportRows(jet::Filter(table, std::nullopt), jet::TextFormat::Csv, sink);
        text += inOrder(rows, '\n');
    }
    return text;
}

// The contents of a machine, by path; without files that an interrupted writer left beside its target, and
// without backups, which depend on the moment.
QMap<QString, QByteArray> contents(const TestMachine& machine) {
    QMap<QString, QByteArray> files;
    QDirIterator each(machine.path() + "/drive_c", QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString host = each.next();
        QFile file(host);
        const QString name = host.mid(machine.path().size());
        if (name.contains("/.tolvex-") || name.endsWith(".lock") || name.contains("/Backups"))
            continue;
        if (each.fileInfo().isDir())
            files[name] = "folder";
        else if (name.endsWith(".MDB"))
            files[name] = databaseText(host);
        else if (file.open(QIODevice::ReadOnly))
            files[name] = name.endsWith(".INI") ? inOrder(file.readAll(), '[') : file.readAll();
    }
    return files;
}

// A fault at every third operation from `first` on. A kill is tested at every operation; for the others a
// third is enough, and each row is a test of its own, so that they run in parallel.
struct Faults {
    const char* name;
    Fault fault;
    int first;
};
constexpr Faults allFaults[] = {{"Kill", Fault::Kill, 1},
                                {"Kill", Fault::Kill, 2},
                                {"Kill", Fault::Kill, 3},
                                {"Error", Fault::Error, 1},
                                {"NoRoom", Fault::NoRoom, 2}};
constexpr int step = 3;

class InterruptedInstallTest : public StationTest, public testing::WithParamInterface<Faults> {};

} // namespace

TEST_P(InterruptedInstallTest, CompletesWhenItRunsAgain) {
    int operations = 0;
    QMap<QString, QByteArray> whole;
    {
        Station install;
        operations = RunWithFault([&] { return install.configure(); }, Fault::None, 0).operations;
        whole = contents(install.machine);
    }
    ASSERT_GT(operations, 100);
    EXPECT_TRUE(whole.value("/drive_c/WINDOWS/TOLVEX.INI").contains("[Other]\r\nKey=1\r\n"));
    EXPECT_TRUE(whole.value("/drive_c/TOLVEX/AUDIO/Carts1.lst").startsWith(usedCarts.left(5 * 300)));
    EXPECT_TRUE(whole.value("/drive_c/TOLVEX/SYSTEM/Terminal.Lst").startsWith(usedTerminals));

    const Fault fault = GetParam().fault;
    for (int at = GetParam().first; at <= operations && !HasFailure(); at += step) {
        SCOPED_TRACE("operation " + std::to_string(at));
        Station install;
        const FaultyRun run = RunWithFault([&] { return install.configure(); }, fault, at);
        ASSERT_TRUE(fault == Fault::Kill ? run.killed : run.result >= 0);
        // The default database is complete or missing, at any moment.
        const QString log = QStringLiteral("/drive_c/TOLVEX/SYSTEM/SCHEDULE/KOVA26.MDB");
        const bool made = QFile::exists(install.machine.path() + log);
        EXPECT_TRUE(!made || databaseText(install.machine.path() + log) == whole.value(log));
        // Its report is true.
        for (const QString& path : run.result == Complete ? whole.keys() : QStringList())
            EXPECT_TRUE(QFile::exists(install.machine.path() + path)) << path.toStdString();
        EXPECT_EQ(install.configure(), Complete) << install.prompts.texts().join("\n").toStdString();
        const auto now = contents(install.machine);
        EXPECT_EQ(now.keys(), whole.keys());
        // A database that is found is left alone: one made just before the interruption is not recognised as
        // the default.
        const QString ini = QStringLiteral("/drive_c/WINDOWS/TOLVEX.INI");
        auto expected = whole;
        if (made && !now.value(ini).contains(defaultDatabase))
            expected[ini].replace(defaultDatabase, "");
        for (const QString& path : whole.keys())
            EXPECT_TRUE(now.value(path) == expected.value(path)) << path.toStdString() << ":\n"
                                                                 << now.value(path).right(2000).toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(AllFaults, InterruptedInstallTest, testing::ValuesIn(allFaults),
                         [](const auto& row) {
                             return std::string(row.param.name) + std::to_string(row.param.first);
                         });
