// Drives that do not answer: the wait is limited, Stop works, and the program can end.
#include "platform/paths/DriveAsker.h"
#include "platform/files/Files.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <QFile>

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tolvex::platform;
using namespace tolvex::tests;
using namespace std::chrono_literals;

namespace {

class DriveAskerTest : public testing::Test {
protected:
    DriveAskerTest() {
        machine.addDrive(u'M', DriveType::Remote);
        machine.addDrive(u'N', DriveType::Remote);
        if (::mkfifo(QFile::encodeName(fifo).constData(), 0600) != 0)
            ADD_FAILURE() << "no pipe to hang on";
    }
    ~DriveAskerTest() override { release(); }
    // Releases the thread that is blocked on the pipe.
    void release() const { ::close(::open(QFile::encodeName(fifo).constData(), O_RDWR)); }

    // Lengths of files; on drive M: each question blocks in a system call that does not return.
    DriveQuestion withDeadM() const {
        return [name = QFile::encodeName(fifo)](const QString& path) -> qint64 {
            if (path[0].toUpper() == u'M')
                ::close(::open(name.constData(), O_RDONLY));
            return FileSize(path);
        };
    }
    TestMachine machine;
    ScriptedPrompts prompts;
    const std::unique_ptr<Progress> progress = prompts.beginProgress("Search", true);
    const QString fifo = machine.path() + "/pipe";
};

} // namespace

TEST_F(DriveAskerTest, GivesWhatTheDrivesHold) {
    machine.write("C:\\TOLVEX\\Tlvx_Sys.ini", "12345");
    machine.write("N:\\CARTS1.lst", "123");
    machine.makeFolder("C:\\FOLDER");
    DriveAsker asker;
    EXPECT_EQ(asker.ask({"n:\\Carts1.LST", "C:\\tolvex\\TLVX_SYS.INI", "C:\\FOLDER", "C:\\NONE", "Q:\\NONE"},
                        FileSize, *progress),
              (DriveAsker::Answers{{"n:\\Carts1.LST", 3},
                                   {"C:\\tolvex\\TLVX_SYS.INI", 5},
                                   {"C:\\FOLDER", -1},
                                   {"C:\\NONE", -1},
                                   {"Q:\\NONE", -1}}));
    // Changes made meanwhile are seen.
    machine.write("C:\\NONE", "1");
    EXPECT_EQ(asker.ask({"C:\\NONE"}, FileSize, *progress), (DriveAsker::Answers{{"C:\\NONE", 1}}));
    EXPECT_EQ(asker.unreachable(), "");
}

TEST_F(DriveAskerTest, GivesUpADriveThatHangsAndAsksTheOthersMeanwhile) {
    machine.write("C:\\A", "1");
    machine.write("N:\\A", "12");
    DriveAsker asker(300ms);
    EXPECT_EQ(asker.ask({"M:\\A", "m:\\B", "C:\\A", "N:\\A"}, withDeadM(), *progress),
              (DriveAsker::Answers{{"C:\\A", 1}, {"N:\\A", 2}}));
    EXPECT_EQ(asker.unreachable(), "M");
    EXPECT_GT(prompts.processed, 3) << "events ran while the dead drive was waited for";
    // It is not asked again, even if it returns.
    release();
    EXPECT_EQ(asker.ask({"M:\\A", "C:\\A"}, FileSize, *progress), (DriveAsker::Answers{{"C:\\A", 1}}));
}

TEST_F(DriveAskerTest, StopsWhenTheUserSaysSoWhateverADriveDoes) {
    machine.write("C:\\A", "1");
    prompts.progressGoesOn = {true, true, false};
    DriveAsker asker(1h);
    EXPECT_FALSE(asker.ask({"M:\\A", "C:\\A"}, withDeadM(), *progress));
    EXPECT_TRUE(prompts.progressGoesOn.empty());
    EXPECT_EQ(asker.unreachable(), "");
    // The drive's late answer to that question is not used for a later one.
    release();
    EXPECT_EQ(asker.ask(
                  {"M:\\A", "M:\\B"}, [](const QString&) { return qint64{7}; }, *progress),
              (DriveAsker::Answers{{"M:\\A", 7}, {"M:\\B", 7}}));
}

// The thread wakes up long after everybody has gone, and touches nothing of theirs.
TEST_F(DriveAskerTest, ADriveThatAnswersTooLateDisturbsNobody) {
    EXPECT_EQ(DriveAsker(50ms).ask({"M:\\A", "M:\\B"}, withDeadM(), *progress), DriveAsker::Answers());
    release();
    EXPECT_EQ(DriveAsker().ask({"N:\\A"}, withDeadM(), *progress), (DriveAsker::Answers{{"N:\\A", -1}}));
}

TEST_F(DriveAskerTest, AHangingDriveKeepsNoProgramFromEnding) {
    EXPECT_EXIT(
        {
            DriveAsker(50ms).ask({"M:\\A"}, withDeadM(), *progress);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
