// Programs, the clock, temporary files and facts about the machine.
#include "platform/process/Processes.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/files/TempFile.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tolvex::platform;
using tolvex::tests::ScriptedPrompts;
using tolvex::tests::TestMachine;

namespace {

class Processes : public testing::Test {
protected:
    void script(const QString& path, const QByteArray& text) {
        machine.write(path, text);
        ::chmod(machine.host(path).toUtf8().constData(), 0755);
    }
    // A pipe for the output of a program that nobody waits for.
    void pipe(const QString& path) const {
        ASSERT_EQ(::mkfifo(machine.host(path).toUtf8().constData(), 0600), 0);
    }
    // All its output, until its writer ends.
    QByteArray arrived(const QString& path) const {
        const int end = ::open(machine.host(path).toUtf8().constData(), O_RDONLY | O_NONBLOCK);
        QByteArray all;
        char bytes[4096];
        for (struct pollfd ready{end, POLLIN, 0}; ::poll(&ready, 1, 30'000) > 0;) {
            const ssize_t got = ::read(end, bytes, sizeof bytes);
            if (got == 0)
                break;
            all.append(bytes, std::max<ssize_t>(got, 0));
        }
        ::close(end);
        return all;
    }

    TestMachine machine;
    ScriptedPrompts prompts;
};

} // namespace

TEST_F(Processes, GetTheirArgumentsFolderAndMachineAndNothingElse) {
    script("C:\\TOLVEX\\show.sh",
           "#!/bin/sh\n{ pwd; echo $TOLVEX_HOME; for a in \"$@\"; do printf '[%s]\\n' \"$a\"; "
           "done; ls /proc/$$/fd | tr '\\n' ' '; "
           "echo; } > out\n");
    machine.makeFolder("C:\\Work");
    pipe("C:\\Work\\out");
    ASSERT_TRUE(SetCurrentFolder("C:\\Work"));
    // A file that a careless library left open for children, under a number that the script's shell does not
    // use itself.
    const int leak = ::fcntl(STDERR_FILENO, F_DUPFD, 200);
    ASSERT_GE(leak, 200);
    QString why;
    ASSERT_TRUE(StartProcess("\"c:\\tolvex\\SHOW.SH\"", "/NOPREVCHECK \"C:\\a b\\c\" C:\\X",
                             ProcessWait::None, 0, &why))
        << why.toStdString();
    ::close(leak);
    const QList<QByteArray> lines = arrived("C:\\Work\\out").split('\n');
    ASSERT_GE(lines.size(), 6);
    EXPECT_EQ(lines[0], QFileInfo(machine.host("C:\\Work")).canonicalFilePath().toUtf8());
    EXPECT_EQ(lines[1], machine.path().toUtf8());
    EXPECT_EQ(lines.mid(2, 3), QList<QByteArray>({"[/NOPREVCHECK]", "[C:\\a b\\c]", "[C:\\X]"}));
    EXPECT_FALSE(lines[5].contains(QByteArray::number(leak) + ' ')) << lines[5].toStdString();
}

TEST_F(Processes, GetEachArgumentEvenOneWithoutCharacters) {
    script("C:\\show.sh", "#!/bin/sh\nfor a in \"$@\"; do printf '[%s]\\n' \"$a\"; done > \"$0.out\"\n");
    const std::pair<const char*, const char*> cases[] = {
        {"a \"\" b", "[a]\n[]\n[b]\n"},
        {"\"\"", "[]\n"},
        {"  \"\"  \"\"", "[]\n[]\n"},
        {"", ""},
        {" \t", ""},
        {"/D=\"\" \"x y\"z", "[/D=]\n[x yz]\n"},
        {"say \"\"\"hello there\"\"\"", "[say]\n[\"hello there\"]\n"},
        {"\"\"\"\" b \"a\"\"c\" d", "[\"]\n[b]\n[a\"c]\n[d]\n"},
        {"\"not closed ", "[not closed ]\n"},
    };
    for (const auto& [arguments, expected] : cases) {
        ASSERT_TRUE(StartProcess("C:\\show.sh", arguments, ProcessWait::End, 20)) << arguments;
        EXPECT_EQ(machine.read("C:\\show.sh.out"), expected) << arguments;
    }
}

TEST_F(Processes, AreWaitedForWithEventsRunning) {
    script("C:\\slow.sh", "#!/bin/sh\nsleep 0.2\necho done > \"$1\"\nexit 3\n");
    const QString out = machine.host("C:\\slow.out");
    ASSERT_TRUE(StartProcess("C:\\slow.sh", out, ProcessWait::End, 60000));
    EXPECT_EQ(machine.read("C:\\slow.out"), "done\n");
    EXPECT_GE(prompts.processed, 3);
}

TEST_F(Processes, ThatCannotStartSayWhy) {
    machine.write("C:\\data.txt", "no program");
    machine.write("C:\\KOVA.EXE", QByteArray("MZ\x90\0", 4));
    ::chmod(machine.host("C:\\KOVA.EXE").toUtf8().constData(), 0755);
    const std::pair<const char*, const char*> cases[] = {
        {"", "not found"},           {"C:\\missing.exe", "not found"}, {"no-such-program-here", "not found"},
        {"C:\\data.txt", "may not"}, {"C:\\WINDOWS", "not found"},     {"C:\\KOVA", "Windows program"},
    };
    for (const ProcessWait wait : {ProcessWait::None, ProcessWait::IdleThenEnd})
        for (const auto& [program, reason] : cases) {
            QString why;
            EXPECT_FALSE(StartProcess(program, "", wait, 100, &why)) << program;
            EXPECT_TRUE(why.contains(reason) && why.contains(program)) << why.toStdString();
        }
    QString why;
    EXPECT_TRUE(StartProcess("true", "", ProcessWait::End, 100, &why)) << why.toStdString();
}

TEST_F(Processes, AndTheClockLetEventsRun) {
    const auto begin = std::chrono::steady_clock::now();
    tolvex::platform::clock().sleep(0.05);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
    EXPECT_GE(prompts.processed, 2);
    tolvex::platform::clock().sleep(-1);
    tolvex::platform::clock().sleep(std::numeric_limits<double>::quiet_NaN());
    EXPECT_LT(qAbs(tolvex::platform::clock().now().msecsTo(QDateTime::currentDateTime())), 60'000);
}

TEST_F(Processes, RunOnAMachineWithANameAndMemory) {
    EXPECT_FALSE(ComputerName().isEmpty());
    EXPECT_FALSE(ComputerName().contains(u'.'));
    EXPECT_EQ(ComputerName(), ComputerName().toUpper());
    EXPECT_GT(PhysicalMemory(), 1U << 24);
    SetPhysicalMemory(5);
    EXPECT_EQ(PhysicalMemory(), 5U);
    SetPhysicalMemory(0);
    EXPECT_EQ(OperatingSystem().platform, 2U);
}

TEST(TempFiles, AreNewEachTime) {
    TestMachine machine;
    QStringList made;
    const QRegularExpression pattern(R"(^C:\\WINDOWS\\TEMP\\TOL[0-9A-F]{4}\.TMP$)");
    for (int i = 0; i < 20; ++i) {
        const QString path = MakeTempFile(TempFolder(), "TOLVEX");
        EXPECT_TRUE(pattern.match(path).hasMatch()) << path.toStdString();
        EXPECT_EQ(FileSize(path), 0);
        EXPECT_FALSE(made.contains(path));
        made += path;
    }
    int error = 0;
    EXPECT_EQ(MakeTempFile("C:\\missing", "X", &error), QString());
    EXPECT_EQ(error, PathNotFound);
    EXPECT_EQ(MakeTempFile("C:\\", "?", &error), QString());
    EXPECT_EQ(error, BadFileNumber);
    EXPECT_TRUE(MakeTempFile("C:\\", "").startsWith("C:\\"));
}
