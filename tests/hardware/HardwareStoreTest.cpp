// The card table in the ini file: keys and their order, what goes and what stays, and all of it or nothing.
#include "hardware/HardwareStore.h"

#include "support/QtPrinters.h"

#include "hardware/FakeDriver.h"
#include "platform/HostFiles.h"
#include "platform/ProfileFile.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString ini = "TOLVEX.INI";
const QString iniPath = "C:\\WINDOWS\\TOLVEX.INI";

struct Station {
    TestMachine machine;
    ScriptedPrompts prompts;

    explicit Station(const QByteArray& bytes = {}) {
        platform::ForgetProfiles();
        ResetHardwareCards();
        if (!bytes.isEmpty())
            machine.write(iniPath, bytes);
        ReadHardwareSettings(ini);
    }
    QByteArray saved() {
        EXPECT_EQ(WriteHardwareSettings(ini), 0);
        return machine.read(iniPath);
    }
};

QByteArray lineKeys(int line, const QByteArray& type, const QByteArray& description, const QByteArray& action,
                    const QByteArray& first) {
    const QByteArray n = QByteArray::number(line);
    return "LineType" + n + "=" + type + "\r\nActiveLow" + n + "=0\r\nDescription" + n + "=" + description +
           "\r\nColor" + n + "=0\r\nAction" + n + "=" + action + "\r\nAction" + n + "Data1=" + first +
           "\r\nAction" + n + "Data2=0\r\nAction" + n + "Data3=0\r\nAction" + n + "Data4=0\r\n";
}

} // namespace

TEST(HardwareStore, WritesKeysInOrderAndReadsThemBack) {
    Station station;
    HardwareCard& card = HardwareCards()[2];
    card.CardType = CardRS232;
    card.BaseAddress = 3;
    HardwareLine& line = card.Lines[7];
    line = {0, -1, -1, -1, {}, "On Air Light", -2147483633, 3, {6, 240, -7, 2147483647}};
    card.Lines[2].Description = "  "; // an output without an action: dropped
    card.Lines[3].Action = 999;       // unknown, and kept
    card.Lines[3].LineType = 1;
    const QByteArray bytes = station.saved();
    EXPECT_EQ(bytes, "[Hardware2]\r\nCardType=3\r\nBaseAddress=3\r\n" + lineKeys(3, "1", "", "999", "0") +
                         "LineType7=0\r\nActiveLow7=-1\r\nDescription7=On Air Light\r\nColor7=-2147483633\r\n"
                         "Action7=3\r\nAction7Data1=6\r\nAction7Data2=240\r\nAction7Data3=-7\r\n"
                         "Action7Data4=2147483647\r\n");
    ResetHardwareCards();
    ReadHardwareSettings(ini);
    EXPECT_EQ(card.ComPort, 3);
    EXPECT_EQ(card.NumberLines, 8);
    EXPECT_EQ(line.OutputState, 0);
    EXPECT_EQ(line.ActiveLow, -1);
    EXPECT_EQ(line.Color, -2147483633);
    EXPECT_EQ(line.ActionData, (std::array<qint32, 4>{6, 240, -7, 2147483647}));
    EXPECT_EQ(card.Lines[2].LineType, 1);
    EXPECT_EQ(station.saved(), bytes);
    EXPECT_EQ(station.prompts.pointer(), platform::Pointer::Default);
}

TEST(HardwareStore, KeepsWhatIsNotItsOwnAndDropsWhatIsNotInUse) {
    // Line 9 is beyond the controller's eight, line 2 is not in use, line 101 is no line of any card.
    const QByteArray head = "; station 4\r\n[Audio]\r\nKHz=44100\r\n[Hardware1]\r\nCARDTYPE=3\r\n; wiring\r\n"
                            "BaseAddress=1\r\nNote=kept\r\n" +
                            lineKeys(1, "0", "Button", "1", "4");
    const QByteArray tail = "Action101=5\r\n[Hardware2]\r\nCardType=6\r\nAction1=1\r\n";
    const QByteArray gone = lineKeys(2, "0", "", "0", "4") + lineKeys(9, "1", "Lamp", "2", "1");
    Station station(head + gone + tail + "[Hardware3]\r\nCardType=0\r\nAction1=1\r\n");
    EXPECT_EQ(HardwareCards()[1].Lines[1].Action, 1);
    EXPECT_EQ(HardwareCards()[1].Lines[9].Action, 0);
    EXPECT_EQ(HardwareCards()[1].Lines[9].LineType, 0);
    EXPECT_EQ(HardwareCards()[2].CardType, 6);
    // A type that is not known keeps its section as it is; a disabled card loses its own.
    EXPECT_EQ(station.saved(), head + tail);
    HardwareCards()[1].CardType = CardDisabled;
    EXPECT_EQ(station.saved(),
              "; station 4\r\n[Audio]\r\nKHz=44100\r\n; wiring\r\n[Hardware2]\r\nCardType=6\r\n"
              "Action1=1\r\n");
    // An input that is not in use comes back as an output.
    EXPECT_EQ(HardwareCards()[1].Lines[2].LineType, 0);
}

TEST(HardwareStore, ReadsBrokenNumbersByTheirDefaults) {
    Station station("[Hardware1]\r\nCardType=3 (serial)\r\nBaseAddress=1.5\r\nLineType1=x\r\nLineType2=\r\n"
                    "LineType3=0x\r\nLineType4=-\r\nActiveLow1=zz\r\nAction1=IC\r\nColor1=12abc\r\n"
                    "Description1=" +
                    QByteArray(300, 'd') +
                    "\r\n[Hardware2]\r\nBaseAddress=99999\r\n[Hardware3]\r\nCardType=x\r\n");
    const HardwareCard& card = HardwareCards()[1];
    EXPECT_EQ(card.CardType, 3);
    EXPECT_EQ(card.BaseAddress, 2);
    EXPECT_EQ(card.Lines[1].LineType, 1);
    EXPECT_EQ(card.Lines[2].LineType, 1);
    EXPECT_EQ(card.Lines[3].LineType, 0);
    EXPECT_EQ(card.Lines[4].LineType, 1);
    EXPECT_EQ(card.Lines[1].ActiveLow, 0);
    EXPECT_EQ(card.Lines[1].Action, 0);
    EXPECT_EQ(card.Lines[1].Color, 12);
    EXPECT_EQ(card.Lines[1].Description.size(), 254);
    EXPECT_EQ(HardwareCards()[2].CardType, 0);
    EXPECT_EQ(HardwareCards()[2].BaseAddress, 32767);
    EXPECT_EQ(HardwareCards()[3].CardType, 0);
}

TEST(HardwareStore, AnAdvantechCardKeepsItsKeysWhileItsDriverIsAway) {
    FakeDriver driver;
    driver.addFixed(5, 10, 4);
    QByteArray bytes = "[Hardware1]\r\nCardType=4\r\nBaseAddress=5\r\n";
    for (const int line : {1, 12, 30})
        bytes += lineKeys(line, "1", "", "151", "1");
    {
        Station station(bytes);
        EXPECT_TRUE(station.prompts.asked.isEmpty());
        // The card says which lines are inputs, whatever the file says; line 30 is beyond its 14.
        EXPECT_EQ(HardwareCards()[1].Lines[1].LineType, 0);
        EXPECT_EQ(HardwareCards()[1].Lines[12].LineType, 1);
        EXPECT_EQ(HardwareCards()[1].Lines[30].Action, 0);
        EXPECT_FALSE(station.saved().contains("Action30"));
    }
    const NoDriver none;
    Station station(bytes);
    EXPECT_EQ(station.prompts.asked.size(), 1);
    EXPECT_EQ(HardwareCards()[1].Lines[12].LineType, 0);
    EXPECT_EQ(HardwareCards()[1].Lines[17].LineType, 1);
    EXPECT_EQ(station.saved(), QByteArray(bytes)
                                   .replace("LineType1=1\r\n", "LineType1=0\r\n")
                                   .replace("LineType12=1", "LineType12=0"));
    EXPECT_EQ(station.prompts.asked.size(), 2);
}

// Killed or failing at any step of the replacement, the file is the old one or the new one.
TEST(HardwareStore, AKillOrAFailureWhileSavingLeavesTheOldFileOrTheNewOne) {
    const QByteArray old =
        "[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\n" + lineKeys(1, "0", "Old", "1", "4");
    Station station(old);
    for (HardwareLine& line : HardwareCards()[1].Lines)
        line.Description = "New";
    HardwareCards()[2].CardType = CardJoystick;
    const QByteArray fresh = station.saved();
    ASSERT_NE(fresh, old);

    static int left;
    const auto run = [&](int calls, bool kill) {
        station.machine.write(iniPath, old);
        platform::ForgetProfiles();
        const pid_t child = ::fork();
        if (child == 0) {
            left = calls;
            static bool dies;
            dies = kill;
            static const auto stop = [] {
                if (left-- > 0)
                    return false;
                if (dies)
                    ::_exit(9);
                errno = ENOSPC;
                return true;
            };
            platform::hostCalls() = {
                [](int file, const void* bytes, size_t size) -> ssize_t {
                    return stop() ? -1 : ::write(file, bytes, size / 2 + 1); // in pieces
                },
                [](int file) { return stop() ? -1 : ::fsync(file); },
                [](const char* from, const char* to) { return stop() ? -1 : ::rename(from, to); }};
            ::_exit(WriteHardwareSettings(ini) == 0 ? 0 : 1);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        const QByteArray now = station.machine.read(iniPath);
        EXPECT_TRUE(now == old || now == fresh) << calls << now.toStdString();
        return WEXITSTATUS(status);
    };
    for (const bool kill : {true, false}) {
        int calls = 0;
        while (run(calls, kill) != 0)
            ASSERT_LT(++calls, 100);
        EXPECT_GT(calls, 3);
        EXPECT_EQ(station.machine.read(iniPath), fresh);
    }
}
