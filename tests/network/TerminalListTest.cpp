// The Terminal list is shared by every workstation of a station: their names and numbers survive whatever one
// of them does to it.
#include "network/TerminalList.h"

#include "core/settings/Settings.h"
#include "platform/Machine.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <QtEndian>

#include <limits>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

constexpr char path[] = "M:\\DATA\\Terminal.Lst";
const QByteArray blank = QByteArray(60, ' ') + QByteArray(12, '\0') + QByteArray(56, ' ');

QByteArray terminal(const QByteArray& idName, const QByteArray& networkName) {
    QByteArray bytes = blank;
    bytes.replace(0, idName.size(), idName);
    bytes.replace(30, networkName.size(), networkName);
    return bytes;
}

class TerminalListTest : public testing::Test {
protected:
    TerminalListTest() {
        machine.addDrive(u'M');
        machine.makeFolder("M:\\DATA");
        settings.DataLocation = "M:\\DATA";
        settings.NumberTerminals = 4;
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30))};
    Settings settings;
    TerminalList terminals{settings};
};

} // namespace

TEST_F(TerminalListTest, IsMadeAfterAQuestionAndGrownWithBlankRecords) {
    prompts.answers = {Answer::Cancel, Answer::No, Answer::Yes};
    EXPECT_FALSE(OpenTerminalList(terminals));
    EXPECT_TRUE(OpenTerminalList(terminals));
    EXPECT_FALSE(TerminalListIsOpen(terminals) || machine.exists(path));
    EXPECT_EQ(TerminalListFault(terminals), QString());
    EXPECT_EQ(ReadTerminal(terminals, 1), BlankTerminalRecord());
    EXPECT_EQ(WriteTerminal(terminals, 1, BlankTerminalRecord()), platform::BadFileNumber);
    EXPECT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(machine.read(path), blank.repeated(4));
    EXPECT_EQ(prompts.asked[0].text, QString("The Terminal List has not been found.\n\nDo you wish to create "
                                             "it in :\n\nM:\\DATA\\Terminal.Lst"));
    EXPECT_EQ(prompts.asked[0].title, QString("File System Startup Error"));

    // Short, cut inside a record, and longer than it has to be.
    EXPECT_EQ(TerminalListFault(terminals), QString());
    const QByteArray used = terminal("Studio 1", "PC1");
    machine.write(path, used + "rest");
    EXPECT_EQ(TerminalListFault(terminals),
              QString("M:\\DATA\\Terminal.Lst is torn: 4 of 128 bytes of number 2 are "
                      "there, and is short: 1 of 4 workstations are there."));
    EXPECT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(machine.read(path), used + blank.repeated(3));
    machine.write(path, used.repeated(6));
    EXPECT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(machine.read(path), used.repeated(6));
    EXPECT_EQ(ReadTerminals(terminals).size(), 4);
    EXPECT_EQ(prompts.asked.size(), 3);
}

TEST_F(TerminalListTest, IsLeftAloneWhereItCannotBe) {
    settings.AutoConfigInProgress = -1;
    settings.LastOneWas = -1;
    EXPECT_FALSE(OpenTerminalList(terminals));
    settings.LastOneWas = 0;
    for (const qint16 none : {qint16(0), qint16(-1)}) {
        settings.NumberTerminals = none;
        EXPECT_FALSE(OpenTerminalList(terminals));
    }
    EXPECT_FALSE(machine.exists(path));
    settings.NumberTerminals = 2;
    machine.makeFolder(path);
    EXPECT_FALSE(OpenTerminalList(terminals));
    QDir().rmdir(machine.host(path));
    EXPECT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(machine.read(path), blank.repeated(2));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(TerminalListTest, EveryFieldIsFoundInItsPlaceAndGoesBackAsItCame) {
    QByteArray bytes = terminal("Caf\xE9", "PC-7");
    qToLittleEndian<qint32>(45356, bytes.data() + 60);
    qToLittleEndian<float>(79830, bytes.data() + 64);
    qToLittleEndian<qint32>(-5, bytes.data() + 68);
    for (int i = 72; i < 128; ++i)
        bytes[i] = char(i * 3);
    machine.write(path, blank + bytes + blank.repeated(2));
    ASSERT_TRUE(OpenTerminalList(terminals));
    const TerminalRecord record = ReadTerminal(terminals, 2);
    EXPECT_EQ(record.IdName.trimmed(), QString::fromUtf8("Café"));
    EXPECT_EQ(record.NetworkName.trimmed(), QString("PC-7"));
    EXPECT_EQ(record.lastUsed(), QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30)));
    EXPECT_EQ(record.Number68, -5);
    EXPECT_EQ(WriteTerminal(terminals, 2, record), 0);
    EXPECT_EQ(WriteTerminal(terminals, 5, record), platform::BadFileNumber);
    EXPECT_EQ(machine.read(path), blank + bytes + blank.repeated(2));

    EXPECT_EQ(RenameTerminal(terminals, 2, " A name that is longer than its thirty characters "), 0);
    EXPECT_EQ(machine.read(path),
              blank + "A name that is longer than its" + bytes.mid(30) + blank.repeated(2));
}

TEST_F(TerminalListTest, LastUseShowsOnlyForDaysThatCanBe) {
    TerminalRecord record;
    for (const qint32 day : {0, -1, 60000, INT32_MAX, INT32_MIN}) {
        record.LastUsedDay = day;
        EXPECT_FALSE(record.lastUsed().isValid()) << day;
    }
    record.LastUsedDay = 59999;
    for (const float seconds : {-1.F, 86400.F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
        record.LastUsedSeconds = seconds;
        EXPECT_EQ(record.lastUsed().time(), QTime(0, 0)) << seconds;
    }
    // The last millisecond of a day has no single-precision value below the next day's first.
    const QDateTime end(QDate(2024, 3, 5), QTime(23, 59, 59, 999));
    record.setLastUsed(end);
    EXPECT_EQ(record.LastUsedDay, 45356);
    EXPECT_EQ(record.lastUsed().date(), end.date());
}

TEST_F(TerminalListTest, AComputerKeepsItsNumberOrTakesTheFirstFreeOne) {
    machine.write(path, terminal("", "PC1") + terminal("", QByteArray("\0old", 4)) + terminal("", "") +
                            terminal("", "Pc4"));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(TerminalForComputer(terminals, "PC4"), 4);
    EXPECT_EQ(TerminalForComputer(terminals, "PC9"), 2);
    machine.write(path, terminal("", "PC1").repeated(4));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(TerminalForComputer(terminals, "PC9"), 1);
}

TEST_F(TerminalListTest, ANameLongerThanItsFieldIsFoundAgain) {
    const QString name = "A-WORKSTATION-WITH-A-VERY-LONG-NAME";
    machine.write(path, terminal("", "PC1") + blank.repeated(3));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(TerminalForComputer(terminals, name), 2);
    EXPECT_EQ(ClaimTerminal(terminals, 2, name), 0);
    EXPECT_EQ(TerminalForComputer(terminals, name), 2);
    EXPECT_EQ(ClaimTerminal(terminals, 1, name), 0); // somebody else's: it stays
    EXPECT_EQ(machine.read(path),
              terminal("", "PC1") + terminal("", name.left(30).toLatin1()) + blank.repeated(2));
    EXPECT_EQ(AssignTerminal(terminals, 3, {}, name), 0);
    EXPECT_EQ(TerminalForComputer(terminals, name), 3);
    EXPECT_EQ(ReadTerminal(terminals, 2), BlankTerminalRecord());
}

TEST_F(TerminalListTest, AWorkstationHoldsExactlyOneNumber) {
    machine.write(path, terminal("One", "PC1") + terminal("Two", "OTHER") + terminal("Three", "TAKEN") +
                            terminal("Four", "PC1"));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(AssignTerminal(terminals, 3, {"Uno", " Dos "}, "PC1"), 0);
    EXPECT_EQ(machine.read(path), terminal("Uno", "") + terminal("Dos", "OTHER") +
                                      terminal("Three", "PC1  ") + terminal("Four", ""));
    // A list that is replaced meanwhile is not written blindly.
    QFile::remove(machine.host(path));
    machine.write(path, terminal("New", "OTHER").repeated(4));
    EXPECT_EQ(AssignTerminal(terminals, 1, {}, "PC1"), platform::FileNotFound);
    EXPECT_EQ(machine.read(path), terminal("New", "OTHER").repeated(4));
    CloseTerminalList(terminals);
    EXPECT_EQ(AssignTerminal(terminals, 1, {}, "PC1"), platform::BadFileNumber);
}

TEST_F(TerminalListTest, TheOwnRecordIsReadAndStamped) {
    machine.write(path, blank + terminal("Studio", "OLD") + blank.repeated(2));
    ReadOwnTerminalRecord(terminals);
    EXPECT_EQ(terminals.own, BlankTerminalRecord());
    EXPECT_FALSE(StampOwnTerminalRecord(terminals));
    settings.LinkMeshId = 2;
    ReadOwnTerminalRecord(terminals);
    EXPECT_EQ(terminals.own.IdName.trimmed(), QString("Studio"));
    EXPECT_TRUE(StampOwnTerminalRecord(terminals));
    TerminalRecord expected = BlankTerminalRecord();
    expected.IdName = QString("Studio").leftJustified(TerminalNameLength);
    expected.NetworkName = platform::ComputerName().leftJustified(TerminalNameLength, u' ', true);
    expected.LastUsedDay = 45356;
    expected.LastUsedSeconds = 79830;
    EXPECT_EQ(ReadTerminal(terminals, 2), expected);
    settings.LinkMeshId = 9;
    ReadOwnTerminalRecord(terminals);
    EXPECT_EQ(terminals.own, BlankTerminalRecord());
    EXPECT_EQ(machine.read(path).size(), 4 * 128);
}
