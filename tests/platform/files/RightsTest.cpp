// Errors for a user without rights. If the tests' user has all rights, they run as somebody else.
#include "platform/files/Files.h"
#include "platform/host/FileLock.h"
#include "platform/host/HostFiles.h"
#include "support/MachineFolder.h"
#include "support/WithoutRights.h"

#include <sys/stat.h>

using namespace tolvex::platform;
using tolvex::tests::PassesWithoutRights;
using tolvex::tests::TestMachine;

TEST(Rights, ThatAreMissingGiveAnErrorAndChangeNothing) {
    TestMachine machine;
    const auto mode = [&machine](const QString& path, mode_t bits) {
        ASSERT_EQ(::chmod(HostName(machine.host(path)).constData(), bits), 0);
    };
    machine.write("C:\\Data\\ReadOnly.ini", "kept");
    machine.write("C:\\Data\\Secret.ini", "secret");
    machine.write("C:\\Open\\ReadOnly.ini", "kept");
    machine.write("C:\\Unlisted\\Here.ini", "here");
    machine.write("C:\\Carts1.lst", QByteArray(600, 'r'));
    ASSERT_EQ(::chmod(HostName(machine.path()).constData(), 0755), 0);
    mode("C:\\Data\\ReadOnly.ini", 0444);
    mode("C:\\Data\\Secret.ini", 0000);
    mode("C:\\Data", 0555);
    mode("C:\\Open\\ReadOnly.ini", 0444);
    mode("C:\\Open", 0777);
    mode("C:\\Unlisted", 0111);
    mode("C:\\Carts1.lst", 0444);

    EXPECT_TRUE(PassesWithoutRights([&machine] {
        machine.use(); // the machine folder itself need not be writable
        EXPECT_EQ(ReplaceWholeFile("C:\\Data\\ReadOnly.ini", "x"), PathFileAccess);
        EXPECT_EQ(ReplaceWholeFile("C:\\Data\\New.ini", "x"), PathFileAccess);
        // The folder would allow it; the file does not.
        EXPECT_EQ(ReplaceWholeFile("C:\\Open\\ReadOnly.ini", "x"), PathFileAccess);
        EXPECT_EQ(AppendToFile("C:\\Data\\ReadOnly.ini", "x"), PathFileAccess);
        EXPECT_EQ(CopyWholeFile("C:\\Data\\Secret.ini", "C:\\Open\\x"), PathFileAccess);
        EXPECT_EQ(CopyWholeFile("C:\\Data\\ReadOnly.ini", "C:\\Data\\x"), PathFileAccess);
        EXPECT_EQ(RemoveFile("C:\\Data\\ReadOnly.ini"), PathFileAccess);
        EXPECT_EQ(RenameFile("C:\\Data\\ReadOnly.ini", "C:\\Open\\x"), PathFileAccess);
        EXPECT_EQ(MakeFolder("C:\\Data\\New"), PathFileAccess);
        EXPECT_EQ(FileLock(machine.host("C:\\Data\\ReadOnly.ini")).error(), PathFileAccess);
        EXPECT_EQ(FileSize("C:\\Data\\Secret.ini"), -1);
        EXPECT_EQ(FileSize("C:\\Data\\READONLY.INI"), 4);
        EXPECT_EQ(ReadWholeFile("C:\\Data\\Secret.ini"), std::nullopt);
        // Names in a folder that may not be listed are found by their exact spelling.
        EXPECT_EQ(FolderNames("C:\\Unlisted"), QStringList());
        EXPECT_EQ(FileSize("C:\\UNLISTED\\Here.ini"), 4);

        int error = -1;
        const auto file = RecordFile::open("C:\\CARTS1.LST", 300, true, &error);
        EXPECT_EQ(error, NoError);
        if (!file)
            return;
        QByteArray record(300, 'x');
        EXPECT_FALSE(file->writable());
        EXPECT_EQ(file->write(1, record.constData()), PathFileAccess);
        EXPECT_EQ(file->append(record, 1), PathFileAccess);
        EXPECT_EQ(file->read(2, record.data()), NoError);
        EXPECT_EQ(record, QByteArray(300, 'r'));
        EXPECT_EQ(RecordFile::open("C:\\Data\\New.lst", 300, true, &error), nullptr);
        EXPECT_EQ(error, PathFileAccess);

        QString why;
        EXPECT_FALSE(SetMachineFolder(machine.host("C:\\Data") + "/home", &why));
        EXPECT_TRUE(why.contains("/home") && why.contains("ermission denied")) << why.toStdString();
    }));
    EXPECT_EQ(machine.read("C:\\Data\\ReadOnly.ini"), "kept");
    EXPECT_EQ(machine.read("C:\\Open\\ReadOnly.ini"), "kept");
    mode("C:\\Data", 0755);
    mode("C:\\Unlisted", 0755);
}
