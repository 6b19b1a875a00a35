// Files by Windows path: what a failure leaves behind, and its error number.
#include "platform/files/FileCopy.h"
#include "platform/host/HostFiles.h"
#include "platform/posix/HostCalls.h"
#include "support/MachineFolder.h"
#include "support/OtherWorkstation.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tolvex::platform;
using tolvex::tests::TestMachine;

namespace {

// Everything in drive C:'s root except the standard folders, including hidden names.
QStringList leftIn(const TestMachine& machine) {
    QStringList names =
        QDir(machine.host("C:\\")).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    return names;
}

class Files : public testing::Test {
protected:
    ~Files() override { RestoreHostCalls(); }
    TestMachine machine;
};

// The number of the call to fail, among those that make bytes durable; counts down.
int callsUntilFailure = 0;
int failure = 0;
bool failsNow() {
    if (--callsUntilFailure != 0)
        return false;
    errno = failure;
    return true;
}

} // namespace

TEST_F(Files, AreOldOrNewWheneverAWriteFlushOrRenameFails) {
    machine.write("C:\\Tolvex.ini", "old");
    hostCalls() = {
        [](int file, const void* bytes, size_t size) -> ssize_t {
            return failsNow() ? -1 : ::write(file, bytes, size > 2 ? size / 2 : size); // a bit at a time
        },
        [](int file) { return failsNow() ? -1 : ::fsync(file); },
        [](const char* from, const char* to) { return failsNow() ? -1 : ::rename(from, to); },
    };
    failure = ENOSPC;
    int failures = 0;
    for (int call = 1;; ++call) {
        callsUntilFailure = call;
        const int error = ReplaceWholeFile("C:\\TOLVEX.INI", "new bytes");
        if (callsUntilFailure > 0) {
            EXPECT_EQ(error, NoError);
            break;
        }
        ++failures;
        EXPECT_EQ(leftIn(machine), QStringList("Tolvex.ini"));
        const QByteArray now = machine.read("C:\\Tolvex.ini");
        EXPECT_EQ(now, error == DiskFull ? "old" : "new bytes");
        EXPECT_TRUE(error == DiskFull || error == DeviceIoError) << error;
    }
    EXPECT_EQ(failures, 4 + 1 + 1 + 1); // writes, flush, rename, flush of the folder
    EXPECT_EQ(machine.read("C:\\Tolvex.ini"), "new bytes");
}

TEST_F(Files, KeepModeAndLinkWhenReplaced) {
    machine.write("C:\\Real.ini", "old");
    const QByteArray real = HostName(machine.host("C:\\Real.ini"));
    ::chmod(real.constData(), 0640);
    ASSERT_TRUE(QFile::link("Real.ini", machine.host("C:\\") + "/Link.ini"));
    ASSERT_EQ(ReplaceWholeFile("C:\\LINK.INI", "new"), NoError);
    struct stat info {};
    ASSERT_EQ(::stat(real.constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640U);
    EXPECT_EQ(machine.read("C:\\Real.ini"), "new");
    EXPECT_TRUE(QFileInfo(machine.host("C:\\Link.ini")).isSymLink());
}

// Two programs use the same name at the same moment: one gets it, and the other's file keeps its own.
TEST_F(Files, AreNeverReplacedByARename) {
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        machine.write("C:\\a.txt", "a");
        machine.write("C:\\b.txt", "b");
        const tolvex::tests::StartingGun gun;
        const auto renames = [&](const char* from) {
            return [&gun, from] {
                gun.wait();
                return RenameFile(from, "C:\\c.txt") == NoError;
            };
        };
        const tolvex::tests::OtherWorkstation one(renames("C:\\a.txt"));
        const tolvex::tests::OtherWorkstation two(renames("C:\\b.txt"));
        gun.fire();
        const int done = one.wentWell() + two.wentWell();
        EXPECT_EQ(done, 1);
        EXPECT_EQ(leftIn(machine).size(), 2);
        RemoveFile("C:\\c.txt");
    }
}

TEST_F(Files, NameTheirErrors) {
    machine.write("C:\\a.txt", "a");
    machine.write("C:\\b.txt", "b");
    machine.makeFolder("C:\\Folder\\Below");
    machine.link("n:", "/nowhere/at/all");
    machine.addDrive(u'P');
    machine.link("com1", "/dev/full");
    ASSERT_TRUE(QFile::link("/nowhere/at/all", machine.host("C:\\") + "/Dangling"));
    machine.addShare("SERVER", "GONE");
    ASSERT_TRUE(QDir(machine.host("\\\\SERVER\\GONE")).removeRecursively()); // a share that vanished

    EXPECT_EQ(RemoveFile("C:\\missing"), FileNotFound);
    EXPECT_EQ(RemoveFile("C:\\missing\\x"), PathNotFound);
    EXPECT_EQ(RemoveFile("C:\\FOLDER"), PathFileAccess);
    EXPECT_EQ(RemoveFile("N:\\x"), PathNotFound);
    EXPECT_EQ(RenameFile("C:\\a.txt", "C:\\B.TXT"), FileAlreadyExists);
    EXPECT_EQ(RenameFile("C:\\a.txt", "C:\\what?"), BadFileNumber);
    EXPECT_EQ(RenameFile("C:\\missing", "C:\\x"), FileNotFound);
    EXPECT_EQ(MakeFolder("C:\\FOLDER"), PathFileAccess);
    EXPECT_EQ(MakeFolder("C:\\a.txt"), PathFileAccess);
    EXPECT_EQ(MakeFolder("C:\\a.txt\\x"), PathNotFound);
    EXPECT_EQ(MakeFolder("C:\\missing\\x"), PathNotFound);
    EXPECT_EQ(MakeFolder("C:\\Dangling"), PathFileAccess);
    EXPECT_EQ(MakeFolder("C:\\Dangling\\x"), PathNotFound);
    EXPECT_EQ(ReplaceWholeFile("C:\\Dangling\\x", "x"), PathNotFound);
    EXPECT_EQ(ReplaceWholeFile("\\\\SERVER\\GONE\\x", "x"), PathNotFound);
    EXPECT_EQ(AppendToFile("\\\\SERVER\\GONE\\x", "x"), PathNotFound);
    EXPECT_FALSE(FolderExists("C:\\Dangling") || FolderExists("\\\\SERVER\\GONE"));
    EXPECT_EQ(MakeFolder("C:\\a|b"), BadFileNumber);
    EXPECT_EQ(MakeFolder(""), BadFileNumber);
    EXPECT_EQ(ReplaceWholeFile("C:\\Folder", "x"), PathFileAccess);
    EXPECT_EQ(ReplaceWholeFile("C:\\missing\\x", "x"), PathNotFound);
    EXPECT_EQ(ReplaceWholeFile("COM1", "x"), PathFileAccess); // a device is never replaced by a file
    EXPECT_EQ(AppendToFile("C:\\Folder", "x"), PathFileAccess);
    EXPECT_EQ(AppendToFile("COM1", "x"), PathFileAccess);
    EXPECT_EQ(CopyWholeFile("C:\\a.txt", "C:\\A.TXT"), PathFileAccess);
    EXPECT_EQ(CopyWholeFile("C:\\Folder", "C:\\x"), PathFileAccess);
    EXPECT_EQ(CopyWholeFile("C:\\missing", "C:\\b.txt"), FileNotFound);
    EXPECT_EQ(machine.read("C:\\a.txt"), "a");
    EXPECT_EQ(machine.read("C:\\b.txt"), "b");
    EXPECT_EQ(ReadWholeFile("C:\\Folder"), std::nullopt);
    EXPECT_EQ(ReadWholeFile("C:\\a.txt", 0), std::nullopt);

    EXPECT_EQ(FileSize("C:\\A.TXT"), 1);
    EXPECT_EQ(FileSize("C:\\Folder"), -1);
    EXPECT_EQ(FileSize("C:\\missing"), -1);
    EXPECT_TRUE(FolderExists("C:") && FolderExists("c:/folder/") && !FolderExists("C:\\a.txt"));
    EXPECT_TRUE(FileExists("C:\\A.TXT") && !FileExists("C:\\Folder") && !FileExists("N:\\x"));
    EXPECT_EQ(FolderNames("C:\\"),
              QStringList({"a.txt", "b.txt", "Dangling", "Folder", "Program Files", "WINDOWS"}));
}

TEST_F(Files, AreRenamedInCaseAndAcrossDisks) {
    machine.write("C:\\carts1.lst", "x");
    ASSERT_EQ(RenameFile("C:\\CARTS1.LST", "C:\\Carts1.Lst"), NoError);
    EXPECT_EQ(leftIn(machine), QStringList("Carts1.Lst"));
    hostCalls().rename = [](const char* from, const char* to) {
        if (QByteArray(from).contains(".tolvex-"))
            return ::rename(from, to);
        errno = EXDEV;
        return -1;
    };
    machine.addDrive(u'D');
    ASSERT_EQ(RenameFile("C:\\CARTS1.LST", "D:\\Carts1.lst"), NoError);
    EXPECT_EQ(machine.read("D:\\Carts1.lst"), "x");
    EXPECT_EQ(leftIn(machine), QStringList());
}

TEST_F(Files, TakeBackALineThatDidNotFit) {
    ASSERT_EQ(AppendToFile("C:\\Debug.log", "first\r\n"), NoError);
    ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit old {};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const struct rlimit full { 10, old.rlim_max };
    ::setrlimit(RLIMIT_FSIZE, &full);
    const int appended = AppendToFile("C:\\Debug.log", "second\r\n");
    const int replaced = ReplaceWholeFile("C:\\Debug.log", "something longer");
    const int copied = CopyWholeFile("Z:\\proc\\self\\exe", "C:\\Debug.log");
    ::setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(appended, DiskFull);
    EXPECT_EQ(replaced, DiskFull);
    EXPECT_EQ(copied, DiskFull);
    EXPECT_EQ(machine.read("C:\\Debug.log"), "first\r\n");
    EXPECT_EQ(leftIn(machine), QStringList("Debug.log"));
}

TEST_F(Files, AreCopiedWithTheirTimeAllOrNothing) {
    const QByteArray big(700'000, 'b');
    machine.write("C:\\Big.ini", big);
    machine.write("C:\\Old.ini", "old");
    QFile source(machine.host("C:\\Big.ini"));
    ASSERT_TRUE(source.open(QIODevice::ReadWrite));
    const QDateTime time(QDate(2001, 2, 3), QTime(4, 5, 6));
    ASSERT_TRUE(source.setFileTime(time, QFileDevice::FileModificationTime));
    source.close();

    QList<qint64> steps;
    bool stopped = false;
    const auto stopAtThird = [&steps](qint64 done, qint64 total) {
        EXPECT_EQ(total, 700'000);
        steps += done;
        return steps.size() < 3;
    };
    EXPECT_EQ(CopyInSteps("C:\\Big.ini", "C:\\OLD.INI", stopAtThird, &stopped), NoError);
    EXPECT_TRUE(stopped);
    EXPECT_EQ(steps, QList<qint64>({0, 262144, 524288}));
    EXPECT_EQ(machine.read("C:\\Old.ini"), "old");
    EXPECT_EQ(leftIn(machine), QStringList({"Big.ini", "Old.ini"}));

    EXPECT_EQ(CopyWholeFile("C:\\BIG.INI", "C:\\OLD.INI"), NoError);
    EXPECT_EQ(machine.read("C:\\Old.ini"), big);
    EXPECT_EQ(FileModified("C:\\Old.ini"), time);
}

TEST_F(Files, AreCopiedAsTheShellDoesIt) {
    tolvex::tests::ScriptedPrompts shell;
    machine.write("C:\\a.ini", "a");
    EXPECT_EQ(
        CopyFileWithProgress("C:\\A.INI", "C:\\New\\Deep\\b.ini", "Copying Configuration", false, false), 0);
    EXPECT_EQ(shell.progressTitles, QStringList("Copying Configuration"));
    EXPECT_EQ(machine.read("C:\\New\\Deep\\b.ini"), "a");
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\New", "", true, true), 0);
    EXPECT_EQ(machine.read("C:\\New\\a.ini"), "a");

    machine.write("C:\\b.ini", "b");
    shell.answers = {Answer::No, Answer::Yes, Answer::Yes};
    shell.progressGoesOn = {false};
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\b.ini", "", false, true), ShellCancelled);
    EXPECT_TRUE(shell.texts().value(0).contains("C:\\b.ini"));
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\b.ini", "", false, false), ShellCancelled);
    EXPECT_EQ(machine.read("C:\\b.ini"), "b");
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\b.ini", "", false, true), 0);
    EXPECT_EQ(machine.read("C:\\b.ini"), "a");

    EXPECT_EQ(CopyFileWithProgress("C:\\missing.ini", "C:\\b.ini", "", true, true), 2);
    EXPECT_EQ(CopyFileWithProgress("C:\\New", "C:\\x", "", true, true), 5);
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\b.ini\\x", "", true, true), 3);
    EXPECT_EQ(CopyFileWithProgress("C:\\a.ini", "C:\\*.ini", "", true, true), 123);
}
