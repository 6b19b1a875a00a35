// The lock that keeps two programs from replacing one file on top of each other.
#include "platform/host/FileLock.h"
#include "platform/host/Replacement.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex::platform;

namespace {

// Runs `work` in a process of its own and returns its process number.
template<class Work>
pid_t inAnotherProcess(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

} // namespace

TEST(FileLock, IsHeldOnceAndLeavesNothingBehind) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("TOLVEX.INI");
    {
        const FileLock first(path);
        ASSERT_TRUE(first.held());
        const FileLock second(path, 0);
        EXPECT_FALSE(second.held());
        EXPECT_EQ(second.error(), PermissionDenied);
        EXPECT_TRUE(FileLock(folder.filePath("OTHER.INI"), 0).held());
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_TRUE(FileLock(path, 0).held());
}

TEST(FileLock, IsOneForAllNamesOfAFile) {
    const QTemporaryDir folder;
    ASSERT_EQ(ReplaceHostFile(folder.filePath("real.ini"), "x"), NoError);
    ASSERT_TRUE(QFile::link("real.ini", folder.filePath("link.ini")));
    const FileLock real(folder.filePath("real.ini"));
    EXPECT_FALSE(FileLock(folder.filePath("link.ini"), 0).held());
}

TEST(FileLock, SaysWhyItCannotBe) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QFile::link("round", folder.filePath("round")));
    EXPECT_EQ(FileLock(folder.filePath("missing/x.ini")).error(), PathNotFound);
    EXPECT_EQ(FileLock(folder.filePath("round")).error(), PathNotFound);
    EXPECT_EQ(FileLock(folder.filePath(QString(252, u'n'))).error(), BadFileNumber);
}

TEST(FileLock, IsFreeWhenItsHolderIsKilled) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("TOLVEX.INI");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = inAnotherProcess([&] {
        const FileLock lock(path);
        if (::write(ready[1], "x", 1) == 1)
            ::pause();
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(FileLock(path, 20).held());
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_TRUE(FileLock(path, 0).held());
}

TEST(FileLock, LosesNoChangeOfManyWriters) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("count");
    ASSERT_EQ(ReplaceHostFile(path, "0"), NoError);
    constexpr int writers = 4;
    constexpr int changes = 20;
    for (int writer = 0; writer < writers; ++writer)
        inAnotherProcess([&path] {
            for (int i = 0; i < changes; ++i) {
                const FileLock lock(path, 60000);
                const int before = ReadHostFile(path, 100).value_or("-1000").toInt();
                ReplaceHostFile(path, QByteArray::number(before + 1));
            }
        });
    for (int writer = 0; writer < writers; ++writer)
        ::wait(nullptr);
    EXPECT_EQ(ReadHostFile(path, 100), QByteArray::number(writers * changes));
}
