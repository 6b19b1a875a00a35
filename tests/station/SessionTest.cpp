// What a session opens, saves and closes, without a window; and two workstations side by side.
#include "station/Session.h"

#include "core/system/Registry.h"
#include "platform/profile/ProfileFile.h"
#include "station/StationTest.h"

using namespace tolvex;

namespace {

class SessionTest : public tests::StationTest {
protected:
    // A workstation in an ini file of the Windows folder, with data and audio in folders of its own.
    void configure(const QString& ini, const QString& drive) {
        machine.addDrive(drive[0]);
        machine.makeFolder(drive + "\\DATA");
        machine.makeFolder(drive + "\\WALL");
        QByteArray text = "[FileLocations]\r\nData=" + drive.toLatin1() + "\\DATA\r\n";
        for (int part = 1; part <= CartPartCount; ++part)
            text += "Carts" + QByteArray::number(part) + '=' + drive.toLatin1() + "\\WALL\r\n";
        machine.write("C:\\WINDOWS\\" + ini, text + "[General]\r\nConfigName= Studio \r\n");
        machine.write(drive + "\\DATA\\Terminal.Lst", QByteArray(32 * TerminalRecordLength, ' '));
        machine.write(drive + "\\WALL\\GLIC.Lst", QByteArray(HotlistRecordCount * HotlistRecordLength, ' '));
    }
    static bool hasOpen(const Workstation& of) {
        return TerminalListIsOpen(of.terminals) || of.carts.hotlist.file || of.users.database ||
               of.carts.lists[1];
    }
};

} // namespace

TEST_F(SessionTest, SavesAndClosesWhatItOpened) {
    configure("TOLVEX.INI", "D:");
    Session session(station);
    EXPECT_TRUE(session.begin(true));
    EXPECT_FALSE(hasOpen(station));
    session.load();
    EXPECT_EQ(station.settings.ConfigName, "Studio");
    EXPECT_TRUE(TerminalListIsOpen(station.terminals) && station.carts.hotlist.file &&
                station.users.database);
    OpenCartParts(station.carts, 0, true);
    station.settings.CartMinimumWidth = 3210;
    session.end();
    EXPECT_FALSE(hasOpen(station));
    const auto stored = [] {
        return platform::ProfileInteger("AudioWall", "CartMinimumWidth", 0, "TOLVEX.INI");
    };
    EXPECT_EQ(stored(), 3210);
    // It has ended: it does not save again.
    station.settings.CartMinimumWidth = 99;
    session.end();
    EXPECT_EQ(stored(), 3210);
}

TEST_F(SessionTest, FollowsTheFileLocationsToAnotherStation) {
    configure("TOLVEX.INI", "D:");
    configure("OTHER.INI", "E:");
    Session session(station);
    EXPECT_TRUE(session.begin(true));
    session.load();
    station.settings.DataLocation = "E:\\DATA";
    for (CartPart& part : station.settings.CartPartTable)
        part.Location = "E:\\WALL";
    prompts.answers.assign(10, platform::Answer::Yes); // to making the lists
    session.reload();
    EXPECT_EQ(station.settings.SystemIniFile, "E:\\DATA\\TLVX_SYS.INI");
    EXPECT_EQ(station.users.information.FullName, "E:\\DATA\\USERS\\USERS25.MDB");
    EXPECT_EQ(station.settings.CartPartTable[1].ListPath, "E:\\WALL\\Carts1.lst");
    EXPECT_TRUE(station.carts.lists[10]);
}

TEST_F(SessionTest, AnotherCopyOrACancelledChoiceSavesNothing) {
    Session other(station);
    EXPECT_FALSE(other.begin(false));
    other.end();
    begin();
    WriteRegistryLong(LocalMachineHive, TolvexKey, "MultiConfigFile", -1, 0);
    prompts.configurationSets = {QString()};
    Session cancelled(station);
    EXPECT_FALSE(cancelled.begin(true));
    cancelled.end();
    EXPECT_EQ(platform::FolderNames("C:\\WINDOWS").filter(".ini", Qt::CaseInsensitive), QStringList());
}

// Nothing is shared: each is independent of the other's open files and settings.
TEST_F(SessionTest, TwoWorkstationsKnowNothingOfEachOther) {
    configure("A.INI", "D:");
    configure("B.INI", "E:");
    Workstation second;
    station.startUp.localIni = "A.INI";
    second.startUp.localIni = "B.INI";
    EXPECT_TRUE(Session(station).read() && Session(second).read());
    EXPECT_EQ(station.settings.DataLocation, "D:\\DATA");
    EXPECT_EQ(second.settings.DataLocation, "E:\\DATA");
    EXPECT_FALSE(machine.exists("D:\\WALL\\Carts1.lst")) << "reading made something";

    EXPECT_EQ(OpenCartParts(station.carts, 1, true), 0);
    EXPECT_TRUE(OpenTerminalList(station.terminals));
    EXPECT_EQ(OpenUsersDatabase(station.users, UsersDatabaseFile(station.settings)), 0);
    EXPECT_FALSE(hasOpen(second) || machine.exists("E:\\WALL\\Carts1.lst"));
    EXPECT_EQ(ClaimTerminal(station.terminals, "PC1").id, 1);
    EXPECT_TRUE(OpenTerminalList(second.terminals));
    EXPECT_EQ(ReadTerminal(second.terminals, 1).NetworkName.trimmed(), "");
    Session(second).close();
    EXPECT_TRUE(hasOpen(station));
}
