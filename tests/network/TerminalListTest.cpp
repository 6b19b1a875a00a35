// The Terminal list is shared by every workstation of a station: their names and numbers survive whatever one
// of them does to it.
#include "network/TerminalList.h"

#include "core/settings/Settings.h"
#include "platform/Machine.h"
#include "platform/host/FileLock.h"
#include "platform/paths/Paths.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/OtherWorkstation.h"
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
    const auto claim = [this](const QString& name) {
        const ClaimedTerminal claimed = ClaimTerminal(terminals, name);
        return QStringLiteral("%1 %2 %3").arg(claimed.id).arg(claimed.error).arg(claimed.holder);
    };
    const QByteArray list = terminal("", "PC1") + terminal("", QByteArray("\0old", 4)) + blank;
    machine.write(path, list + terminal("", "Pc4"));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(claim("PC4"), "4 0 ");
    EXPECT_EQ(machine.read(path), list + terminal("", "Pc4"));
    const QString longName = "A-WORKSTATION-WITH-A-VERY-LONG-NAME";
    EXPECT_EQ(claim(longName), "2 0 ");
    EXPECT_EQ(claim(longName), "2 0 ");
    EXPECT_EQ(machine.read(path).mid(128, 256), terminal("", longName.left(30).toLatin1()) + blank);
    EXPECT_EQ(claim("PC9"), "3 0 ");
    EXPECT_EQ(claim("PC10"), "1 0 PC1"); // nothing is free: the name stays
    EXPECT_EQ(ReadTerminal(terminals, 1).NetworkName.trimmed(), "PC1");

    EXPECT_EQ(AssignTerminal(terminals, 4, {}, longName), 0);
    EXPECT_EQ(claim(longName), "4 0 ");
    EXPECT_EQ(ReadTerminal(terminals, 2), BlankTerminalRecord());
    // Another workstation keeps the step.
    const platform::FileLock other(platform::HostPath(path));
    EXPECT_EQ(claim("PC11"), QStringLiteral("2 %1 ").arg(platform::PermissionDenied));
}

TEST_F(TerminalListTest, ComputersThatAreConfiguredAtOneMomentGetDifferentNumbers) {
    constexpr int computers = 6;
    settings.NumberTerminals = computers;
    settings.AutoConfigInProgress = -1;
    for (int round = 0; round < 5; ++round) {
        machine.write(path, blank.repeated(computers));
        const StartingGun gun;
        std::vector<std::unique_ptr<OtherWorkstation>> others;
        for (int n = 1; n <= computers; ++n)
            others.push_back(std::make_unique<OtherWorkstation>([&] {
                const QString name = QStringLiteral("PC%1").arg(n);
                gun.wait();
                TerminalList own(settings);
                EXPECT_TRUE(OpenTerminalList(own));
                const ClaimedTerminal claimed = ClaimTerminal(own, name);
                return claimed.error == 0 && IsOnComputer(ReadTerminal(own, claimed.id), name);
            }));
        gun.fire();
        for (const auto& other : others)
            EXPECT_TRUE(other->wentWell());
        ASSERT_TRUE(OpenTerminalList(terminals));
        QStringList names;
        for (const TerminalRecord& record : ReadTerminals(terminals))
            names += NetworkNameOf(record);
        names.sort();
        EXPECT_EQ(names, (QStringList{"PC1", "PC2", "PC3", "PC4", "PC5", "PC6"}));
    }
}

TEST_F(TerminalListTest, AWorkstationHoldsExactlyOneNumber) {
    machine.write(path, terminal("One", "PC1") + terminal("Two", "OTHER") + terminal("Three", "TAKEN") +
                            terminal("Four", "PC1"));
    ASSERT_TRUE(OpenTerminalList(terminals));
    EXPECT_EQ(AssignTerminal(terminals, 3, {"Uno", " Dos "}, "PC1"), 0);
    EXPECT_EQ(machine.read(path), terminal("Uno", "") + terminal("Dos", "OTHER") +
                                      terminal("Three", "PC1  ") + terminal("Four", ""));
    // A list that was replaced meanwhile is not written.
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
