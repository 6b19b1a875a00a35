// Replaces a database with its compacted copy: nothing is lost, whenever it ends and whoever else writes, and
// the new file has the old one's attributes.
#include "DatabasesTest.h"

#include "databases/compaction/CompactRepair.h"
#include "jet/base/Storage.h"
#include "support/FileFaults.h"
#include "support/OtherWorkstation.h"

#include <chrono>
#include <thread>

#include <sys/stat.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\SONGS.MDB");
constexpr DiskAbilities disks[] = {{true, true}, {false, true}, {false, false}};

class SwapTest : public DatabasesTest {
protected:
    // A database with this many rows in its Settings.
    void makeFilled(int count) const {
        make(Path, 1, "Songs");
        fill(Path, count);
    }
    // Without the lock of a dead process, used on disks without links only; the next one takes it over.
    static QStringList files() {
        QStringList names = platform::FolderNames("C:\\DATA");
        names.removeIf([](const QString& name) { return name.endsWith("-naming"); });
        return names;
    }
};

} // namespace

// After a kill or an error at any system call, or on a disk that is full from then on: the database exists
// under its name before anybody opens it, complete, and afterwards nothing is left beside it except a backup.
TEST_F(SwapTest, LeavesTheOldOrTheNewFileWhereverItEnds) {
    makeFilled(50);
    const QByteArray old = machine.read(Path);
    const QString backup = QStringLiteral("C:\\DATA\\SONGS-0001.BAK");
    const auto job = [] { return CompactRepairDatabase(Path, false, {}, true) ? 1 : 0; };
    for (const DiskAbilities& abilities : disks)
        for (const Fault fault : {Fault::Kill, Fault::Error, Fault::NoRoom}) {
            const PlainDisk disk(abilities);
            const auto again = [&] {
                platform::RemoveFile(backup);
                machine.write(Path, old);
            };
            again();
            const int operations = RunWithFault(job, Fault::None, 0).operations;
            ASSERT_GT(operations, 10);
            for (int at = 1; at <= operations && !HasFailure(); ++at) {
                SCOPED_TRACE("fault " + std::to_string(int(fault)) + " at " + std::to_string(at));
                again();
                const FaultyRun run = RunWithFault(job, fault, at);
                const QByteArray now = machine.read(Path);
                EXPECT_TRUE(now == old || run.killed || run.result == 1);
                EXPECT_GE(now.size(), 65536);
                EXPECT_EQ(OpenSuiteDatabase(Path)->open("Settings", RecordsetMode::Table)->recordCount(), 50);
                EXPECT_EQ(machine.read(Path), now);
                if (machine.exists(backup)) {
                    EXPECT_EQ(machine.read(backup), old);
                    machine.write(backup, "x"); // is a file of its own
                    EXPECT_EQ(machine.read(Path), now);
                    EXPECT_EQ(files(), (QStringList{"SONGS-0001.BAK", "SONGS.MDB"}));
                } else {
                    EXPECT_EQ(files(), QStringList{"SONGS.MDB"});
                }
            }
        }
}

// Four workstations add rows, opening the database for each, while it is compacted again and again. A refused
// one tries again; accepted rows are there.
TEST_F(SwapTest, LosesNoChangeOfAnother) {
    constexpr int Each = 40;
    makeFilled(1);
    const StartingGun gun;
    const auto write = [&](int number) {
        gun.wait();
        for (int i = 0; i < Each; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(number * 3 + 2)); // for a compaction
            for (bool done = false; !done;) {
                try {
                    const auto database = OpenSuiteDatabase(Path);
                    const auto rows = database->open("Settings", RecordsetMode::Table);
                    rows->addNew();
                    rows->set("Item", QStringLiteral("%1-%2").arg(number).arg(i));
                    rows->update();
                    done = true;
                } catch (const DatabaseError& error) {
                    if (error.number != 3356) // refused by the compaction
                        return false;
                }
            }
        }
        return true;
    };
    std::vector<std::unique_ptr<OtherWorkstation>> writers;
    writers.reserve(4);
    for (int number = 0; number < 4; ++number)
        writers.push_back(std::make_unique<OtherWorkstation>([&, number] { return write(number); }));
    gun.fire();
    for (int i = 0; i < 300; ++i)
        CompactRepairDatabase(Path, false, {}, true);
    for (const auto& writer : writers)
        EXPECT_TRUE(writer->wentWell());
    EXPECT_TRUE(CompactRepairDatabase(Path, false, {}, true));
    EXPECT_EQ(OpenSuiteDatabase(Path)->open("Settings", RecordsetMode::Table)->recordCount(), 1 + 4 * Each);
    EXPECT_GT(files().size(), 3); // some succeeded in between
    EXPECT_EQ(files().filter("SONGS").size(), files().size());
}

TEST_F(SwapTest, KeepsOwnerGroupAndMode) {
    make(Path, 1);
    const QByteArray host = machine.host(Path).toUtf8();
    const bool isRoot = ::geteuid() == 0;
    ASSERT_EQ(::chmod(host.constData(), 0620), 0);
    ASSERT_TRUE(!isRoot || ::chown(host.constData(), 1234, 5678) == 0);
    struct stat before {};
    ::stat(host.constData(), &before);
    for (const bool links : {true, false}) {
        const PlainDisk disk({true, links});
        ASSERT_TRUE(CompactRepairDatabase(Path, false, {}, true));
        for (const QString& path : {Path, QStringLiteral("C:\\DATA\\SONGS-000%1.BAK").arg(links ? 1 : 2)}) {
            struct stat after {};
            ASSERT_EQ(::stat(machine.host(path).toUtf8().constData(), &after), 0);
            EXPECT_EQ(after.st_mode, before.st_mode);
            EXPECT_EQ(after.st_uid, before.st_uid);
            EXPECT_EQ(after.st_gid, before.st_gid);
            EXPECT_EQ(after.st_nlink, 1u);
        }
    }
}

TEST_F(SwapTest, RefusesAReadOnlyFileInWords) {
    make(Path, 1);
    const QByteArray old = machine.read(Path);
    ASSERT_EQ(::chmod(machine.host(Path).toUtf8().constData(), 0444), 0);
    EXPECT_FALSE(CompactRepairDatabase(Path, false, {}, true));
    EXPECT_TRUE(texts().last().startsWith(
        "There was a problem Compacting/Repairing the database: C:\\DATA\\SONGS.MDB and"));
    EXPECT_TRUE(texts().last().contains("the file may not be written")) << texts().last().toStdString();
    EXPECT_EQ(files(), QStringList{"SONGS.MDB"});
    EXPECT_EQ(machine.read(Path), old);
}

// A link stays one: the file that it leads to is compacted, and the backup lies beside the link.
TEST_F(SwapTest, FollowsALink) {
    make("C:\\ELSEWHERE\\REAL.MDB", 1, "Songs");
    machine.makeFolder("C:\\DATA");
    ASSERT_TRUE(QFile::link(machine.host("C:\\ELSEWHERE\\REAL.MDB"), machine.host(Path)));
    ASSERT_TRUE(CompactRepairDatabase(Path, false, {}, true));
    EXPECT_TRUE(QFileInfo(machine.host(Path)).isSymLink());
    EXPECT_EQ(rows("C:\\ELSEWHERE\\REAL.MDB", "Description"), "Songs,2.5999999,1");
    EXPECT_EQ(rows("C:\\DATA\\SONGS-0001.BAK", "Description"), "Songs,2.5999999,1");
    EXPECT_EQ(platform::FolderNames("C:\\ELSEWHERE"), QStringList{"REAL.MDB"});
    // Users of either name are users of one file.
    const auto one = OpenSuiteDatabase(Path);
    const auto other = OpenSuiteDatabase("C:\\ELSEWHERE\\REAL.MDB");
    CheckTable(*one, SettingsTableSchema());
    EXPECT_TRUE(other->table("Settings"));
}

TEST_F(SwapTest, RemovesTheCopiesOfTheDead) {
    make(Path, 1);
    const QByteArray part = machine.read(Path).left(8192);
    const struct {
        const char* name;
        QByteArray bytes;
        int hours; // since its last change
    } copies[] = {{"MDB1A2B.TMP", part, 30},  {"mdb3.tmp", {}, 30},      {"MDB4.TMP", part, 2},
                  {"MDB5.TMP", "a text", 30}, {"MDBLONG.TMP", part, 30}, {"MDB6.TMP", part, 30}};
    for (const auto& copy : copies) {
        const QString path = QStringLiteral("C:\\DATA\\") + copy.name;
        machine.write(path, copy.bytes);
        QFile file(machine.host(path));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(QDateTime::currentDateTime().addSecs(-3600 * copy.hours),
                         QFileDevice::FileModificationTime);
    }
    const auto living = jet::MachineStorage().open(machine.host("C:\\DATA\\MDB6.TMP").toStdString(),
                                                   jet::Storage::Open::ReadWrite);
    ASSERT_TRUE(living->lock(5, 1, false, false));
    ASSERT_TRUE(CompactRepairDatabase(Path, false, {}, true));
    EXPECT_EQ(files().filter("MDB", Qt::CaseInsensitive).filter(".TMP"),
              (QStringList{"MDB4.TMP", "MDB5.TMP", "MDB6.TMP", "MDBLONG.TMP"}));
}
