#include "station/StartUp.h"

#include "core/system/Registry.h"
#include "station/StationTest.h"

using namespace tolvex;

namespace {

class StartUpTest : public tests::StationTest {
protected:
    // A new start of the program with a command line.
    bool start(const char* commandLine) {
        begin();
        station.startUp.typedCommandLine = QString::fromUtf8(commandLine);
        return InitialiseProgram(station);
    }
    void allowSeveralConfigurations() {
        WriteRegistryLong(LocalMachineHive, TolvexKey, QStringLiteral("MultiConfigFile"), -1, 0);
    }
};

} // namespace

TEST_F(StartUpTest, SwitchesAreFoundAnywhereInTheCommandLine) {
    EXPECT_TRUE(start("/Runby=C:\\Play er.exe /debug"));
    EXPECT_EQ(RunByProgram(station.startUp), "C:\\Play er.exe /debug");
    EXPECT_EQ(station.settings.DebugLevel, -1);
    EXPECT_EQ(station.settings.CommandLine, " /RUNBY=C:\\PLAY ER.EXE /DEBUG");
    EXPECT_EQ(station.settings.LocalIniFile, "TOLVEX.INI");

    EXPECT_TRUE(start("x/li:c:\\set1.ini /si:m:\\sys.ini"));
    EXPECT_EQ(station.settings.LocalIniFile, "C:\\SET1.INI");
    EXPECT_EQ(NamedSystemIniFile(station), "M:\\SYS.INI");
    EXPECT_EQ(station.settings.DebugLevel, 0);
    EXPECT_EQ(RunByProgram(station.startUp), QString());

    // A letter that becomes longer in upper case moves nothing.
    EXPECT_TRUE(start("ß /RUNBY= straße.exe "));
    EXPECT_EQ(RunByProgram(station.startUp), QString::fromUtf8("straße.exe"));
}

TEST_F(StartUpTest, TheConfigurationIsChosenOnceAndOnlyWhereSeveralAreAllowed) {
    allowSeveralConfigurations();
    prompts.configurationSets = {QStringLiteral("studio2.ini")};
    EXPECT_TRUE(start(""));
    EXPECT_EQ(station.settings.LocalIniFile, "studio2.ini");
    EXPECT_TRUE(InitialiseProgram(station));
    EXPECT_EQ(station.settings.LocalIniFile, "studio2.ini");
    EXPECT_EQ(prompts.setChoices, QStringList{"SOFTWARE\\Norvane\\Tolvex|tolvex.ini"});

    EXPECT_TRUE(start("/LI:A.INI"));
    EXPECT_EQ(station.settings.LocalIniFile, "A.INI");
    prompts.configurationSets = {QString()};
    EXPECT_FALSE(start(""));
    EXPECT_EQ(station.settings.LocalIniFile, QString());
    EXPECT_EQ(prompts.setChoices.size(), 2);
}

TEST_F(StartUpTest, SeveralMonitorsCountOnlyOnTheVersionsThatKnowThem) {
    struct Case {
        platform::SystemVersion version;
        const char* commandLine;
        QList<int> monitors;
        int allowed, count, width;
    };
    const Case cases[] = {
        {{5, 1, 2600, 2, {}}, "", {1024, 800}, -1, 2, 1824 * 15},
        {{5, 0, 2195, 2, {}}, "", {1024, 800, 640}, -1, 3, 1824 * 15}, // the third is left out
        {{5, 1, 2600, 2, {}}, "/NoMultiMonitor", {1024, 800}, 0, 1, 1024 * 15},
        {{4, 10, 0, 1, {}}, "", {1024}, -1, 1, 1024 * 15},
        {{4, 0, 0, 1, {}}, "", {1024, 800}, 0, 1, 1024 * 15},
        {{4, 0, 0, 2, {}}, "", {1024, 800}, 0, 1, 1024 * 15},
        {{6, 1, 0, 2, {}}, "", {1024, 800}, 0, 1, 1024 * 15},
        {{10, 0, 0, 2, {}}, "", {1024, 800}, 0, 1, 1024 * 15},
    };
    for (const Case& c : cases) {
        platform::SetOperatingSystem(c.version);
        begin();
        station.startUp.typedCommandLine = QLatin1String(c.commandLine);
        station.startUp.screens.MonitorWidths = c.monitors;
        station.startUp.screens.DesktopWidth = std::accumulate(c.monitors.begin(), c.monitors.end(), 0);
        station.startUp.screens.WorkAreaBottom = 740;
        EXPECT_TRUE(InitialiseProgram(station));
        EXPECT_EQ(station.settings.MultiMonitorAllowed, c.allowed);
        EXPECT_EQ(station.settings.MonitorCount, c.count);
        EXPECT_EQ(station.settings.ScreenWidthTwips, c.width);
        EXPECT_EQ(station.settings.ScreenHeightTwips, 740 * 15);
    }
    EXPECT_EQ(station.settings.OSVersion.major, 10u);
    EXPECT_EQ(station.settings.LogSourceShortNames[10], "----");
    EXPECT_EQ(station.settings.LogSourceNames[14], "Spl. Advert");
    EXPECT_EQ(station.settings.LogSourceNames[15], QString());
}

TEST_F(StartUpTest, ALowScreenIsWarnedOfOnceAMachine) {
    const auto startOnLowScreen = [this] {
        begin();
        station.startUp.screens.PrimaryHeight = 599;
        return InitialiseProgram(station);
    };
    EXPECT_TRUE(startOnLowScreen());
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.startsWith(
        "Tolvex Configuration is designed to work with a minimum screen resolution of 800x600.\n\nYour "
        "screen is set "
        "smaller than this, so some graphics will not appear correctly.\n\n"));
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, TolvexV2Key, QStringLiteral("LowDisplayResWarning"), 0), 1);
    EXPECT_TRUE(startOnLowScreen());
    EXPECT_EQ(prompts.asked.size(), 1);
}
