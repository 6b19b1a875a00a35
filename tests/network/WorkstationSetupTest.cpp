// The workstation list as its form shows and stores it, while other workstations use the same file.
#include "network/WorkstationSetup.h"

#include "core/time/Dates.h"
#include "network/StationList.h"
#include "platform/files/Files.h"
#include "platform/host/FileLock.h"
#include "platform/paths/Paths.h"
#include "platform/posix/HostCalls.h"
#include "platform/profile/ProfileFile.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace tolvex;
using namespace tolvex::tests;
using Outcome = WorkstationResult::Outcome;
using State = TerminalRow::State;

namespace {

class WorkstationSetupTest : public testing::Test {
protected:
    WorkstationSetupTest() {
        station.put(1, "Studio 1", "STUDIO1");
        station.put(2, "News", "newsroom");
        station.put(3, "Spare", "");
    }
    static Settings settingsOf(TestMachine& machine) {
        machine.makeFolder("C:\\DATA");
        Settings settings;
        settings.DataLocation = "C:\\DATA";
        settings.LocalIniFile = "TOLVEX.INI";
        return settings;
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30))};
    Settings settings = settingsOf(machine);
    StationList station{settings};
    TerminalList& terminals = station.terminals;
};

} // namespace

TEST_F(WorkstationSetupTest, RowsSayWhoHasANumberAndWhatTakingItMeans) {
    station.put(1, " Studio 1", "STUDIO1", clock.time.addSecs(-200));
    station.put(2, "News", "newsroom", clock.time.addDays(-1));
    station.put(4, "Future", "PC4", clock.time.addSecs(60));
    const QList<TerminalRow> rows = TerminalRows(ReadTerminals(terminals), "NEWSROOM", clock.time);
    ASSERT_EQ(rows.size(), 4);
    QStringList states;
    for (const TerminalRow& row : rows)
        states +=
            QStringLiteral("%1 %2 %3: %4").arg(row.id).arg(row.idName).arg(int(row.state)).arg(row.stateText);
    EXPECT_EQ(states, (QStringList{"1 Studio 1 2: STUDIO1, 3 minutes ago", "2 News 1: this computer",
                                   "3 Spare 0: free", "4 Future 2: PC4"}));
    EXPECT_EQ(rows[0].lastUsed, ShortDate(QDate(2024, 3, 5)) + " 22:07:10");
    EXPECT_EQ(rows[2].lastUsed, QString());
    EXPECT_EQ(TakeoverNotice(rows[0]),
              QString("Number 1 belongs to another computer (STUDIO1, 3 minutes ago). OK takes it over."));
    EXPECT_EQ(TakeoverNotice(rows[1]) + TakeoverNotice(rows[2]), QString());
}

TEST_F(WorkstationSetupTest, OkStoresWhatWasTouchedAndKeepsWhatOthersDidMeanwhile) {
    for (const int none : {0, -1, 5}) {
        const WorkstationResult result = StoreWorkstations({none, {}, {}}, "MYPC", terminals, settings);
        EXPECT_EQ(result.outcome, Outcome::NotChosen);
        EXPECT_EQ(result.message,
                  QString("You must choose which LinkMesh ID you will use for this workstation"));
    }
    station.put(4, "Mine", "MyPc");
    // While the form is open another workstation renames number 2.
    station.put(2, "Newsroom B", "newsroom");
    const WorkstationChoice choice{3, {{1, "Studio One"}, {4, ""}, {9, "x"}}, ""};
    EXPECT_EQ(StoreWorkstations(choice, "MYPC", terminals, settings).outcome, Outcome::Stored);
    EXPECT_FALSE(TerminalListIsOpen(terminals));
    EXPECT_EQ(station.lines(), (QStringList{"Studio One=STUDIO1", "Newsroom B=newsroom", "Spare=MYPC", "="}));
    EXPECT_EQ(settings.LinkMeshId, 3);
    EXPECT_EQ(platform::ProfileText("LinkMesh", "LinkMeshId", {}, "TOLVEX.INI"), QString("3"));
    // Taking over a number that the form shows as another computer's asks nothing.
    EXPECT_EQ(StoreWorkstations({1, {}, "studio1"}, "MYPC", terminals, settings).outcome, Outcome::Stored);
    EXPECT_EQ(station.lines()[0] + station.lines()[2], QString("Studio One=MYPCSpare="));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(WorkstationSetupTest, WithoutAListNothingIsStored) {
    CloseTerminalList(terminals);
    ASSERT_TRUE(QFile::remove(machine.host("C:\\DATA\\Terminal.Lst")));
    prompts.answers = {platform::Answer::Cancel, platform::Answer::No};
    for (int i = 0; i < 2; ++i) {
        const WorkstationResult result = StoreWorkstations({2, {}, {}}, "MYPC", terminals, settings);
        EXPECT_EQ(result.outcome, Outcome::NoList);
        EXPECT_FALSE(result.message.isEmpty());
    }
    EXPECT_EQ(settings.LinkMeshId, 0);
    EXPECT_EQ(platform::FileSize("C:\\DATA\\Terminal.Lst"), -1);
}

// The suite reads the number from the ini file and who has it from the list: they must agree.
TEST_F(WorkstationSetupTest, TheNumberGoesIntoBothFilesOrNone) {
    ASSERT_EQ(StoreWorkstations({3, {}, ""}, "MYPC", terminals, settings).outcome, Outcome::Stored);
    const QByteArray list = machine.read("C:\\DATA\\Terminal.Lst");
    const QByteArray ini = machine.read("C:\\WINDOWS\\TOLVEX.INI");
    const auto refuses = [&] {
        const WorkstationResult result = StoreWorkstations({4, {{1, "x"}}, ""}, "MYPC", terminals, settings);
        EXPECT_EQ(result.outcome, Outcome::Failed);
        EXPECT_TRUE(result.message.contains("TOLVEX.INI")) << result.message.toStdString();
        EXPECT_EQ(machine.read("C:\\DATA\\Terminal.Lst"), list);
        EXPECT_EQ(machine.read("C:\\WINDOWS\\TOLVEX.INI"), ini);
        EXPECT_EQ(settings.LinkMeshId, 3);
    };
    {
        const platform::FileLock busy(machine.host("C:\\WINDOWS\\TOLVEX.INI"));
        ASSERT_TRUE(busy.held());
        refuses();
    }
    // A disk that fails shows only while the file is written.
    platform::hostCalls().rename = [](const char*, const char*) { return errno = EIO, -1; };
    refuses();
    platform::RestoreHostCalls();
    EXPECT_EQ(StoreWorkstations({4, {}, ""}, "MYPC", terminals, settings).outcome, Outcome::Stored);
}

TEST_F(WorkstationSetupTest, TwoWhoChooseOneNumberAreTold) {
    station.put(3, "Spare", "QUICKER"); // since the form showed it as free
    const WorkstationResult told = StoreWorkstations({3, {{1, "x"}}, {}}, "MYPC", terminals, settings);
    EXPECT_EQ(told.outcome, Outcome::TakenSince);
    EXPECT_TRUE(told.message.startsWith("QUICKER has taken number 3 in the meantime."))
        << told.message.toStdString();
    EXPECT_EQ(station.lines(), (QStringList{"Studio 1=STUDIO1", "News=newsroom", "Spare=QUICKER", "="}));
    EXPECT_EQ(settings.LinkMeshId, 0);
    EXPECT_EQ(StoreWorkstations({3, {}, "QUICKER"}, "MYPC", terminals, settings).outcome, Outcome::Stored);
    // A number that became free meanwhile, or is this computer's own, can be taken.
    EXPECT_EQ(StoreWorkstations({3, {}, "QUICKER"}, "MYPC", terminals, settings).outcome, Outcome::Stored);
    station.put(2, "News", "");
    EXPECT_EQ(StoreWorkstations({2, {}, "newsroom"}, "MYPC", terminals, settings).outcome, Outcome::Stored);

    // The step waits for another workstation, and then gives up with a message.
    const platform::FileLock other(platform::HostPath(TerminalListPath(terminals)));
    ASSERT_TRUE(other.held());
    const WorkstationResult locked = StoreWorkstations({1, {}, "STUDIO1"}, "MYPC", terminals, settings);
    EXPECT_EQ(locked.outcome, Outcome::Failed);
    EXPECT_TRUE(locked.message.contains("Permission denied")) << locked.message.toStdString();
    EXPECT_EQ(settings.LinkMeshId, 2);
}
