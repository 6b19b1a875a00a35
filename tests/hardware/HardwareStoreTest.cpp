// The card table in the ini file: keys and their order, what is removed and what stays, all of it or nothing.
#include "hardware/HardwareStore.h"

#include "support/QtPrinters.h"

#include "hardware/FakeDriver.h"
#include "hardware/LineEdits.h"
#include "platform/host/HostFiles.h"
#include "platform/posix/HostCalls.h"
#include "platform/profile/ProfileFile.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <optional>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString ini = "TOLVEX.INI";
const QString iniPath = "C:\\WINDOWS\\TOLVEX.INI";

struct Station {
    TestMachine machine;
    ScriptedPrompts prompts;
    HardwareCardTable cards;

    explicit Station(const QByteArray& bytes = {}) {
        platform::ForgetProfiles();
        if (!bytes.isEmpty())
            machine.write(iniPath, bytes);
        ReadHardwareSettings(cards, ini);
    }
    QByteArray saved() {
        EXPECT_EQ(WriteHardwareSettings(cards, ini), 0);
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
    HardwareCard& card = station.cards[2];
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
    station.cards = {};
    ReadHardwareSettings(station.cards, ini);
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
    // Line 9 is beyond the controller's eight, line 2 is not in use, line 101 exists on no card.
    const QByteArray head = "; station 4\r\n[Audio]\r\nKHz=44100\r\n[Hardware1]\r\nCARDTYPE=3\r\n; wiring\r\n"
                            "BaseAddress=1\r\nNote=kept\r\n" +
                            lineKeys(1, "0", "Button", "1", "4");
    const QByteArray tail = "Action101=5\r\n[Hardware2]\r\nCardType=6\r\nAction1=1\r\n";
    const QByteArray gone = lineKeys(2, "0", "", "0", "4") + lineKeys(9, "1", "Lamp", "2", "1");
    Station station(head + gone + tail + "[Hardware3]\r\nCardType=0\r\nAction1=1\r\n");
    EXPECT_EQ(station.cards[1].Lines[1].Action, 1);
    EXPECT_EQ(station.cards[1].Lines[9].Action, 0);
    EXPECT_EQ(station.cards[1].Lines[9].LineType, 0);
    EXPECT_EQ(station.cards[2].CardType, 6);
    // An unknown type keeps its section unchanged; a disabled card loses its own.
    EXPECT_EQ(station.saved(), head + tail);
    station.cards[1].CardType = CardDisabled;
    EXPECT_EQ(station.saved(),
              "; station 4\r\n[Audio]\r\nKHz=44100\r\n; wiring\r\n[Hardware2]\r\nCardType=6\r\n"
              "Action1=1\r\n");
    // An unused input reads back as an output.
    EXPECT_EQ(station.cards[1].Lines[2].LineType, 0);
}

TEST(HardwareStore, ReadsBrokenNumbersByTheirDefaults) {
    Station station("[Hardware1]\r\nCardType=3 (serial)\r\nBaseAddress=1.5\r\nLineType1=x\r\nLineType2=\r\n"
                    "LineType3=0x\r\nLineType4=-\r\nActiveLow1=zz\r\nAction1=IC\r\nColor1=12abc\r\n"
                    "Description1=" +
                    QByteArray(300, 'd') +
                    "\r\n[Hardware2]\r\nBaseAddress=99999\r\n[Hardware3]\r\nCardType=x\r\n");
    const HardwareCard& card = station.cards[1];
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
    EXPECT_EQ(station.cards[2].CardType, 0);
    EXPECT_EQ(station.cards[2].BaseAddress, 32767);
    EXPECT_EQ(station.cards[3].CardType, 0);
}

TEST(HardwareStore, AnAdvantechCardKeepsItsKeysWhileItsDriverFails) {
    FakeDriver driver;
    driver.addFixed(5, 40, 24);
    driver.boards[6].features = {39, 0, 0};
    const auto stored = [](int device, std::initializer_list<int> lines) {
        QByteArray bytes = "[Hardware1]\r\nCardType=4\r\nBaseAddress=" + QByteArray::number(device) + "\r\n";
        for (const int line : lines)
            bytes += lineKeys(line, line > 40 ? "1" : "0", "", "151", "1");
        return bytes;
    };
    {
        // The card determines which lines are inputs, whatever the file says, and how many there are.
        Station station(stored(5, {1, 40, 64, 65}).replace("LineType1=0", "LineType1=1"));
        EXPECT_TRUE(station.prompts.asked.isEmpty());
        EXPECT_EQ(station.cards[1].Lines[40].LineType, 0);
        EXPECT_EQ(station.cards[1].Lines[41].LineType, 1);
        EXPECT_EQ(station.cards[1].Lines[65].Action, 0);
        EXPECT_EQ(station.saved(), stored(5, {1, 40, 64}));
    }
    const QByteArray bytes = stored(5, {1, 17, 32, 33, 64, 100});
    for (const char* failing : {"features", "close", "no driver"}) {
        driver.failing = failing;
        const bool away = driver.failing == "no driver";
        std::optional<NoDriver> none;
        if (away)
            none.emplace();
        Station station(bytes);
        EXPECT_EQ(station.prompts.asked.size(), 1) << failing;
        EXPECT_EQ(station.saved(), bytes) << failing;
        EXPECT_EQ(station.prompts.asked.size(), 2) << failing;
        if (!away)
            continue;
        // Changes made meanwhile are stored, without unknown types.
        EXPECT_EQ(station.cards[1].Lines[16].LineType, 0);
        EXPECT_EQ(station.cards[1].Lines[17].LineType, 1);
        station.cards[1].Lines[17].Action = 0;
        station.cards[1].Lines[18].Action = 2;
        station.cards[1].Lines[64].Description = "Lamp";
        const QByteArray set = station.saved();
        EXPECT_TRUE(set.contains("LineType17=0")) << set.toStdString();
        EXPECT_FALSE(set.contains("Action17"));
        EXPECT_TRUE(set.contains("Action18=2"));
        EXPECT_FALSE(set.contains("LineType18"));
        EXPECT_TRUE(set.contains("Description64=Lamp"));
        EXPECT_TRUE(set.contains("Action100=151"));
    }
    driver.failing = "portModes";
    const QByteArray byPort = stored(6, {1, 40});
    EXPECT_EQ(Station(byPort).saved(), byPort);
    // Missing while the table is read, present when it is written.
    driver.failing.clear();
    {
        std::optional<NoDriver> none(std::in_place);
        Station station(bytes);
        none.reset();
        const QByteArray back = station.saved();
        EXPECT_TRUE(back.contains("Action64=151"));
        EXPECT_FALSE(back.contains("Action100"));
    }
}

TEST(HardwareStore, ADescriptionIsReadAsItWasSet) {
    Station station("[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\n");
    const CardLines lines{station.cards[1], *FindCardType(CardRS232), 8};
    const auto with = [](const QString& text) {
        HardwareLine line;
        line.Description = text;
        return line;
    };
    const QString umlauts = QString::fromUtf8("Ätherlampe – „rot“ €");
    for (const QString& text :
         QStringList{QString(254, u'x'), "\"Go\"", "\"\"", "'Go'", "\"" + QString(251, u'x') + "\"", "\"",
                     "\"Go\" button", "a; b = c", "[x]", umlauts}) {
        EXPECT_EQ(SetLine(lines, 4, with(text)), "") << text.toStdString();
        station.saved();
        ReadHardwareSettings(station.cards, ini);
        EXPECT_EQ(station.cards[1].Lines[4].Description, text) << text.toStdString();
    }
    const struct {
        QString text;
        const char* why;
    } refused[] = {{QString(255, u'x'), "has 255 characters; at most 254"},
                   {"\"" + QString(252, u'x') + "\"", "has 254 characters; at most 253"},
                   {"two\nlines", "a character that the file cannot hold"},
                   {QString::fromUtf8("Studio Łódź"), "a character that the file cannot hold"}};
    for (const auto& [text, why] : refused) {
        EXPECT_TRUE(SetLine(lines, 4, with(text)).contains(why)) << why;
        EXPECT_EQ(station.cards[1].Lines[4].Description, umlauts);
    }
}

// All three sections are written as one replacement of the file.
TEST(HardwareStore, AFailureAtAnyStepLeavesTheOldFileOrTheNewOne) {
    const QByteArray old =
        "[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\n" + lineKeys(1, "0", "Old", "1", "4");
    Station station(old);
    for (HardwareLine& line : station.cards[1].Lines)
        line.Description = "New";
    station.cards[3].CardType = CardJoystick;
    const QByteArray fresh = station.saved();
    static int left;
    static const auto fails = [] { return left-- <= 0 && (errno = ENOSPC) != 0; };
    platform::hostCalls() = {
        [](int file, const void* bytes, size_t size) -> ssize_t {
            return fails() ? -1 : ::write(file, bytes, size / 2 + 1); // in pieces
        },
        [](int file) { return fails() ? -1 : ::fsync(file); },
        [](const char* from, const char* to) { return fails() ? -1 : ::rename(from, to); }};
    int failures = 0;
    for (int error = -1; error != 0; ++failures) {
        station.machine.write(iniPath, old);
        left = failures;
        error = WriteHardwareSettings(station.cards, ini);
        const QByteArray now = station.machine.read(iniPath);
        EXPECT_TRUE(now == old || now == fresh) << failures << now.toStdString();
        ASSERT_LT(failures, 100);
    }
    platform::RestoreHostCalls();
    EXPECT_GT(failures, 3);
    EXPECT_EQ(station.machine.read(iniPath), fresh);
}
