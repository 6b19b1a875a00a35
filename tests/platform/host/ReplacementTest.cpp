// Files replaced as a whole, and what a writer that died leaves beside them.
#include "platform/host/Replacement.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex::platform;

namespace {

class ReplacementTest : public testing::Test {
protected:
    QString path(const QString& name) const { return folder_.filePath(name); }
    QStringList beside() const {
        return QDir(folder_.path()).entryList({".tolvex-*"}, QDir::AllEntries | QDir::Hidden | QDir::System);
    }
    QByteArray read(const QString& name) const { return ReadHostFile(path(name), 1 << 20).value_or("none"); }
    // A process that dies between writing and renaming.
    void dieWhileWriting(const QString& name) const {
        const pid_t child = ::fork();
        if (child == 0) {
            Replacement replacement(path(name));
            replacement.write("half", 4);
            ::raise(SIGKILL);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
    }

    QTemporaryDir folder_;
};

} // namespace

TEST_F(ReplacementTest, RemovesWhatADeadWriterLeftAndNothingElse) {
    ASSERT_EQ(ReplaceHostFile(path("kept.txt"), "kept"), NoError);
    ASSERT_TRUE(QFile::link(path("kept.txt"), path(".tolvex-7-1.new")));
    ASSERT_TRUE(QDir(folder_.path()).mkdir(".tolvex-7-2.new"));
    dieWhileWriting("a.ini");
    ASSERT_EQ(beside().size(), 3);
    dieWhileWriting("b.ini"); // it removed the first one's before it died itself
    ASSERT_EQ(beside().size(), 3);
    ASSERT_EQ(ReplaceHostFile(path("c.ini"), "c"), NoError);
    EXPECT_EQ(beside(), QStringList({".tolvex-7-1.new", ".tolvex-7-2.new"}));
    EXPECT_EQ(read("kept.txt"), "kept");
    EXPECT_EQ(read("a.ini"), "none");
}

TEST_F(ReplacementTest, LeavesALivingWriterAloneUntilItsFileHasItsName) {
    Replacement ours(path("a.ini"));
    ours.write("a", 1);
    int ready[2];
    int go[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(go), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        Replacement theirs(path("b.ini"));
        theirs.write("b", 1);
        char one = theirs.prepare() == NoError ? 'y' : 'n';
        const bool told = ::write(ready[1], &one, 1) == 1 && ::read(go[0], &one, 1) == 1;
        ::_exit(told && theirs.commit() == NoError ? 0 : 1);
    }
    char one = 0;
    ASSERT_EQ(::read(ready[0], &one, 1), 1);
    ASSERT_EQ(ReplaceHostFile(path("c.ini"), "c"), NoError);
    EXPECT_EQ(beside().size(), 2);
    ASSERT_EQ(ours.prepare(), NoError);
    ASSERT_EQ(ReplaceHostFile(path("d.ini"), "d"), NoError);
    EXPECT_EQ(ours.commit(), NoError);
    ASSERT_EQ(::write(go[1], &one, 1), 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read("a.ini") + read("b.ini") + read("c.ini") + read("d.ini"), "abcd");
    EXPECT_EQ(beside(), QStringList());
    for (const int end : {ready[0], ready[1], go[0], go[1]})
        ::close(end);
}

// In a container every start may have the same process number.
TEST_F(ReplacementTest, TakesAnotherNameWhereADeadProcessOfItsNumberLeftOne) {
    QString name;
    {
        const Replacement first(path("a.ini"));
        name = beside().value(0);
    }
    const QString start = name.section('-', 0, 1);
    const int number = name.section('-', 2).section('.', 0, 0).toInt();
    for (int next = number + 1; next < number + 20; ++next) // folders cannot be removed
        ASSERT_TRUE(QDir(folder_.path()).mkdir(start + '-' + QString::number(next) + ".new"));
    EXPECT_EQ(ReplaceHostFile(path("a.ini"), "a"), NoError);
    EXPECT_EQ(read("a.ini"), "a");
}

TEST_F(ReplacementTest, ManyWritersInOneFolderAllSucceed) {
    constexpr int writers = 4;
    constexpr int rounds = 150;
    QList<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = ::fork();
        if (child == 0) {
            bool good = true;
            for (int round = 0; round < rounds; ++round)
                good = good && ReplaceHostFile(path(QString::number(writer)), QByteArray::number(round)) == 0;
            ::_exit(good ? 0 : 1);
        }
        children += child;
    }
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int writer = 0; writer < writers; ++writer)
        EXPECT_EQ(read(QString::number(writer)), QByteArray::number(rounds - 1));
    EXPECT_EQ(beside(), QStringList());
}
