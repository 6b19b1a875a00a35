// Databases copied, renamed, removed and listed while others have them open, or damaged, or on a drive that
// is gone.
#include "DatabasesTest.h"

#include "databases/suite/DatabaseFiles.h"
#include "databases/suite/DatabaseList.h"
#include "databases/suite/DatabaseNames.h"
#include "support/NoRoom.h"
#include "support/WithoutRights.h"

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Folder = QStringLiteral("C:\\D");
const QString Log = QStringLiteral("C:\\D\\LOG.MDB");

class DatabaseFilesTest : public DatabasesTest {
protected:
    DatabaseFilesTest() {
        before_ = qgetenv("XDG_DATA_HOME");
        QDir().mkpath(machine.path() + "/share");
        qputenv("XDG_DATA_HOME", (machine.path() + "/share").toUtf8());
        make(Log, KOVAType, "The log");
    }
    ~DatabaseFilesTest() override {
        before_.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before_);
    }
    QStringList names() const { return platform::FolderNames(Folder); }
    template<class Work>
    static DatabaseError errorOf(const Work& work) {
        try {
            work();
        } catch (const DatabaseError& error) {
            return error;
        }
        return {};
    }

private:
    QByteArray before_;
};

const auto goOn = [](qint64, qint64) { return true; };

class Steps : public platform::Progress {
public:
    bool step(qint64, qint64, const QString&) override { return goesOn; }
    bool goesOn = true;
};

} // namespace

// If no trash can be made a database is deleted for good, and not moved to the program's current folder.
TEST_F(DatabaseFilesTest, RemovesForGoodWhereThereIsNoTrash) {
    machine.write("C:\\file", "x");
    qputenv("XDG_DATA_HOME", (machine.host("C:\\file") + "/share").toUtf8());
    const QString here = QDir::currentPath();
    QDir::setCurrent(machine.host("C:\\"));
    EXPECT_FALSE(RemoveDatabaseFile(Log));
    EXPECT_EQ(QDir(machine.host("C:\\")).entryList({"files", "info"}), QStringList());
    QDir::setCurrent(here);
    EXPECT_FALSE(machine.exists(Log));
}

// A user's commits lie in a log beside the file until the last user leaves.
TEST_F(DatabaseFilesTest, TouchesNoDatabaseThatIsOpen) {
    auto open = OpenSuiteDatabase(Log);
    open->execute("UPDATE [Description] SET [Description]='Changed'");
    EXPECT_FALSE(ComputersUsing(Log).isEmpty());
    const DatabaseError copied = errorOf([] { CopyDatabaseFile(Log, "C:\\D\\NEW.MDB", goOn); });
    EXPECT_EQ(copied.number, 3045);
    EXPECT_TRUE(copied.text.contains("in use by " + ComputersUsing(Log).front()))
        << copied.text.toStdString();
    EXPECT_TRUE(copied.text.contains(Log) && !copied.text.contains(machine.path()))
        << copied.text.toStdString();
    EXPECT_EQ(errorOf([] { RenameDatabaseFile(Log, "C:\\D\\NEW.MDB"); }).number, 3045);
    EXPECT_EQ(errorOf([] { RemoveDatabaseFile(Log); }).number, 3045);
    EXPECT_FALSE(names().contains("NEW.MDB"));
    EXPECT_TRUE(names().contains("LOG.MDB"));
    open.reset();
    EXPECT_TRUE(ComputersUsing(Log).isEmpty());
    EXPECT_EQ(rows(Log, "Description"), "Changed,2.5999999,14");
}

TEST_F(DatabaseFilesTest, CopiesRenamesAndRemovesWholeFiles) {
    EXPECT_TRUE(CopyDatabase(Log, "C:\\D\\COPY.MDB", goOn));
    EXPECT_EQ(rows("C:\\D\\COPY.MDB", "Description"), "Copy of The log,2.5999999,14");
    EXPECT_EQ(errorOf([] { CopyDatabaseFile(Log, "C:\\D\\COPY.MDB", goOn); }).number, 58);
    // After a stop, or without room, a copy leaves nothing.
    EXPECT_FALSE(CopyDatabase(Log, "C:\\D\\HALF.MDB", [](qint64, qint64) { return false; }));
    {
        const NoRoom full(4096);
        EXPECT_NE(errorOf([] { CopyDatabase(Log, "C:\\D\\HALF.MDB", goOn); }).number, 0);
    }
    EXPECT_EQ(names(), (QStringList{"COPY.MDB", "LOG.MDB"}));

    machine.write("C:\\D\\LOG.LDB", "left by a program that died");
    EXPECT_EQ(errorOf([] { RenameDatabaseFile(Log, "C:\\D\\COPY.MDB"); }).number, 58);
    RenameDatabaseFile(Log, "C:\\D\\OTHER.DAT");
    EXPECT_EQ(names(), (QStringList{"COPY.MDB", "OTHER.DAT"}));
    EXPECT_EQ(rows("C:\\D\\OTHER.DAT", "Description"), "The log,2.5999999,14");

    machine.write("C:\\D\\COPY.LDB", "left by a program that died");
    EXPECT_TRUE(RemoveDatabaseFile("C:\\D\\COPY.MDB"));
    EXPECT_EQ(names(), QStringList{"OTHER.DAT"});
    EXPECT_TRUE(QFile::exists(machine.path() + "/share/Trash/files/COPY.MDB"));
}

// Copying changes nothing in the file, so one that may not be written can be copied, unless some of it is
// only in the log beside it.
TEST_F(DatabaseFilesTest, CopiesAReadOnlyFile) {
    const QByteArray bytes = machine.read(Log);
    QFile::setPermissions(machine.host(Log), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    for (const QString& open : {machine.path(), machine.host(Folder)})
        QFile::setPermissions(open, QFile::Permissions(0x7777));
    EXPECT_TRUE(PassesWithoutRights([&] {
        EXPECT_TRUE(CopyDatabase(Log, "C:\\D\\COPY.MDB", goOn));
        EXPECT_EQ(errorOf([] { RenameDatabaseFile(Log, "C:\\D\\NEW.MDB"); }).number, 3027);
        const DatabaseError changed = errorOf([&] {
            CopyDatabaseFile(Log, "C:\\D\\NEW.MDB", [](qint64, qint64) {
                platform::RenameFile(Log, "C:\\D\\AWAY.MDB");
                return true;
            });
        });
        platform::RenameFile("C:\\D\\AWAY.MDB", Log);
        EXPECT_TRUE(changed.text.contains("was changed while it was being copied"))
            << changed.text.toStdString();
        machine.write("C:\\D\\LOG.MDB-redo", "commits");
        EXPECT_EQ(errorOf([] { CopyDatabaseFile(Log, "C:\\D\\NEW.MDB", goOn); }).number, 3027);
    }));
    EXPECT_EQ(names(), (QStringList{"COPY.MDB", "LOG.MDB", "LOG.MDB-redo"}));
    EXPECT_EQ(machine.read(Log), bytes);
    EXPECT_EQ(rows("C:\\D\\COPY.MDB", "Description"), "Copy of The log,2.5999999,14");
}

TEST_F(DatabaseFilesTest, RefusesNamesThatNoDatabaseMayHave) {
    for (const char* name : {"A\\B", "A.MDB", "BACKUP", "a:b", "a?", " ", "a "})
        EXPECT_FALSE(DatabaseNameFault(name).isEmpty()) << name;
    EXPECT_EQ(DatabaseNameFault("BackUp"), "The name 'Backup' is reserved and cannot be used!");
    EXPECT_EQ(DatabaseNameFault("A name of 20 letters"), "");
    EXPECT_EQ(RenamedDatabase("NEW"), "NEW.MDB");
    EXPECT_EQ(RenamedDatabase("NEW.DAT"), "NEW.DAT");
}

TEST_F(DatabaseFilesTest, ListsOneAfterTheOther) {
    make("C:\\D\\adverts.mdb", AdvertsType, "The adverts");
    machine.write("C:\\D\\BAD.MDB", "text");
    CreateSuiteDatabase("C:\\D\\BARE.MDB");
    machine.write("C:\\D\\LOG.LDB", "");
    machine.makeFolder("C:\\D\\FOLDER.MDB");
    const auto open = OpenSuiteDatabase(Log);
    QList<ListedDatabase> found;
    Steps steps;
    DatabaseLister lister;
    EXPECT_TRUE(lister.list(Folder, steps, [&](const ListedDatabase& each) { found += each; }));
    ASSERT_EQ(found.size(), 4);
    EXPECT_EQ(found[0].baseName, "adverts");
    EXPECT_EQ(found[0].type, 2);
    EXPECT_EQ(found[0].description, "The adverts");
    EXPECT_TRUE(found[0].openOn.isEmpty());
    EXPECT_GT(found[0].size, 4096);
    EXPECT_TRUE(found[0].modified.isValid());
    EXPECT_EQ(found[1].error, 3343);
    EXPECT_NE(found[2].error, 0);
    EXPECT_EQ(found[3].fileName, "LOG.MDB");
    EXPECT_EQ(found[3].openOn.size(), 1);
    EXPECT_EQ(found[3].version, 2.6F);

    int seen = 0;
    EXPECT_FALSE(lister.list(Folder, steps, [&](const ListedDatabase&) {
        ++seen;
        steps.goesOn = false;
    }));
    EXPECT_EQ(seen, 1);
    steps.goesOn = true;
    EXPECT_TRUE(lister.list("C:\\NONE", steps, [&](const ListedDatabase&) { ++seen; }));
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(lister.gaveUp());
}
