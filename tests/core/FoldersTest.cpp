#include "core/report/Folders.h"

#include "core/report/DebugLog.h"
#include "core/text/PathNames.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

class Folders : public ::testing::Test {
protected:
    tests::TestMachine machine;
    tests::ScriptedPrompts prompts;
};

} // namespace

TEST_F(Folders, ADriveAndAShareAreFoundWithoutTheirBackslash) {
    machine.addShare(QStringLiteral("SERVER"), QStringLiteral("AUDIO"));
    machine.addDrive(u'M', platform::DriveType::Remote);
    machine.makeFolder(QStringLiteral("M:\\Data Files"));
    machine.write(QStringLiteral("M:\\File"), "x");
    for (const char* there : {"C:", "c:\\", "M:", "M:\\DATA FILES", "m:\\data files\\", "\\\\SERVER\\AUDIO",
                              "\\\\server\\audio\\"})
        EXPECT_TRUE(DirectoryExists(QLatin1String(there))) << there;
    for (const char* missing :
         {"", "Q:", "M:\\Nowhere", "M:\\File", "\\\\SERVER\\VIDEO", "\\\\OTHER\\AUDIO", "\\\\"})
        EXPECT_FALSE(DirectoryExists(QLatin1String(missing))) << missing;
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(Folders, TheSearchIsLoggedWithThePathThatIsSearched) {
    tests::FixedClock clock(QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)));
    const qint32 level = -1;
    const DebugLogging log(level);
    DirectoryExists(QStringLiteral("C:"));
    const QStringList logs = platform::FolderNames(QStringLiteral("C:\\DebugFiles"));
    ASSERT_EQ(logs.size(), 1);
    EXPECT_EQ(machine.read(QStringLiteral("C:\\DebugFiles\\") + logs[0]),
              "03:04:05 Start DirectoryExists\r\n03:04:05 Call Dir(C:\\, vbDirectory)\r\n"
              "03:04:05 End DirectoryExists (True)\r\n");
}

TEST_F(Folders, CreatePathMakesAllParentsOfADriveAndOneFolderOfAShare) {
    machine.addShare(QStringLiteral("SERVER"), QStringLiteral("AUDIO"));
    platform::SetCurrentFolder(QStringLiteral("C:\\WINDOWS"));
    EXPECT_TRUE(CreatePath(QStringLiteral("C:\\A\\B C\\D")));
    EXPECT_TRUE(DirectoryExists(QStringLiteral("C:\\A\\B C\\D")));
    EXPECT_TRUE(CreatePath(QStringLiteral("c:\\a\\b c\\d\\")));
    EXPECT_TRUE(CreatePath(QStringLiteral("C:")));
    EXPECT_TRUE(CreatePath(QStringLiteral("\\\\SERVER\\AUDIO\\X")));
    EXPECT_TRUE(CreatePath(QStringLiteral("\\\\SERVER\\AUDIO\\X")));
    EXPECT_EQ(platform::CurrentFolder(), "C:\\WINDOWS");
    EXPECT_TRUE(prompts.asked.isEmpty());

    EXPECT_FALSE(CreatePath(QStringLiteral("\\\\SERVER\\AUDIO\\Y\\Z")));
    machine.write(QStringLiteral("C:\\FILE"), "x");
    EXPECT_FALSE(CreatePath(QStringLiteral("C:\\FILE\\SUB")));
    EXPECT_FALSE(CreatePath(QStringLiteral("Q:\\X")));
    EXPECT_FALSE(CreatePath(QString()));
    EXPECT_FALSE(CreatePath(QStringLiteral("Q:\\X"), true));
    const QStringList texts = prompts.texts();
    ASSERT_EQ(texts.size(), 4);
    EXPECT_EQ(texts[0], "You must manually create the path : \\\\SERVER\\AUDIO\\Y\\Z");
    EXPECT_EQ(texts[1],
              "There was a problem While Attempting to Create Directories on Destination Drive. and the "
              "error's description was reported as : \n\n\"Path not found\" (76)");
    EXPECT_TRUE(texts[2].endsWith("\"Device unavailable\" (68)"));
    EXPECT_EQ(prompts.pointer(), platform::Pointer::Default);
}

TEST_F(Folders, LengthsAndFreeNames) {
    machine.write(QStringLiteral("C:\\EMPTY"), "");
    machine.write(QStringLiteral("C:\\TEN.TXT"), "0123456789");
    EXPECT_EQ(FileLength(QStringLiteral("C:\\EMPTY")), 0);
    EXPECT_EQ(FileLength(QStringLiteral("C:\\TEN.TXT")), 10);
    EXPECT_EQ(FileLength(QStringLiteral("C:\\NONE")), -1);
    EXPECT_EQ(FileLength(QStringLiteral("C:\\WINDOWS")), -1);

    const QString name = TempFileName(QStringLiteral("C:\\"), QStringLiteral("a bcd"), QStringLiteral("MDB"));
    EXPECT_TRUE(name.startsWith("C:\\ABC")) << name.toStdString();
    EXPECT_TRUE(name.endsWith(".MDB")) << name.toStdString();
    EXPECT_FALSE(machine.exists(name));
    EXPECT_TRUE(TempFileName({}, QStringLiteral("x")).startsWith(platform::TempFolder()));
    EXPECT_EQ(TempFileName(QStringLiteral("C:\\NOWHERE"), QStringLiteral("x")), QString());
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.startsWith("Error getting a temporary file name :"));
    EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Stop);

    prompts.folders = {QStringLiteral("C:\\"), QString::fromLatin1("D:\\X\0junk", 9), std::nullopt};
    EXPECT_EQ(BrowseForFolder(QStringLiteral("p"), {}), "C:");
    EXPECT_EQ(BrowseForFolder(QStringLiteral("p"), {}), "D:\\X");
    EXPECT_EQ(BrowseForFolder(QStringLiteral("p"), {}), QString());
}

TEST_F(Folders, FoldersOfADataLocation) {
    CreateDataDirectories({});
    CreateDataDirectories(QStringLiteral("C:\\SYSTEM"));
    for (const char* name : {"USERS", "SCHEDULE", "Logs", "Commands", "Scripts"})
        EXPECT_TRUE(machine.exists(QStringLiteral("C:\\SYSTEM\\") + QLatin1String(name))) << name;
    EXPECT_TRUE(prompts.asked.isEmpty());

    // A data location that cannot hold folders: stops at the first one.
    CreateDataDirectories(QStringLiteral("Q:\\SYSTEM"));
    EXPECT_EQ(prompts.asked.size(), 1);
    prompts.forget();
    // A folder that cannot be made does not prevent those after it.
    machine.addShare(QStringLiteral("S"), QStringLiteral("X"));
    machine.link(QStringLiteral("unc/S/X/Commands"), QStringLiteral("/nowhere/at/all"));
    CreateDataDirectories(QStringLiteral("\\\\S\\X"));
    EXPECT_EQ(prompts.texts(),
              (QStringList{"You must manually create the path : \\\\S\\X\\Commands",
                           "There was a problem while creating the Commands directory in \\\\S\\X"}));
    EXPECT_TRUE(machine.exists(QStringLiteral("\\\\S\\X\\Scripts")));
}

TEST(PathNames, PartsOfAPath) {
    struct Case {
        const char* path;
        const char* file;
        const char* folder;
        const char* stem;
    };
    const Case cases[] = {
        {"C:\\A.B\\FILE", "FILE", "C:\\A.B", "C:\\A.B\\FILE"},
        {"C:\\A\\FILE.X.INI", "FILE.X.INI", "C:\\A", "C:\\A\\FILE.X"},
        {"C:/A\\B/F.T", "F.T", "C:/A\\B", "C:/A\\B/F"},
        {"TOLVEX.INI", "TOLVEX.INI", "", "TOLVEX"},
        {"\\TLVX_SYS.INI", "TLVX_SYS.INI", "", "\\TLVX_SYS"},
        {"C:\\A\\", "", "C:\\A", "C:\\A\\"},
        {"", "", "", ""},
    };
    for (const Case& c : cases) {
        const QString path = QLatin1String(c.path);
        EXPECT_EQ(FileNameOf(path), QLatin1String(c.file)) << c.path;
        EXPECT_EQ(FolderOf(path), QLatin1String(c.folder)) << c.path;
        EXPECT_EQ(PathWithoutExtension(path), QLatin1String(c.stem)) << c.path;
    }
    EXPECT_EQ(FolderOf(QStringLiteral("C:\\A\\B"), true), "C:\\A\\");
    EXPECT_EQ(WithoutTrailingBackslash(QStringLiteral("C:\\A\\\\")), "C:\\A\\");
}
