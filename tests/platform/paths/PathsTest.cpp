// How Windows paths map to this machine.
#include "TestPlaces.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/PathState.h"
#include "support/Age.h"
#include "support/MachineFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace tolvex::platform;
using tolvex::tests::TestMachine;

namespace {

class Paths : public testing::Test {
protected:
    QString inC(const QString& below) const { return machine.path() + "/dosdevices/c:" + below; }
    TestMachine machine;
};

} // namespace

TEST_F(Paths, ResolveWhatIsSpelledInAnyCaseAndTakeTheRestAsItStands) {
    machine.makeFolder("C:\\Tolvex\\System");
    machine.write("C:\\Tolvex\\System\\Tlvx_Sys.ini", "x");
    const struct {
        const char* path;
        const char* below;
    } cases[] = {
        {"C:\\Tolvex\\System\\Tlvx_Sys.ini", "/Tolvex/System/Tlvx_Sys.ini"},
        {"c:/TOLVEX/system\\TLVX_SYS.INI", "/Tolvex/System/Tlvx_Sys.ini"},
        {"C:\\TOLVEX\\SYSTEM. \\TLVX_SYS.INI ", "/Tolvex/System/Tlvx_Sys.ini"},
        {"\\\\?\\C:\\TOLVEX\\SYSTEM", "/Tolvex/System"},
        {"C:\\TOLVEX\\.\\USERS\\..\\SYSTEM\\", "/Tolvex/System"},
        {"C:\\TOLVEX\\Users\\USERS25.MDB", "/Tolvex/Users/USERS25.MDB"},
        {"C:", ""},
        {"C:\\", ""},
        {"\\tolvex", "/Tolvex"},
        {"C:\\..\\..\\..\\etc\\passwd", "/etc/passwd"},
        {"C:\\Tolvex\\..\\..\\..\\tolvex", "/Tolvex"},
        {"..\\..\\tolvex", "/Tolvex"},
    };
    for (const auto& [path, below] : cases)
        EXPECT_EQ(HostPath(path), inC(below)) << path;
}

TEST_F(Paths, AreEmptyWhereTheyLeadNowhere) {
    machine.link("n:", "/nowhere/at/all");
    machine.link("o:", "o:");
    machine.addShare("SERVER", "SHARE");
    for (const QString& path :
         {QString(), QString("Q:\\X"), QString("N:\\X"), QString("N:"), QString("O:\\X"), QString("\\\\"),
          QString("\\\\SERVER"), QString("\\\\SERVER\\"), QString("\\\\SERVER\\OTHER\\X"),
          QString("\\\\SERVER\\.."), QString("\\\\..\\..\\X"), QString("COM7"),
          QString("C:\\A") + QChar(0) + "B"})
        EXPECT_EQ(HostPath(path), QString()) << path.toStdString();
}

TEST_F(Paths, ReachSharesAndDevices) {
    machine.addShare("Studio", "Audio");
    machine.write("\\\\STUDIO\\AUDIO\\Carts1.lst", "x");
    machine.link("com1", "/dev/null");
    EXPECT_EQ(HostPath("//studio/audio/CARTS1.LST"),
              machine.path() + "/dosdevices/unc/Studio/Audio/Carts1.lst");
    EXPECT_EQ(HostPath("\\\\?\\UNC\\Studio\\Audio\\..\\..\\Other"),
              machine.path() + "/dosdevices/unc/Studio/Audio/Other");
    for (const char* name : {"COM1", "com1:", "\\\\.\\COM1"})
        EXPECT_EQ(HostPath(name), machine.path() + "/dosdevices/com1") << name;
    EXPECT_EQ(HostPath("C:\\COM1"), inC("/COM1"));
}

TEST_F(Paths, PreferTheExactSpellingOfTwoAtEveryLevel) {
    for (const char* name : {"Audio", "AUDIO", "audio"})
        ASSERT_TRUE(QDir().mkpath(inC("/") + name));
    ASSERT_TRUE(QFile(inC("/audio/Carts1.lst")).open(QIODevice::WriteOnly));
    EXPECT_EQ(HostPath("C:\\Audio"), inC("/Audio"));
    EXPECT_EQ(HostPath("C:\\audio\\CARTS1.LST"), inC("/audio/Carts1.lst"));
    EXPECT_EQ(HostPath("C:\\AUDIO\\CARTS1.LST"), inC("/AUDIO/CARTS1.LST"));
    EXPECT_EQ(HostPath("C:\\aUdIo"), inC("/AUDIO")); // no exact match: the first in byte order
}

TEST_F(Paths, NoticeWhatOtherProgramsChangeAtOnce) {
    const QString folder = inC("/Data");
    ASSERT_TRUE(QDir().mkpath(folder));
    for (int round = 0; round < 50; ++round) {
        // Now and then the folder is at rest, so that its listing is valid until it changes.
        if (round % 10 == 5)
            tolvex::tests::LetAge(folder);
        const QString name = QString("File%1.Lst").arg(round);
        EXPECT_EQ(HostPath("C:\\DATA\\" + name.toUpper()), folder + "/" + name.toUpper());
        ASSERT_TRUE(QFile(folder + "/" + name).open(QIODevice::WriteOnly));
        ASSERT_EQ(HostPath("C:\\DATA\\" + name.toUpper()), folder + "/" + name) << round;
        ASSERT_TRUE(QFile::rename(folder + "/" + name, folder + "/" + name.toLower()));
        ASSERT_EQ(HostPath("C:\\DATA\\" + name.toUpper()), folder + "/" + name.toLower()) << round;
    }
    ASSERT_TRUE(QDir().rename(folder, inC("/DaTa")));
    EXPECT_EQ(HostPath("C:\\data\\FILE1.LST"), inC("/DaTa/file1.lst"));
    // A drive whose link is changed to another place.
    machine.addDrive(u'M');
    machine.write("M:\\Old.txt", "x");
    EXPECT_TRUE(FileExists("m:\\OLD.TXT"));
    machine.removeDrive(u'M');
    EXPECT_EQ(HostPath("M:\\OLD.TXT"), QString());
    machine.link("m:", inC("/DaTa"));
    EXPECT_TRUE(FileExists("m:\\FILE1.LST"));
}

TEST_F(Paths, PutBareNamesWhereTheRuleSays) {
    EXPECT_EQ(HostPath("TOLVEX.INI", BareName::WindowsFolder), inC("/WINDOWS/TOLVEX.INI"));
    EXPECT_EQ(HostPath("TOLVEX.INI"), inC("/TOLVEX.INI"));
    EXPECT_EQ(HostPath("\\TOLVEX.INI", BareName::WindowsFolder), inC("/TOLVEX.INI"));
    machine.makeFolder("C:\\Work");
    machine.addDrive(u'D');
    ASSERT_TRUE(SetCurrentFolder("c:\\WORK"));
    EXPECT_EQ(HostPath("x\\y"), inC("/Work/x/y"));
    EXPECT_EQ(HostPath("C:x"), inC("/Work/x"));
    EXPECT_EQ(HostPath("\\x"), inC("/x"));
    EXPECT_EQ(HostPath("D:x"), machine.path() + "/dosdevices/d:/x");
    EXPECT_FALSE(SetCurrentFolder("C:\\Missing"));
    EXPECT_EQ(CurrentFolder(), "C:\\WORK");
    ASSERT_TRUE(SetCurrentFolder("D:"));
    EXPECT_EQ(CurrentFolder(), "D:\\");
}

TEST_F(Paths, TurnHostPathsBackByTheClosestDrive) {
    machine.addDrive(u'M');
    machine.addShare("Studio", "Audio");
    machine.makeFolder("M:\\Tolvex\\Audio");
    machine.link("u:", machine.host("M:\\Tolvex\\Audio"));
    for (const char* path : {"C:\\", "C:\\WINDOWS", "M:\\Tolvex", "M:\\New\\x.txt", "U:\\", "U:\\Carts1.lst",
                             "\\\\Studio\\Audio", "\\\\Studio\\Audio\\x", "Z:\\nowhere\\x"})
        EXPECT_EQ(WindowsPath(HostPath(path)), path);
    EXPECT_EQ(WindowsPath(HostPath("M:\\TOLVEX\\AUDIO\\x")), "U:\\x");
    EXPECT_EQ(WindowsPath("/"), "Z:\\");
    EXPECT_EQ(WindowsPath(QString()), QString());
}

// A network drive is not read for a path that cannot be on it: its server may be gone. Here a link on the
// drive leads out of it, which only a read would show.
TEST_F(Paths, TurnHostPathsBackWithoutAskingNetworkDrives) {
    const QString net = machine.path() + "/net drive";
    const QString outside = machine.path() + "/outside";
    for (const QString& folder : {net, outside})
        QDir().mkpath(folder + "/x");
    QFile::link(outside, net + "/inner");
    machine.link("m:", net + "/inner");
    machine.link("n:", "../net drive");
    EXPECT_EQ(WindowsPath(outside + "/x"), "M:\\x");
    const QByteArray table = "24 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                             "90 24 0:41 / " +
                             QByteArray(net.toUtf8()).replace(' ', "\\040") +
                             " rw shared:7 - nfs4 server:/audio rw\n";
    QFile file(machine.path() + "/mounts");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(table);
    file.close();
    pathState().mountTable = file.fileName().toUtf8();
    EXPECT_EQ(WindowsPath(outside + "/x"), "Z:" + QString(outside + "/x").replace('/', '\\'));
    EXPECT_EQ(WindowsPath(net + "/x"), "N:\\x");
}

TEST_F(Paths, HaveShortFormsThatLeadBackToTheSameFile) {
    const char* const names[] = {"Cutlane.exe",
                                 "A name that is long.text",
                                 "A name that is longer.text",
                                 "two.points.ini",
                                 "..config",
                                 "\xC3\xA4rger.ini",
                                 "a+b=c,d;[e].txt",
                                 "no extension at all"};
    for (const char* name : names)
        machine.write(QString("C:\\Program Files\\") + QString::fromUtf8(name), name);
    for (const char* name : names) {
        const QString brief = ShortPath(QString("C:\\PROGRAM FILES\\") + QString::fromUtf8(name));
        EXPECT_EQ(machine.read(brief), name) << brief.toStdString();
        EXPECT_EQ(ShortPath(brief), brief);
        for (const QString& part : brief.split('\\').mid(1)) {
            EXPECT_LE(part.section('.', 0, 0).size(), 8) << part.toStdString();
            EXPECT_LE(part.section('.', 1).size(), 3) << part.toStdString();
        }
    }
    EXPECT_EQ(ShortPath("C:\\WINDOWS\\SYSTEM32"), "C:\\WINDOWS\\SYSTEM32");
    EXPECT_EQ(ShortPath("C:\\missing"), QString());
    // A stored short path must mean the same file next year.
    EXPECT_EQ(ShortName("Program Files"), "PRO~JELO");
    // If a short form would mean two files, the later one keeps its name.
    const QString taken = ShortName("A name that is long.text");
    machine.write("C:\\Twice\\A name that is long.text", "long");
    ASSERT_TRUE(QFile(inC("/Twice/") + taken.toLower()).open(QIODevice::WriteOnly));
    EXPECT_EQ(machine.read(ShortPath("C:\\Twice\\A name that is long.text")), "long");
}

TEST_F(Paths, SurviveNamesThatNobodyWouldChoose) {
    const QString longName(5000, u'x');
    EXPECT_EQ(FileSize("C:\\" + longName), -1);
    EXPECT_EQ(MakeFolder("C:\\" + longName), BadFileNumber);
    EXPECT_FALSE(FolderExists("C:\\" + QString("deep\\").repeated(20000)));
    // A name that is not UTF-8 is skipped, not mangled.
    const QByteArray odd = QFile::encodeName(inC("/")) + "\xE9t\xE9";
    ASSERT_EQ(::mkdir(odd.constData(), 0700), 0);
    EXPECT_FALSE(FolderNames("C:\\").contains(QString::fromUtf8("\xE9t\xE9")));
    ::rmdir(odd.constData());
    ASSERT_EQ(::symlink("loop", QFile::encodeName(inC("/loop")).constData()), 0);
    EXPECT_EQ(ReplaceWholeFile("C:\\loop", "x"), PathNotFound);
    EXPECT_FALSE(FileExists("C:\\LOOP"));
}

TEST_F(Paths, KnowTheDrivesAndTheirTypes) {
    machine.addDrive(u'M', DriveType::Remote);
    machine.link("n:", "/nowhere/at/all");
    machine.link("q:", "/proc/self/status"); // a file is not a drive
    EXPECT_EQ(LogicalDrives(), 1U << 2 | 1U << 12 | 1U << 25);
    EXPECT_EQ(TypeOfDrive(u'c'), DriveType::Fixed);
    EXPECT_EQ(TypeOfDrive(u'm'), DriveType::Remote);
    EXPECT_EQ(TypeOfDrive(u'N'), DriveType::NoRoot);
    EXPECT_EQ(TypeOfDrive(u'?'), DriveType::NoRoot);
    machine.use();
    EXPECT_EQ(TypeOfDrive(u'm'), DriveType::Fixed);
}

TEST_F(Paths, KnowTheFoldersEveryMachineHas) {
    EXPECT_TRUE(FolderExists(WindowsFolder()));
    EXPECT_TRUE(FolderExists(SystemFolder()));
    EXPECT_TRUE(FolderExists(TempFolder()));
    EXPECT_EQ(SpecialFolderPath(0x26), "C:\\Program Files");
    EXPECT_EQ(SpecialFolderPath(0x2B), "C:\\Program Files\\Common Files");
    EXPECT_EQ(SpecialFolderPath(9999), QString());
    ASSERT_TRUE(QDir(machine.host("C:\\Program Files")).removeRecursively());
    EXPECT_EQ(SpecialFolderPath(0x26), QString());
    EXPECT_EQ(ApplicationFolder(), WindowsPath(TOLVEX_BIN_DIR));
}

TEST_F(Paths, FindWhatComesWithTheProgramBesideItOrInTheSharedDataOfItsInstallation) {
    SetApplicationFolder("C:\\Moved\\bin");
    EXPECT_EQ(ApplicationFile("help.chm"), "C:\\Moved\\bin\\help.chm") << "where it is missed";
    machine.write("C:\\Moved\\share\\tolvex\\help.chm", "x");
    EXPECT_EQ(ApplicationFile("help.chm"), "C:\\Moved\\share\\tolvex\\help.chm");
    machine.write("C:\\Moved\\bin\\help.chm", "x");
    EXPECT_EQ(ApplicationFile("help.chm"), "C:\\Moved\\bin\\help.chm") << "a station's own comes first";
    SetApplicationFolder("Z:\\");
    EXPECT_EQ(ApplicationFile("help.chm"), "Z:\\help.chm");
}

TEST(MachineFolders, ThatCannotBeUsedSayWhyAndLeaveTheOldOneInForce) {
    TestMachine machine;
    machine.write("C:\\file", "x");
    const QString file = machine.host("C:\\file");
    machine.link("old", "/nowhere/at/all");
    const QString prefix = machine.host("C:\\prefix");
    ASSERT_TRUE(QDir().mkpath(prefix + "/dosdevices"));
    ASSERT_TRUE(QFile::link("/nowhere/at/all", prefix + "/dosdevices/c:"));
    const QString round = machine.host("C:\\round");
    ASSERT_TRUE(QFile::link("round", round));
    for (const QString& folder : {file, file + "/below", machine.path() + "/dosdevices/old", round, prefix,
                                  QString("/proc/nobody/makes/this"), QString(5000, u'x')}) {
        QString why;
        EXPECT_FALSE(SetMachineFolder(folder, &why)) << folder.toStdString();
        EXPECT_TRUE(why.contains(QDir(folder).absolutePath()) && why.endsWith(u'.')) << why.toStdString();
        EXPECT_TRUE(FileExists("C:\\FILE"));
    }
}

TEST(MachineFolders, OfAnotherLayoutAreTakenAsTheyAre) {
    // As Wine makes them: lower-case folders; a drive C: that somebody moved; no drive Z:.
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath("elsewhere/windows/system32"));
    ASSERT_TRUE(QDir(folder.path()).mkpath("dosdevices"));
    ASSERT_TRUE(QFile::link("../elsewhere", folder.filePath("dosdevices/c:")));
    ASSERT_TRUE(SetMachineFolder(folder.path()));
    EXPECT_EQ(HostPath("TOLVEX.INI", BareName::WindowsFolder),
              folder.filePath("dosdevices/c:/windows/TOLVEX.INI"));
    EXPECT_EQ(LogicalDrives(), 4U);
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("drive_c")));
}

TEST(MachineFolders, ComeFromTheEnvironment) {
    const QTemporaryDir folder;
    qputenv("TOLVEX_HOME", QFile::encodeName(folder.filePath("home")));
    EXPECT_TRUE(SetMachineFolder({}));
    EXPECT_EQ(MachineFolder(), folder.filePath("home"));
    qunsetenv("TOLVEX_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath("data")));
    EXPECT_TRUE(SetMachineFolder({}));
    EXPECT_EQ(MachineFolder(), folder.filePath("data/tolvex"));
    EXPECT_TRUE(FolderExists("C:\\WINDOWS"));
    qunsetenv("XDG_DATA_HOME");
}
