#include "station/LoadSettings.h"

#include "core/settings/SaveLocalSettings.h"
#include "core/time/Dates.h"
#include "platform/profile/ProfileFile.h"
#include "station/CheckConfiguration.h"
#include "station/StationTest.h"

using namespace tolvex;
using platform::Answer;
using platform::Pointer;

namespace {

const QString localIni = QStringLiteral("C:\\WINDOWS\\TOLVEX.INI");

class LoadSettings : public tests::StationTest {
protected:
    // A workstation with a data location on C: and its audio on D:.
    void configure() {
        machine.addDrive(u'D');
        machine.makeFolder(QStringLiteral("C:\\DATA"));
        machine.makeFolder(QStringLiteral("D:\\WALL"));
        QByteArray ini = "[FileLocations]\r\nData=C:\\DATA\r\n";
        for (int part = 1; part <= 11; ++part)
            ini += "Carts" + QByteArray::number(part) + "=D:\\WALL\r\n";
        machine.write(localIni, ini + "[LinkMesh]\r\nLinkMeshId=3\r\n");
        machine.write(QStringLiteral("D:\\WALL\\Audwall.ini"), "[Audiowall]\r\nVersion=2.6\r\n");
        machine.write(QStringLiteral("C:\\DATA\\TLVX_SYS.INI"), "[LinkMesh]\r\nNumberTerminals=4\r\n");
        machine.write(QStringLiteral("C:\\DATA\\Terminal.Lst"), QByteArray(4 * 128, ' '));
        machine.write(QStringLiteral("D:\\WALL\\GLIC.Lst"), QByteArray(40 * 256, ' '));
    }
};

} // namespace

TEST_F(LoadSettings, AllSettingsInTheirOrder) {
    configure();
    prompts.setPointer(Pointer::Default);
    LoadAllSettings(station);
    EXPECT_EQ(prompts.splashes,
              (QStringList{"Loading Locale Specific Information...", "Loading System Specific Information...",
                           "Accessing AudioWall...", "Accessing Terminals...",
                           "Opening Public Instant Cart Hotlists..."}));
    EXPECT_EQ(prompts.pointer(), Pointer::Default);
    EXPECT_EQ(station.settings.DataLocation, "C:\\DATA");
    EXPECT_EQ(station.settings.SystemIniFile, "C:\\DATA\\TLVX_SYS.INI");
    EXPECT_EQ(station.settings.UsersFolder, "C:\\DATA\\USERS\\");
    EXPECT_EQ(station.settings.NumberTerminals, 4);
    EXPECT_EQ(station.settings.LastOneWas, 0);
    EXPECT_EQ(station.settings.CartPartTable[11].FileNumber, 31);
    EXPECT_EQ(station.settings.JumpCartButtons.size(), 3);
    EXPECT_EQ(station.settings.FormForeColor, static_cast<qint32>(0x80000012u));
    EXPECT_TRUE(machine.exists(QStringLiteral("C:\\DATA\\Scripts")));
    EXPECT_TRUE(TerminalListIsOpen(station.terminals));
    EXPECT_GT(station.carts.hotlist.number, 0);
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(CheckConfiguration(station), QString());

    // A load and a save: the file then holds every key, and another load and save change nothing.
    EXPECT_EQ(SaveLocalSettings(station.settings, station.settings.LocalIniFile), platform::ProfileOk);
    const QByteArray saved = machine.read(localIni);
    begin();
    LoadAllSettings(station);
    EXPECT_EQ(SaveLocalSettings(station.settings, station.settings.LocalIniFile), platform::ProfileOk);
    EXPECT_EQ(machine.read(localIni), saved);
}

TEST_F(LoadSettings, StopsWithoutADataLocationAndWhereTheUserCancels) {
    LoadAllSettings(station);
    EXPECT_EQ(prompts.pointer(), Pointer::Wait);
    EXPECT_EQ(prompts.splashes.size(), 2);
    EXPECT_EQ(station.settings.LastOneWas, -1);
    EXPECT_EQ(station.settings.NumberTerminals, 32);
    EXPECT_FALSE(TerminalListIsOpen(station.terminals));

    begin();
    configure();
    platform::RemoveFile(QStringLiteral("C:\\DATA\\Terminal.Lst"));
    prompts.answers = {Answer::Cancel};
    prompts.forget();
    LoadAllSettings(station);
    EXPECT_EQ(prompts.splashes.back(), "Accessing Terminals...");
    EXPECT_EQ(prompts.pointer(), Pointer::Wait);
    EXPECT_EQ(station.carts.hotlist.number, 0);
}

TEST_F(LoadSettings, AnUpdateNoticeIsShownOnceForEachChange) {
    configure();
    platform::SetApplicationFolder(QStringLiteral("C:\\PROGRAM"));
    const QString notice = QStringLiteral("C:\\PROGRAM\\Updates.txt");
    const auto loadWithNoticeOf = [&](const QDateTime& time) {
        machine.write(notice, "News");
        QFile file(machine.host(notice));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(time, QFileDevice::FileModificationTime));
        file.close();
        begin();
        LoadAllSettings(station);
        return prompts.notices.size();
    };
    const QDateTime evening(QDate(2026, 11, 20), QTime(22, 15, 30, 750));
    EXPECT_EQ(loadWithNoticeOf(evening), 1);
    EXPECT_EQ(prompts.notices[0], notice + QStringLiteral("|Tolvex Update Information"));
    EXPECT_TRUE(machine.read(QStringLiteral("C:\\DATA\\TLVX_SYS.INI"))
                    .contains("[UpdateNotice]\r\nLastOneWas=20 Nov 2026 22:15:30\r\n"));
    EXPECT_EQ(station.settings.LastOneWas, SerialDate(evening.addMSecs(-750)));
    EXPECT_EQ(loadWithNoticeOf(evening), 1);
    EXPECT_EQ(loadWithNoticeOf(evening.addSecs(1)), 2);
    station.settings.AutoConfigInProgress = -1;
    machine.write(notice, "more");
    LoadAllSettings(station);
    EXPECT_EQ(prompts.notices.size(), 2);
}

TEST_F(LoadSettings, AnotherSystemIniFileCanBeNamed) {
    machine.write(QStringLiteral("C:\\SYS\\MY SYS.INI"),
                  "[OPALTransfers]\r\nDirectory=C:\\LISTS\r\nPromptDeleteAfterSend=-1\r\n[UpdateNotice]"
                  "\r\nLastOneWas=1 jan 2020\r\n");
    station.startUp.systemIni = QStringLiteral("C:\\SYS\\MY SYS.INI");
    EXPECT_TRUE(InitialiseProgram(station));
    EXPECT_TRUE(LoadSystemSettings(station));
    EXPECT_EQ(station.settings.SystemIniFile, "C:\\SYS\\MY SYS.INI");
    EXPECT_EQ(station.settings.OPALDirectory, "C:\\LISTS");
    EXPECT_EQ(station.settings.PromptDeleteAfterSend, 1);
    EXPECT_EQ(station.settings.LastOneWas, 43831);
}

TEST_F(LoadSettings, ControlSettingsCarryOverFromTheirOlderKeys) {
    machine.write(localIni,
                  "[KOVA]\r\nZQSAllowControl=1\r\nZQSReleaseMode=2\r\nZQSReleaseTime=30\r\nReleaseTime=5\r\n"
                  "ZQSRequestMode=3\r\nZQSGetControlKLogStart=1\r\nDisplayInstantCarts=0\r\n");
    LoadAutomationControlSettings(station.settings, localIni);
    const Settings& values = station.settings;
    EXPECT_EQ(values.AllowControl, 1);
    EXPECT_EQ(values.ReleaseMode, 2);
    EXPECT_EQ(values.ReleaseTime, 5);
    EXPECT_EQ(values.RequestMode, 3);
    EXPECT_EQ(values.GetControlKLogStart, 1);
    EXPECT_EQ(values.DisplayInstantCarts, 0);
}

// Hostile files: the load ends, and a save afterwards writes a file that loads the same again.
TEST_F(LoadSettings, BadSettingsFilesDoNoHarm) {
    const QByteArray contents[] = {
        "[AudioWall]\r\nNumberCartJumpButtons=-1\r\n",
        "[AudioWall]\r\nNumberCartJumpButtons=2000\r\n",
        "[FileLocations]\r\nCarts1=C:\\WINDOWS\\TOLVEX.INI\r\nData=C:\\WINDOWS\\TOLVEX.INI\r\n",
        "[FileLocations]\r\nData=" + QByteArray(4000, 'D') + "\r\n",
        "[CartPlayers]\r\nTotalNumberCartPlayers=-2147483648\r\n",
        QByteArray("\xFF\xFE\x00[\x00", 5),
        QByteArray(1 << 20, '['),
    };
    for (const QByteArray& content : contents) {
        begin();
        machine.write(localIni, content);
        LoadAllSettings(station);
        EXPECT_EQ(SaveLocalSettings(station.settings, localIni), platform::ProfileOk)
            << content.left(60).toStdString();
        const Settings first = station.settings;
        begin();
        EXPECT_TRUE(LoadLocalSettings(station));
        EXPECT_EQ(station.settings.DataLocation, first.DataLocation);
        EXPECT_EQ(station.settings.NumberCartJumpButtons, first.NumberCartJumpButtons);
        EXPECT_FALSE(CheckConfiguration(station).isEmpty());
        prompts.forget();
    }
    for (const char* noCarts : {"-1", "0", "100000", "2147483647", "abc"}) {
        configure();
        machine.write(QStringLiteral("D:\\WALL\\Audwall.ini"),
                      QByteArray("[Audiowall]\r\nVersion=2.6\r\nNoCarts=") + noCarts + "\r\n");
        begin();
        LoadAllSettings(station);
        EXPECT_EQ(CheckConfiguration(station), QString()) << noCarts;
    }
}

TEST_F(LoadSettings, WhatIsMissingIsNamedLineByLine) {
    station.settings.NoCarts = 9999;
    EXPECT_EQ(CheckConfiguration(station),
              "\nThe Data Location could not be found\nThe Data Location has not been set\n"
              "10 AudioWall Location/s have not been set\n10 AudioWall Location/s could not be found\n"
              "LinkMesh ID No has not been set\nthe Default Audio Format has not been set");

    begin();
    // Each location is tested once; parts that share one share its state; parts without carts are ignored.
    configure();
    LoadAllSettings(station);
    station.settings.NoCarts = 2500;
    station.settings.CartPartTable[2].Location = station.settings.CartPartTable[3].Location =
        QStringLiteral("D:\\GONE");
    EXPECT_EQ(CheckConfiguration(station), "\n2 AudioWall Location/s could not be found");
    machine.makeFolder(QStringLiteral("D:\\GONE"));
    EXPECT_EQ(CheckConfiguration(station), "\n2 AudioWall Location/s could not be found");
    station.settings.CartPartTable[2].State = NotChecked;
    EXPECT_EQ(CheckConfiguration(station), QString());
    EXPECT_EQ(station.settings.CartPartTable[3].State, Available);

    station.settings.CartPartTable[11].Location.clear();
    station.settings.CartPartTable[2].Location = QStringLiteral("Q:\\X");
    station.settings.CartPartTable[3].Location.clear();
    machine.write(localIni, "[General]\r\nConfigName= Studio 1 \r\n");
    const ConfigurationStatus status = LookAtConfiguration(station);
    EXPECT_EQ(status.configName, "Studio 1");
    EXPECT_EQ(status.missing, QStringList{"1 AudioWall Location/s have not been set"});
    EXPECT_EQ(status.locations[0].state, "available");
    EXPECT_EQ(status.locations[1].state, "missing");
    EXPECT_EQ(status.locations[2].state, "not set");
    EXPECT_EQ(status.locations[10].state, "not needed");
}
