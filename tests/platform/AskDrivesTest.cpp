// Drives that do not answer: nobody waits for them longer than agreed, Stop works, and the program can end.
#include "platform/AskDrives.h"
#include "platform/Files.h"
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

class AskDrivesTest : public testing::Test {
protected:
    AskDrivesTest() {
        machine.addDrive(u'M', DriveType::Remote);
        machine.addDrive(u'N', DriveType::Remote);
        if (::mkfifo(QFile::encodeName(fifo).constData(), 0600) != 0)
            ADD_FAILURE() << "no pipe to hang on";
    }
    // Lets go of whoever hangs on the pipe.
    ~AskDrivesTest() override { ::close(::open(QFile::encodeName(fifo).constData(), O_RDWR)); }

    // Files' lengths; whatever is on drive M: keeps its asker in a system call that does not return.
    DriveQuestion withDeadM() const {
        return [name = QFile::encodeName(fifo)](const QString& path) -> qint64 {
            if (path[0].toUpper() == u'M')
                ::close(::open(name.constData(), O_RDONLY));
            return FileSize(path);
        };
    }
    DriveAnswers ask(const QStringList& paths, const DriveQuestion& question,
                     std::chrono::milliseconds patience) {
        return AskDrives(paths, question, *prompts.beginProgress("Search", true), patience);
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    const QString fifo = machine.path() + "/pipe";
};

} // namespace

TEST_F(AskDrivesTest, GivesWhatTheDrivesHold) {
    machine.write("C:\\TOLVEX\\Tlvx_Sys.ini", "12345");
    machine.write("N:\\CARTS1.lst", "123");
    machine.makeFolder("C:\\FOLDER");
    const DriveAnswers answers = ask(
        {"n:\\Carts1.LST", "C:\\tolvex\\TLVX_SYS.INI", "C:\\FOLDER", "C:\\NONE", "Q:\\NONE"}, FileSize, 10s);
    EXPECT_EQ(answers.values, (QHash<QString, qint64>{{"n:\\Carts1.LST", 3},
                                                      {"C:\\tolvex\\TLVX_SYS.INI", 5},
                                                      {"C:\\FOLDER", -1},
                                                      {"C:\\NONE", -1},
                                                      {"Q:\\NONE", -1}}));
    EXPECT_EQ(answers.unreachable, "");
    EXPECT_FALSE(answers.stopped);
}

TEST_F(AskDrivesTest, GivesUpADriveThatHangsAndAsksTheOthersMeanwhile) {
    machine.write("C:\\A", "1");
    machine.write("N:\\A", "12");
    const DriveAnswers answers = ask({"M:\\A", "m:\\B", "C:\\A", "N:\\A"}, withDeadM(), 300ms);
    EXPECT_EQ(answers.values, (QHash<QString, qint64>{{"C:\\A", 1}, {"N:\\A", 2}}));
    EXPECT_EQ(answers.unreachable, "M");
    EXPECT_FALSE(answers.stopped);
    EXPECT_GT(prompts.processed, 3) << "events ran while the dead drive was waited for";
}

TEST_F(AskDrivesTest, StopsWhenTheUserSaysSoWhateverADriveDoes) {
    machine.write("C:\\A", "1");
    prompts.progressGoesOn = {true, true, false};
    const DriveAnswers answers = ask({"M:\\A", "C:\\A"}, withDeadM(), 1h);
    EXPECT_TRUE(answers.stopped);
    EXPECT_EQ(answers.unreachable, "");
    EXPECT_FALSE(answers.values.contains("M:\\A"));
}

// The thread wakes up long after everybody has gone, and finds nothing of theirs to touch.
TEST_F(AskDrivesTest, ADriveThatAnswersTooLateDisturbsNobody) {
    EXPECT_EQ(ask({"M:\\A", "M:\\B"}, withDeadM(), 50ms).unreachable, "M");
    ::close(::open(QFile::encodeName(fifo).constData(), O_RDWR));
    EXPECT_EQ(ask({"N:\\A"}, withDeadM(), 10s).values.value("N:\\A"), -1);
}

TEST_F(AskDrivesTest, AHangingDriveKeepsNoProgramFromEnding) {
    EXPECT_EXIT(
        {
            ask({"M:\\A"}, withDeadM(), 50ms);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
