// Automatic configuration from a shell, on machines as they come.
#include "RunCtl.h"

#include "platform/Machine.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonObject>

namespace tolvex::tests {
namespace {

class CtlAutoConfig : public Ctl {
protected:
    // All files on drive C:, sorted.
    QStringList files() const {
        QStringList names;
        for (QDirIterator it(onC(""), QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            names += QDir(onC("")).relativeFilePath(it.next());
        names.sort();
        return names;
    }
    // The files of a station on a machine where one local folder holds everything.
    static QStringList everything() {
        QStringList names = {"TOLVEX/AUDIO/Audwall.ini",          "TOLVEX/AUDIO/GLIC.Lst",
                             "TOLVEX/SYSTEM/SCHEDULE/KOVA26.MDB", "TOLVEX/SYSTEM/Terminal.Lst",
                             "TOLVEX/SYSTEM/USERS/USERS25.MDB",   "WINDOWS/TOLVEX.INI"};
        for (int part = 1; part <= 10; ++part)
            names += QString("TOLVEX/AUDIO/Carts%1.lst").arg(part);
        names.sort();
        return names;
    }
    QString ini(const char* section, const char* key) const {
        return run({"profile", "get", "TOLVEX.INI", section, key}).out.trimmed();
    }
    int configure() const { return run({"--quiet", "autoconfig", "local"}).status; }
};

} // namespace

TEST_F(CtlAutoConfig, MakesAStationOfAnEmptyMachine) {
    const Result result = run({"--json", "autoconfig", "local"});
    EXPECT_EQ(result.status, 0);
    const QJsonObject made = result.json().object();
    EXPECT_EQ(made["dataLocation"], "C:\\TOLVEX\\SYSTEM");
    EXPECT_EQ(made["cartLocations"].toArray().size(), 11);
    EXPECT_EQ(made["linkMeshId"].toInt(), 1);
    EXPECT_EQ(made["items"].toArray().size(), 20);
    EXPECT_EQ(files(), everything());
    for (const char* folder : {"Logs", "Commands", "Scripts"})
        EXPECT_TRUE(QDir(onC("TOLVEX/SYSTEM/") + folder).exists()) << folder;
    EXPECT_EQ(QFileInfo(onC("TOLVEX/AUDIO/Carts10.lst")).size(), 999 * 300);
    EXPECT_EQ(read(onC("TOLVEX/SYSTEM/Terminal.Lst")).mid(30, 30).trimmed(),
              platform::ComputerName().toLatin1());
    for (const char* database : {"USERS/USERS25.MDB", "SCHEDULE/KOVA26.MDB"})
        EXPECT_EQ(run({"db", "check", onC("TOLVEX/SYSTEM/") + database}).status, 0) << database;
    const Result status = run({"--json", "status"});
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.json()["missing"].toArray(), QJsonArray());
    EXPECT_EQ(ini("KOVA", "DefaultDatabase"), "KOVA26.MDB");
    EXPECT_EQ(ini("AudioWall", "JumpDescription3"), "Music");
}

TEST_F(CtlAutoConfig, KeepsEverythingWhenItRunsAgain) {
    ASSERT_EQ(configure(), 0);
    QByteArray carts = read(onC("TOLVEX/AUDIO/Carts1.lst"));
    write(onC("TOLVEX/AUDIO/Carts1.lst"), carts.replace(300, 5, "A1234"));
    run({"terminals", "choose", "5"});
    run({"terminals", "rename", "2", "News"});
    const QByteArray terminals = read(onC("TOLVEX/SYSTEM/Terminal.Lst"));
    const QString automation = onC("TOLVEX/SYSTEM/SCHEDULE/KOVA26.MDB");
    run({"db", "settings", automation, "set", "KOVA.PreCueTime", "17"});
    run({"profile", "set", "TOLVEX.INI", "Own", "Key", "kept"});

    EXPECT_EQ(configure(), 0);
    EXPECT_EQ(files(), everything());
    EXPECT_EQ(read(onC("TOLVEX/AUDIO/Carts1.lst")), carts);
    EXPECT_EQ(read(onC("TOLVEX/SYSTEM/Terminal.Lst")), terminals);
    EXPECT_EQ(ini("LinkMesh", "LinkMeshId"), "5");
    EXPECT_EQ(ini("Own", "Key"), "kept");
    EXPECT_EQ(run({"db", "settings", automation, "get", "KOVA.PreCueTime"}).out, "17\n");

    // A machine that lost its settings finds the system again, and its number in it.
    QFile::remove(onC("WINDOWS/TOLVEX.INI"));
    write(onC("TOLVEX/SYSTEM/TLVX_SYS.INI"), "[X]\r\n");
    EXPECT_EQ(run({"autoconfig", "search", "--network-only"}).status, 1);
    EXPECT_EQ(run({"--no", "autoconfig", "search"}).status, 1);
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/TOLVEX.INI")));
    const Result found = run({"--yes", "autoconfig", "search"});
    EXPECT_EQ(found.status, 0);
    EXPECT_TRUE(found.err.contains("Tolvex data has been found in: \n\n C:\\TOLVEX\\SYSTEM\n"));
    EXPECT_EQ(ini("LinkMesh", "LinkMeshId"), "5");
    EXPECT_EQ(read(onC("TOLVEX/AUDIO/Carts1.lst")), carts);
}

TEST_F(CtlAutoConfig, CompletesWhatAKillInterrupted) {
    for (const char* seconds : {"0.004", "0.008", "0.012", "0.02", "0.04"})
        shell(QString("timeout -s KILL %1 $ctl autoconfig local </dev/null").arg(seconds));
    EXPECT_EQ(configure(), 0);
    // A partial file left by a kill, if any, lies beside under a name of its own.
    for (const QString& file : everything())
        EXPECT_TRUE(QFile::exists(onC(file))) << file.toStdString();
    EXPECT_EQ(run({"status"}).status, 0);
}

TEST_F(CtlAutoConfig, TellsWhatAFullDiskLeftUndoneAndCompletesItLater) {
    // No file can exceed 100 KB: neither the cart lists nor the databases fit.
    const Result full = shell("trap '' XFSZ; ulimit -f 100; $ctl --quiet autoconfig local </dev/null");
    EXPECT_EQ(full.status, 3);
    EXPECT_TRUE(full.err.contains("This could not be made:"));
    EXPECT_TRUE(full.out.contains("missing: C:\\TOLVEX\\AUDIO\\Carts1.lst")) << full.out.toStdString();
    EXPECT_EQ(configure(), 0);
    EXPECT_EQ(files(), everything());
}

TEST_F(CtlAutoConfig, TellsADatabaseThatIsThereButDamaged) {
    EXPECT_EQ(configure(), 0);
    QFile::resize(onC("TOLVEX/SYSTEM/USERS/USERS25.MDB"), 5000);
    const Result damaged = run({"--yes", "autoconfig", "local"});
    EXPECT_EQ(damaged.status, 3);
    EXPECT_TRUE(damaged.err.contains("USERS25.MDB could not be opened.")) << damaged.err.toStdString();
}

TEST_F(CtlAutoConfig, ChangesNothingWithoutAPlaceOrWithoutConsent) {
    EXPECT_EQ(run({"--no", "autoconfig", "local"}).status, 1);
    EXPECT_EQ(run({"--no", "autoconfig", "network"}).status, 1);
    write(onC("TOLVEX/AUDIO"), "a file stands where the folder should be");
    const Result result = run({"--yes", "autoconfig", "local"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.err.contains("C:\\TOLVEX\\AUDIO"));
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/TOLVEX.INI")));
    // Network drives that do not exist.
    EXPECT_EQ(run({"--yes", "autoconfig", "network"}).status, 3);
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/TOLVEX.INI")));
    for (const char* drive : {"m:", "u:"})
        QDir().mkpath(home() + "/dosdevices/" + drive);
    EXPECT_EQ(run({"--yes", "autoconfig", "network"}).status, 0);
    EXPECT_TRUE(QFile::exists(home() + "/dosdevices/m:/Terminal.Lst"));
    EXPECT_EQ(ini("FileLocations", "Carts1"), "U:");
}

} // namespace tolvex::tests
