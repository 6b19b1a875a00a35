// In read-only mode every way to change a file fails and leaves no trace.
#include "platform/host/LookOnly.h"

#include "platform/files/FileCopy.h"
#include "platform/files/TempFile.h"
#include "platform/host/FileLock.h"
#include "platform/profile/ProfileFile.h"
#include "platform/registry/RegistryStore.h"
#include "support/MachineFolder.h"

#include <gtest/gtest.h>

using namespace tolvex::platform;
using tolvex::tests::TestMachine;

TEST(LookOnly, RefusesEveryChangeAndAllowsEveryLook) {
    TestMachine machine;
    const QByteArray record(300, 'r');
    machine.write("C:\\Data\\A.ini", "[s]\r\nk=1\r\n");
    machine.write("C:\\Data\\Carts1.lst", record);
    const auto names = [] {
        return FolderNames("C:\\") + FolderNames("C:\\WINDOWS") + FolderNames("C:\\Data") +
               FolderNames("Z:" + MachineFolder());
    };
    ASSERT_TRUE(QDir(machine.host("C:\\WINDOWS")).rmdir("TEMP"));
    const QStringList before = names();
    {
        const LookOnly outer;
        { const LookOnly inner; }
        EXPECT_TRUE(LookingOnly());
        machine.use();
        EXPECT_EQ(ReplaceWholeFile("C:\\Data\\A.ini", "x"), PathFileAccess);
        EXPECT_EQ(AppendToFile("C:\\Data\\A.ini", "x"), PathFileAccess);
        EXPECT_EQ(RemoveFile("C:\\Data\\A.ini"), PathFileAccess);
        EXPECT_EQ(RenameFile("C:\\Data\\A.ini", "C:\\Data\\B.ini"), PathFileAccess);
        EXPECT_EQ(CopyWholeFile("C:\\Data\\A.ini", "C:\\Data\\B.ini"), PathFileAccess);
        EXPECT_NE(CopyFileWithProgress("C:\\Data\\A.ini", "C:\\New\\B.ini", {}, true, true), ShellCopied);
        EXPECT_EQ(MakeFolder("C:\\New"), PathFileAccess);
        EXPECT_EQ(WriteProfileText("s", "k", "2", "C:\\Data\\A.ini"), ProfileAccessDenied);
        EXPECT_FALSE(RegistryWrite(LocalMachineHive, "Software\\X", "n", {RegistryType::Text, "v"}));
        int error = NoError;
        EXPECT_EQ(MakeTempFile("C:\\Data", "ABC", &error), QString());
        EXPECT_EQ(error, PathFileAccess);
        EXPECT_FALSE(FileLock(machine.host("C:\\Data\\A.ini")).held());
        const auto list = RecordFile::open("C:\\Data\\Carts1.lst", 300, true);
        ASSERT_TRUE(list);
        EXPECT_FALSE(list->writable());
        EXPECT_EQ(list->append(record, 1), PathFileAccess);
        EXPECT_EQ(list->count(), 1);
        EXPECT_FALSE(RecordFile::open("C:\\Data\\Carts2.lst", 300, true, &error));
        EXPECT_EQ(error, FileNotFound);
        EXPECT_EQ(ProfileText("s", "k", {}, "C:\\Data\\A.ini"), "1");
        EXPECT_EQ(names(), before);
        EXPECT_EQ(machine.read("C:\\Data\\A.ini"), "[s]\r\nk=1\r\n");
    }
    EXPECT_FALSE(LookingOnly());
    machine.use();
    EXPECT_TRUE(FolderExists("C:\\WINDOWS\\TEMP"));
    EXPECT_EQ(WriteProfileText("s", "k", "2", "C:\\Data\\A.ini"), ProfileOk);
}
