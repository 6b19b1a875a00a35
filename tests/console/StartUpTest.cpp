#include "console/StartUp.h"

#include "console/ConsoleTest.h"
#include "console/ScreenFacts.h"
#include "core/system/Registry.h"

using namespace tolvex;

namespace {

class StartUp : public tests::ConsoleTest {
protected:
    // A new start of the program with a command line.
    bool start(const char* commandLine) {
        forget();
        SetTypedCommandLine(QString::fromUtf8(commandLine));
        return InitialiseProgram();
    }
    void allowSeveralConfigurations() {
        WriteRegistryLong(LocalMachineHive, TolvexKey, QStringLiteral("MultiConfigFile"), -1, 0);
    }
};

} // namespace

TEST_F(StartUp, SwitchesAreFoundAnywhereInTheCommandLine) {
    EXPECT_TRUE(start("/Runby=C:\\Play er.exe /debug"));
    EXPECT_EQ(RunByProgram(), "C:\\Play er.exe /debug");
    EXPECT_EQ(settings().DebugLevel, -1);
    EXPECT_EQ(settings().CommandLine, " /RUNBY=C:\\PLAY ER.EXE /DEBUG");
    EXPECT_EQ(settings().LocalIniFile, "TOLVEX.INI");

    EXPECT_TRUE(start("x/li:c:\\set1.ini /si:m:\\sys.ini"));
    EXPECT_EQ(settings().LocalIniFile, "C:\\SET1.INI");
    EXPECT_EQ(NamedSystemIniFile(), "M:\\SYS.INI");
    EXPECT_EQ(settings().DebugLevel, 0);
    EXPECT_EQ(RunByProgram(), QString());

    // A letter that grows when it is upper-cased moves nothing.
    EXPECT_TRUE(start("ß /RUNBY= straße.exe "));
    EXPECT_EQ(RunByProgram(), QString::fromUtf8("straße.exe"));
}

TEST_F(StartUp, TheConfigurationIsChosenOnceAndOnlyWhereSeveralAreAllowed) {
    allowSeveralConfigurations();
    prompts.configurationSets = {QStringLiteral("studio2.ini")};
    EXPECT_TRUE(start(""));
    EXPECT_EQ(settings().LocalIniFile, "studio2.ini");
    EXPECT_TRUE(InitialiseProgram());
    EXPECT_EQ(settings().LocalIniFile, "studio2.ini");
    EXPECT_EQ(prompts.setChoices, QStringList{"SOFTWARE\\Norvane\\Tolvex|tolvex.ini"});

    EXPECT_TRUE(start("/LI:A.INI"));
    EXPECT_EQ(settings().LocalIniFile, "A.INI");
    prompts.configurationSets = {QString()};
    EXPECT_FALSE(start(""));
    EXPECT_EQ(settings().LocalIniFile, QString());
    EXPECT_EQ(prompts.setChoices.size(), 2);
}

TEST_F(StartUp, SeveralMonitorsCountOnlyOnTheVersionsThatKnowThem) {
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
        forget();
        SetTypedCommandLine(QLatin1String(c.commandLine));
        screenFacts().MonitorWidths = c.monitors;
        screenFacts().DesktopWidth = std::accumulate(c.monitors.begin(), c.monitors.end(), 0);
        screenFacts().WorkAreaBottom = 740;
        EXPECT_TRUE(InitialiseProgram());
        EXPECT_EQ(settings().MultiMonitorAllowed, c.allowed);
        EXPECT_EQ(settings().MonitorCount, c.count);
        EXPECT_EQ(settings().ScreenWidthTwips, c.width);
        EXPECT_EQ(settings().ScreenHeightTwips, 740 * 15);
    }
    EXPECT_EQ(settings().OSVersion.major, 10u);
    EXPECT_EQ(settings().LogSourceShortNames[10], "----");
    EXPECT_EQ(settings().LogSourceNames[14], "Spl. Advert");
    EXPECT_EQ(settings().LogSourceNames[15], QString());
}

TEST_F(StartUp, ALowScreenIsWarnedOfOnceAMachine) {
    const auto startOnLowScreen = [this] {
        forget();
        screenFacts().PrimaryHeight = 599;
        return InitialiseProgram();
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
