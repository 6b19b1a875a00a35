// Commands that read leave the machine unchanged: every byte, time and name in its folder, whatever state its
// files are in, and they answer just as well if nothing may be written.
#include "RunCtl.h"

#include "app/ctl/Commands.h"
#include "audio/CartRecord.h"
#include "jet/Database.h"
#include "jet/sql/Execute.h"
#include "support/WithoutRights.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonObject>

#include <map>

#include <sys/stat.h>
#include <sys/wait.h>

namespace tolvex::tests {
namespace {

constexpr int recordLength = CartListRecordLength;

QByteArray cart(const QString& line1) {
    CartRecord record = MakeEmptyCartRecord(1, 2);
    record.Line1 = line1;
    record.Length = record.TotalLength = record.PlayEnd = record.PlayLength = 12;
    return QByteArray(EncodeCartRecord(record).data(), recordLength);
}

// Everything a user can see of a file or folder, including its contents.
using Snapshot = std::map<QString, QString>;

Snapshot snapshotOf(const QString& root) {
    Snapshot found;
    QDirIterator entries(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        // Users of a database enter themselves in its lock file, and leave it again.
        if (path.endsWith(QLatin1String(".ldb"), Qt::CaseInsensitive))
            continue;
        struct stat info {};
        ::lstat(QFile::encodeName(path).constData(), &info);
        QString state =
            QStringLiteral("mode %1 inode %2 links %3").arg(info.st_mode).arg(info.st_ino).arg(info.st_nlink);
        const bool hasLockFile =
            S_ISDIR(info.st_mode) && !QDir(path).entryList({"*.mdb"}, QDir::Files).isEmpty();
        if (!hasLockFile)
            state += QStringLiteral(" size %1 modified %2.%3 changed %4.%5")
                         .arg(info.st_size)
                         .arg(info.st_mtim.tv_sec)
                         .arg(info.st_mtim.tv_nsec)
                         .arg(info.st_ctim.tv_sec)
                         .arg(info.st_ctim.tv_nsec);
        if (S_ISREG(info.st_mode)) {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            QCryptographicHash hash(QCryptographicHash::Sha1);
            hash.addData(&file);
            state += ' ' + QString::fromLatin1(hash.result().toHex());
        }
        found[path.mid(root.size())] = state;
    }
    return found;
}

QString differences(const Snapshot& before, const Snapshot& after) {
    QString text;
    for (const auto& [path, state] : before)
        if (const auto now = after.find(path); now == after.end())
            text += path + " is gone\n";
        else if (now->second != state)
            text += path + "\n  was " + state + "\n  is  " + now->second + '\n';
    for (const auto& [path, state] : after)
        if (!before.count(path))
            text += path + " is new\n";
    return text;
}

struct Reading {
    QStringList words;
    int status;
};

const Reading readings[] = {
    {{"status"}, 0},
    {{"settings", "list"}, 0},
    {{"settings", "get", "AudioWall", "CartMinimumWidth"}, 0},
    {{"settings", "diff", "TOLVEX.INI", "TOLVEX.INI"}, 0},
    {{"settings", "export"}, 0},
    {{"settings", "import", "C:\\ALL.JSON", "--preview"}, 0},
    {{"profile", "get", "TOLVEX.INI", "FileLocations", "Data"}, 0},
    {{"profile", "getint", "TOLVEX.INI", "LinkMesh", "LinkMeshId"}, 0},
    {{"profile", "sections", "TOLVEX.INI"}, 0},
    {{"profile", "keys", "TOLVEX.INI", "FileLocations"}, 0},
    {{"registry", "list"}, 0},
    {{"registry", "get", "Software\\Norvane\\Tolvex", "Path"}, 0},
    {{"sets", "list"}, 0},
    {{"carts", "locations"}, 0},
    {{"carts", "list"}, 0},
    {{"carts", "list", "1-2500"}, 0},
    {{"carts", "show", "2"}, 0},   // before the tear
    {{"carts", "show", "3"}, 1},   // where the list is torn
    {{"carts", "show", "900"}, 1}, // where it ends
    {{"carts", "show", "1001"}, 0},
    {{"carts", "show", "2001"}, 1}, // in an empty file
    {{"carts", "show", "3001"}, 3}, // without a list
    {{"carts", "show", "4001"}, 0}, // in a list that is read-only
    {{"carts", "show", "5001"}, 3}, // in a list that is a folder
    {{"carts", "find", "o"}, 0},
    {{"carts", "find", "--notes", "--backwards", "three"}, 1}, // where the list is torn
    {{"carts", "check"}, 1},
    {{"automation", "show"}, 0},
    {{"automation", "list"}, 0},
    {{"automation", "settings", "list"}, 0},
    {{"automation", "settings", "C:\\DB\\LOG.mdb", "get", "KOVA.PreCueTime"}, 0},
    {{"audio", "devices"}, -1}, // whether the machine has any or not
    {{"audio", "show"}, 0},
    {{"audio", "formats"}, 0},
    {{"audio", "formats", "1"}, 0},
    {{"audio", "test", "9"}, 2},               // no such player
    {{"audio", "level", "--seconds", "0"}, 2}, // no time to measure
    {{"audiowall", "show"}, 0},
    {{"ripping", "show"}, 0},
    {{"transfers", "show"}, 0},
    {{"transfers", "list"}, 1}, // transfers are off
    {{"users", "list"}, 0},
    {{"users", "groups"}, 0},
    {{"users", "history"}, 0},
    {{"hardware", "list"}, 0},
    {{"terminals", "list"}, 0},
    {{"commands", "list"}, 0},
    {{"commands", "show", "Door"}, 0},
    {{"ports", "list"}, -1}, // whether the machine has any or not
    {{"remote", "access"}, 0},
    {{"clock", "test"}, 1},        // none is fitted
    {{"clock", "watch", "16"}, 3}, // on a port that is not there
    {{"db", "info", "C:\\DB\\LOG.mdb"}, 0},
    {{"db", "find", "C:\\DB", "--type", "14"}, 0},
    {{"db", "settings", "C:\\DB\\LOG.mdb", "list"}, 0},
    {{"db", "settings", "C:\\DB\\LOG.mdb", "get", "BeenSet"}, 0},
    {{"db", "tables", "C:\\DB\\LOG.mdb"}, 0},
    {{"db", "schema", "C:\\DB\\LOG.mdb"}, 0},
    {{"db", "export", "C:\\DB\\LOG.mdb", "Settings"}, 0},
    {{"db", "query", "C:\\DB\\LOG.mdb", "SELECT * FROM Settings"}, 0},
    {{"db", "check", "C:\\DB\\LOG.mdb"}, 0},
    {{"db", "info", "C:\\DB\\DAMAGED.mdb"}, 3},
    {{"db", "tables", "C:\\DB\\DAMAGED.mdb"}, 3},
    {{"db", "check", "C:\\DB\\DAMAGED.mdb"}, 3},
};

class CtlReading : public Ctl {
protected:
    // A station with files from an interrupted copy, a program that died, and an older version.
    void SetUp() override {
        ASSERT_EQ(run({"--yes", "--quiet", "autoconfig", "local"}).status, 0);
        ASSERT_EQ(run({"registry", "set", "Software\\Norvane\\Tolvex", "Path", "C:\\TOLVEX"}).status, 0);
        ASSERT_EQ(run({"hardware", "card", "1", "rs232", "1"}).status, 0);
        ASSERT_EQ(run({"commands", "add", "Door", "--udp", "127.0.0.1:9", "--text", "x"}).status, 0);
        ASSERT_EQ(run({"db", "create", "C:\\DB\\LOG.mdb", "--type", "14"}).status, 0);
        ASSERT_EQ(run({"db", "settings", "C:\\DB\\LOG.mdb", "set", "BeenSet", "1"}).status, 0);
        ASSERT_EQ(run({"settings", "export", "C:\\ALL.JSON"}).status, 0);
        write(list(1), cart("One") + cart("Two") + cart("Three").left(123));
        write(list(2), cart("Short"));
        write(list(3), {});
        ASSERT_TRUE(QFile::remove(list(4)));
        write(list(5), cart("Read-only").repeated(7));
        ASSERT_TRUE(QFile::remove(list(6)) && QDir().mkpath(list(6)));
        write(onC("TOLVEX/AUDIO/GLIC.Lst"), "hot");
        write(onC("TOLVEX/AUDIO/Audwall.ini"), "[Audiowall]\r\nVersion=2.5\r\n");
        const QString terminals = onC("TOLVEX/SYSTEM/Terminal.Lst");
        write(terminals, read(terminals).left(5 * 128 + 100));
        write(onC("DB/DAMAGED.mdb"), "This was a database." + QByteArray(8192, '\0'));
        dieWriting(onC("DB/LOG.mdb"));
        dieWriting(onC("TOLVEX/SYSTEM/USERS/USERS25.MDB"));
        ASSERT_EQ(::chmod(QFile::encodeName(list(5)).constData(), 0444), 0);
        // Others must be able to read it.
        ASSERT_EQ(::chmod(QFile::encodeName(folder_.path()).constData(), 0755), 0);
    }

    QString list(int part) const { return onC(QStringLiteral("TOLVEX/AUDIO/Carts%1.lst").arg(part)); }

    // A program that added a row and was killed: its commit is only in its log.
    static void dieWriting(const QString& database) {
        const pid_t child = ::fork();
        if (child == 0) {
            jet::Database open = jet::Database::open(database.toStdString());
            const bool log = database.endsWith(QLatin1String("LOG.mdb"));
            jet::Execute(open.catalog(), log ? u"INSERT INTO Settings (Item, [Value]) VALUES ('Late', '1')"
                                             : u"INSERT INTO Users (LoginName) VALUES ('LATE')");
            ::_exit(0);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
    }

    void expectStatus(const Reading& reading) {
        const Result result = run(reading.words);
        if (reading.status >= 0)
            EXPECT_EQ(result.status, reading.status) << reading.words.join(' ').toStdString() << '\n'
                                                     << result.err.toStdString();
        else
            EXPECT_LE(result.status, 1) << reading.words.join(' ').toStdString();
    }
};

// A reading command missing in the table above would not be tested.
TEST_F(CtlReading, EveryReadingCommandIsTried) {
    ctl::Output output(false, true);
    Workstation station;
    Session session(station);
    for (const ctl::Command& command : ctl::AllCommands()) {
        const ctl::Call call{command, output, session, station, {}, {}};
        if (command.changes && command.changes(call))
            continue;
        const QStringList words = QString::fromLatin1(command.words).split(' ');
        EXPECT_TRUE(std::any_of(std::begin(readings), std::end(readings), [&](const Reading& reading) {
            return reading.words.mid(0, words.size()) == words;
        })) << command.words;
    }
}

TEST_F(CtlReading, NothingChanges) {
    const Snapshot before = snapshotOf(home());
    ASSERT_GT(before.size(), 30U);
    for (const Reading& reading : readings) {
        expectStatus(reading);
        const QString changed = differences(before, snapshotOf(home()));
        ASSERT_TRUE(changed.isEmpty()) << reading.words.join(' ').toStdString() << ":\n"
                                       << changed.toStdString();
    }
    // The log of the program that died is valid, and stays for a program that may bring it into the file.
    EXPECT_EQ(run({"db", "settings", "C:\\DB\\LOG.mdb", "get", "Late"}).out, "1\n");
    EXPECT_TRUE(run({"users", "list"}).out.contains("LATE"));
    EXPECT_TRUE(QFile::exists(onC("DB/LOG.mdb-redo")));
    // Nobody is asked whether to repair a damaged database in passing.
    const Result damaged = run({"--yes", "db", "info", "C:\\DB\\DAMAGED.mdb"});
    EXPECT_TRUE(damaged.err.contains("Unrecognised database format")) << damaged.err.toStdString();
    EXPECT_FALSE(damaged.err.contains("compacting")) << damaged.err.toStdString();
}

// A command that changes something also changes only what it was asked to: an older audiowall waits for the
// window, with its lists unchanged.
TEST_F(CtlReading, AChangeChangesNothingElse) {
    for (const QStringList& words : {QStringList{"settings", "set", "Display", "ShowClock", "0"},
                                     {"settings", "export", folder_.filePath("all.json")}}) {
        const Snapshot before = snapshotOf(onC("TOLVEX/AUDIO"));
        EXPECT_EQ(run(words).status, 0);
        EXPECT_EQ(differences(before, snapshotOf(onC("TOLVEX/AUDIO"))), QString()) << words[1].toStdString();
    }
}

// A read-only machine gives the same answers.
TEST_F(CtlReading, AMachineThatMayNotBeWrittenIsReadAllTheSame) {
    const auto setWritable = [this](const char* rights) {
        EXPECT_EQ(start("chmod", {"-R", rights, home()}).status, 0);
    };
    setWritable("a-w,a+rX");
    EXPECT_TRUE(PassesWithoutRights([this] {
        for (const Reading& reading : readings)
            expectStatus(reading);
    }));
    setWritable("u+w");
}

TEST_F(CtlReading, TornAndShortListsAreReportedInWords) {
    const QByteArray torn =
        "C:\\TOLVEX\\AUDIO\\Carts1.lst is torn: 123 of 300 bytes of cart 3 are there, and "
        "is short: 2 of 1000 carts are there. \"tolvexctl carts repair\" mends it.";
    for (const QStringList& words :
         {QStringList{"carts", "show", "3"}, {"carts", "list", "1-5"}, {"carts", "locations"}, {"status"}})
        EXPECT_TRUE(run(words).err.contains(torn)) << words.join(' ').toStdString();
    EXPECT_EQ(run({"--quiet", "status"}).err, "");
    const QJsonArray locations = run({"--json", "status"}).json()["locations"].toArray();
    const char* states[] = {"torn", "short", "short", "missing", "short", "unreadable", "sound"};
    for (int part = 1; part <= 7; ++part)
        EXPECT_EQ(locations[part - 1]["list"], states[part - 1]) << part;
    EXPECT_EQ(locations[10]["list"], "");
    // To the suite a cart beyond the end of its list is an empty one.
    const Result beyond = run({"--json", "carts", "show", "900"});
    EXPECT_EQ(beyond.json()["empty"], true);
    EXPECT_EQ(beyond.json()["status"], 62);
    EXPECT_TRUE(run({"carts", "show", "4001"}).out.contains("Read-only"));
    EXPECT_TRUE(
        run({"carts", "show", "3001"}).err.contains("There is no list C:\\TOLVEX\\AUDIO\\Carts4.lst"));
    EXPECT_TRUE(run({"terminals", "list"})
                    .err.contains("Terminal.Lst is torn: 100 of 128 bytes of number 6 are there, and is "
                                  "short: 5 of 32 workstations"));
}

TEST_F(CtlReading, RepairKeepsTornBytesAndAsksForAListThatIsMissing) {
    QDir().rmdir(list(6));
    write(list(6), cart("Six").repeated(1000));
    const QJsonArray faults = run({"--json", "carts", "check"}).json()["faults"].toArray();
    QStringList kinds;
    for (const QJsonValue fault : faults)
        kinds += fault["kind"].toString() + QString::number(fault["part"].toInt());
    EXPECT_EQ(kinds.mid(0, 4), (QStringList{"torn1", "audio1", "audio1", "short2"}));
    EXPECT_TRUE(kinds.contains("missing4") && kinds.contains("double5") && !kinds.contains("short6"));

    const Result refused = run({"--no", "carts", "repair"});
    EXPECT_EQ(refused.status, 1) << "part 4 stays without a list";
    EXPECT_TRUE(refused.err.contains("Part 4 of the AudioWall has not been found."));
    EXPECT_FALSE(QFile::exists(list(4)));
    EXPECT_EQ(read(list(1) + ".torn"), cart("Three").left(123));
    const QJsonArray mended = run({"--json", "--yes", "carts", "repair"}).json().array();
    EXPECT_EQ(mended[0]["before"], "sound");
    EXPECT_EQ(mended[3]["before"], "missing");
    EXPECT_EQ(mended[3]["added"], 1000);
    EXPECT_EQ(mended.size(), 10);
    EXPECT_EQ(QDir(onC("TOLVEX/AUDIO")).entryList({"*.torn*"}).size(), 1);
    EXPECT_EQ(read(list(1)).left(2 * recordLength), cart("One") + cart("Two"));
    EXPECT_EQ(read(list(1)).size(), 1000 * recordLength);
    EXPECT_EQ(run({"carts", "show", "3"}).err, "");
    EXPECT_EQ(run({"carts", "repair"}).status, 0);
}

} // namespace
} // namespace tolvex::tests
