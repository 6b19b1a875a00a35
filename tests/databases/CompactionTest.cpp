// Compacts and repairs files, and finds databases in folders.
#include "DatabasesTest.h"

#include "databases/compaction/CompactRepair.h"
#include "databases/suite/FindDatabases.h"
#include "jet/Database.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;
using platform::Icon;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\SONGS.MDB");

class CompactionTest : public DatabasesTest {
protected:
    QStringList files() const { return platform::FolderNames("C:\\DATA"); }
};

} // namespace

TEST_F(CompactionTest, KeepsTheOldFileUnderTheNextNumber) {
    make(Path, 1, "Songs");
    machine.write("C:\\DATA\\SONGS-0001.BAK", "x");
    machine.write("C:\\DATA\\SONGS-0002.BAK", {});
    const QByteArray old = machine.read(Path);
    prompts.answers = {Answer::Yes};
    EXPECT_TRUE(CompactRepairDatabase(Path, false, {}, false));
    EXPECT_EQ(files(), (QStringList{"SONGS-0001.BAK", "SONGS-0002.BAK", "SONGS-0003.BAK", "SONGS.MDB"}));
    EXPECT_EQ(machine.read("C:\\DATA\\SONGS-0003.BAK"), old);
    EXPECT_EQ(rows(Path, "Description"), "Songs,2.5999999,1");
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_EQ(
        prompts.asked[0].text,
        "Warning : The database must be closed on all computers before you can Compact/Repair it!\nYou "
        "should ensure that you have a backup of the database before proceeding\n\nAre you sure you want "
        "to continue compacting/repairing:\n\n\tC:\\DATA\\SONGS.MDB");
    EXPECT_EQ(prompts.asked[0].title, "Compact/Repair Database");
    EXPECT_EQ(prompts.asked[0].defaultAnswer, Answer::No);
    EXPECT_EQ(prompts.asked[1].icon, Icon::Information);
    EXPECT_EQ(prompts.pointers.last(), platform::Pointer::Default);
}

TEST_F(CompactionTest, ChangesNothingUntilItIsDone) {
    make(Path, 1);
    fill(Path, 1000); // several megabytes
    const QByteArray old = machine.read(Path);
    // No to the question, Cancel in the picker, no picker, a Stop during the work, and a database in use.
    prompts.answers = {Answer::No};
    EXPECT_FALSE(CompactRepairDatabase(Path, false, {}, false));
    EXPECT_FALSE(CompactRepairDatabase({}, false, {}, false));
    prompts.files = {std::nullopt, QStringLiteral("C:\\NONE.MDB")};
    EXPECT_FALSE(CompactRepairDatabase({}, true, "C:\\DATA", false));
    EXPECT_FALSE(CompactRepairDatabase({}, true, "C:\\DATA", false));
    EXPECT_EQ(prompts.fileQuestions[0].folder, "C:\\DATA\\");
    prompts.forget();
    prompts.answers = {Answer::Yes};
    prompts.progressGoesOn = {true, false};
    EXPECT_FALSE(CompactRepairDatabase(Path, false, {}, false));
    EXPECT_TRUE(prompts.progressGoesOn.empty());
    EXPECT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(files(), QStringList{"SONGS.MDB"});
    {
        auto inUse = OpenSuiteDatabase(Path);
        EXPECT_FALSE(CompactRepairDatabase(Path, false, {}, true));
        EXPECT_TRUE(texts().last().startsWith(
            "There was a problem Compacting/Repairing the database: C:\\DATA\\SONGS.MDB and"));
    }
    EXPECT_EQ(files(), QStringList{"SONGS.MDB"});
    EXPECT_EQ(machine.read(Path).mid(4096), old.mid(4096));
    // And success.
    prompts.files = {Path};
    prompts.answers = {Answer::Yes};
    EXPECT_TRUE(CompactRepairDatabase({}, true, "C:\\DATA", false));
    EXPECT_EQ(rows(Path, "Settings").size(), rows("C:\\DATA\\SONGS-0001.BAK", "Settings").size());
}

TEST_F(CompactionTest, SavesADatabaseWithoutItsFirstPage) {
    make(Path, 14, "Log");
    fill(Path, 100);
    QByteArray bytes = machine.read(Path);
    machine.write(Path, bytes.replace(0, 4096, QByteArray(4096, '\0')));
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(Path, &information, false), 0);
    EXPECT_EQ(information.Description, "Log");
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(machine.read("C:\\DATA\\SONGS-0001.BAK"), bytes);
    EXPECT_EQ(OpenSuiteDatabase(Path)->open("Settings", RecordsetMode::Table)->recordCount(), 100);

    // A file that is not a database stays as it is.
    const QByteArray text(100000, 'x');
    machine.write("C:\\DATA\\TEXT.MDB", text);
    prompts.answers = {Answer::Yes};
    EXPECT_EQ(GetDatabaseInformation("C:\\DATA\\TEXT.MDB", &information, true), -1);
    EXPECT_TRUE(texts().last().startsWith("There was a problem Compacting/Repairing the database: "));
    EXPECT_EQ(machine.read("C:\\DATA\\TEXT.MDB"), text);
    EXPECT_EQ(files(), (QStringList{"SONGS-0001.BAK", "SONGS.MDB", "TEXT.MDB"}));
}

TEST_F(CompactionTest, FindsDatabasesOfAKindAmongOthers) {
    // One of each sort is made, and the folder is filled with copies.
    make("C:\\MADE\\1.MDB", 1);
    make("C:\\MADE\\14.MDB", 14);
    CreateSuiteDatabase("C:\\MADE\\BARE.MDB");
    const QByteArray songs = machine.read("C:\\MADE\\1.MDB");
    const QByteArray log = machine.read("C:\\MADE\\14.MDB");
    const QByteArray bare = machine.read("C:\\MADE\\BARE.MDB");
    const QByteArray sorts[] = {songs, log, bare, {}, songs.left(songs.size() / 2), "text", log, songs};
    for (int i = 0; i < 200; ++i)
        machine.write(
            QStringLiteral("C:\\FOUND\\D%1.%2").arg(i, 3, 10, QLatin1Char('0')).arg(i % 2 ? "mdb" : "MDB"),
            sorts[i % 8]);
    machine.makeFolder("C:\\FOUND\\D.MDB");
    machine.write("C:\\FOUND\\LOG.TXT", log);
    QString first = "old";
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND", 14, &first, 0), 50);
    EXPECT_EQ(first, "D001.mdb");
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND\\", 14, &first, 1), 1);
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND", 99, &first, 0), 0);
    EXPECT_EQ(first, "");
    EXPECT_EQ(FindDatabaseOfType("C:\\NOWHERE", 14, &first, 0), 0);
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND", 14, &first, 0, "Odbc;DSN=none"), 0);
}

TEST_F(CompactionTest, ReportsManyUnreadableFilesInOneBox) {
    QString first;
    machine.write("C:\\FOUND\\ONE.MDB", QByteArray(100000, 'x'));
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND", 14, &first, 0), 0);
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(texts()[0].startsWith(
        "There was a problem Compacting/Repairing the database: C:\\FOUND\\ONE.MDB and"));
    for (int i = 2; i <= 40; ++i)
        machine.write(QStringLiteral("C:\\FOUND\\S%1.MDB").arg(i, 2, 10, QLatin1Char('0')),
                      QByteArray(100000, 'x'));
    EXPECT_EQ(FindDatabaseOfType("C:\\FOUND", 14, &first, 0), 0);
    ASSERT_EQ(texts().size(), 2);
    EXPECT_TRUE(texts()[1].startsWith("There was a problem reading databases in C:\\FOUND\n\n"
                                      "Compacting/Repairing the database: C:\\FOUND\\ONE.MDB (3343)\n"))
        << texts()[1].toStdString();
    EXPECT_TRUE(texts()[1].endsWith("S10.MDB (3343)\nand 30 more")) << texts()[1].toStdString();
}
