#include "core/settings/SaveLocalSettings.h"

#include "core/settings/SettingsLoader.h"
#include "platform/profile/ProfileFile.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex;

namespace {

const QString ini = QStringLiteral("C:\\WINDOWS\\TOLVEX.INI");

// A file as left by the suite's own programs, with additions of others: a comment, unknown sections and keys,
// older keys, another spelling, blank lines, a duplicate section.
const QByteArray full =
    "; studio 1, do not touch\r\n"
    "[General]\r\nConfigName=Studio 1\r\n\r\n"
    "[FileLocations]\r\nData=M:\r\nSchedules=M:\\SCHEDULE\r\nLogs=M:\\LOGS\r\n"
    "Carts1=U:\\A\r\nCarts2=U:\r\nCarts3=\r\nCarts4=\r\nCarts5=\r\nCarts6=\r\nCarts7=\r\nCarts8=\r\n"
    "Carts9=\r\nCarts10=\r\nCarts11=U:\\TOP\r\nSampleEditor=X:\\ED.EXE\r\nAudioEditor=X:\\ED.EXE\r\n"
    "\r\n[Hardware1]\r\nCardType=3\r\n ; a line\r\nLineType7 = 2\r\n"
    "[Audio]\r\nFadeFire=0.5\r\nAudioEditorPriority=10\r\nAudioEditorRunAtIdleSpeed=0\r\nKHz=48000\r\n"
    "Channels=2\r\nFormat=1\r\nBits=16\r\nAllowDifferentFormat=1\r\nRecordLocal=0\r\n"
    "PlayerFadeFirePercent=65\r\nPlayCartsInstantly=1\r\nOnlyAllowEjectStoppedCarts=0\r\n"
    "PlayerFadeSeconds=2\r\n"
    "[DateTimeSettings]\r\nRadioClockComPort=2\r\n"
    "[AudioWall]\r\nNumberCartJumpButtons=2\r\nJumpCartNumber1=1\r\nJumpDescription1=Jingles\r\n"
    "JumpCartNumber2=1001\r\nJumpDescription2=Adverts\r\nCartMinimumHeight=935\r\n"
    "CartMinimumWidth=2500\r\nShowICAtLogin=1\r\nShowPadAtLogin=0\r\nDisplayICText=0\r\n"
    "AutoUpdateInterval=10\r\nSearchCartNotes=0\r\nSearchCartsFromStart=1\r\nDisplayExtros=1\r\n"
    "UsersCanSetFirst5IC=1\r\nCartBevelWidth=3\r\nDragDropMoveCarts=0\r\nLevelTrigger=0\r\n"
    "AlwaysUseLevelTrigger=0\r\nJumpDescription9=from a wider wall\r\n"
    "[Carts]\r\nShortCut_No1=77\r\nHighlightPlayedCarts=0\r\nHighlightPLayedCartsInterval=0\r\n"
    "KeyboardClose=0\r\nMouseClose=1\r\n"
    "[LinkMesh]\r\nUseRadioClock=1\r\nLinkMeshId=4\r\n"
    "[CartPlayers]\r\nTotalNumberCartPlayers=2\r\nAutomaticPlayerAssignment=0\r\n"
    "SoundCardNumber1=2\r\nBackColor1=0\r\nForeColor1=255\r\nSoundCardNumber2=1\r\nBackColor2=0\r\n"
    "ForeColor2=65280\r\nSoundCardNumber3=0\r\nBackColor3=0\r\nForeColor3=16752800\r\n"
    "SoundCardNumber4=0\r\nBackColor4=0\r\nForeColor4=16777215\r\nSoundCardNumber5=0\r\n"
    "BackColor5=0\r\nForeColor5=65535\r\nSoundCardNumber6=0\r\nBackColor6=0\r\n"
    "ForeColor6=16777215\r\nInstant=2\r\nEditPlayer=0\r\nFirstPlayerInOrder=1\r\n"
    "LastPlayerInOrder=255\r\nRegisterAsToolbars=0\r\n"
    "[AUDIO ]\r\nKHz=11025\r\n"
    "[Display]\r\nSingleClickPlayCarts=0\r\nFormBackcolor=-2147483633\r\n"
    "formForeColor=-2147483630\r\nAdjustTheSystemColors=0\r\nUseInformationWindow=1\r\nShowClock=1\r\n"
    "[KOVA]\r\nDefaultDatabase=M:\\SCHEDULE\\KOVA26.MDB\r\nZQSReleaseMode=2\r\n";

// The rest of [Audio], in the order of saving.
const QByteArray audioEnd =
    "RecordingSoundCard=1\r\nSweptVolume=100\r\nGeneralVolume=100\r\nDuckAudioVolume=90\r\nUsePlayerDucking="
    "1\r\n"
    "MaintainLegacyCartList=1\r\nUseIndividualCartListFiles=0\r\nLockPlayerWhenRecording="
    "0\r\nUseLargeWLBuffers=0\r\n"
    "UseLegacyFileCopyMode=0\r\nWLDebugMode=0\r\nCartFontBold=0\r\nCartFontSize=8\r\nCartFontName=MS Sans "
    "Serif\r\n"
    "DisplayCartHasAudioAsSquare=0\r\nCartShowCompressed=0\r\nDisplayCartTimeHours=0\r\nSelectedCartMode="
    "1\r\n"
    "SelectedCartColor=12582912\r\nSelectedCartColorText=16777215\r\nCartPlayedRecentColor=255\r\n"
    "ShowTimesBarInColor=1\r\nTimesBarColor=12582912\r\nTimesBarColorText=16777215\r\nCartNumberColor=255\r\n"
    "EmptyCartNumberColor=10132122\r\nEmptyCartBackColor=-2147483633\r\nEmptyCartForeColor=-2147483630\r\n";

QByteArray withAudioEnd() {
    QByteArray file = full;
    const QByteArray before = "PlayerFadeSeconds=2\r\n";
    return file.insert(file.indexOf(before) + before.size(), audioEnd);
}

// Every local row, loaded as at start-up except the search for devices.
Settings loadAll() {
    Settings settings;
    settings.RecordingSoundCard = 1;
    for (const SettingGroup& group : AllSettings()) {
        if (group.file != SettingsFile::Local)
            continue;
        LoadRows(group.rows, {ini}, settings);
        SizeJumpCartButtons(settings);
    }
    return settings;
}

} // namespace

TEST(SaveLocalSettings, ALoadAndASaveLeaveAFullFileAsItIs) {
    tests::TestMachine machine;
    const QByteArray before = withAudioEnd();
    machine.write(ini, before);
    Settings settings = loadAll();
    EXPECT_EQ(SaveLocalSettings(settings, QStringLiteral("tolvex.ini")), platform::ProfileOk);
    EXPECT_EQ(machine.read(ini), before);
}

TEST(SaveLocalSettings, MissingKeysJoinTheirSectionsInTheOrderOfSavingAndNothingElseChanges) {
    tests::TestMachine machine;
    machine.write(ini, full);
    Settings settings = loadAll();
    EXPECT_EQ(SaveLocalSettings(settings, ini), platform::ProfileOk);
    EXPECT_EQ(machine.read(ini), withAudioEnd());
}

TEST(SaveLocalSettings, ANewFileHoldsTheKeysInTheOrderOfSaving) {
    tests::TestMachine machine;
    Settings settings = loadAll();
    settings.DataLocation = QStringLiteral("C:\\");
    settings.CartPartTable[2].Location = QStringLiteral("D:\\X\\");
    EXPECT_EQ(SaveLocalSettings(settings, ini), platform::ProfileOk);
    const QByteArray saved = machine.read(ini);
    EXPECT_TRUE(saved.startsWith("[FileLocations]\r\nData=C:\r\nSchedules=C:\\SCHEDULE\r\nLogs=C:\\LOGS\r\n"
                                 "Carts1=\r\nCarts2=D:\\X\r\n"))
        << saved.left(200).toStdString();
    EXPECT_EQ(settings.CartPartTable[2].Location, "D:\\X");
    // Automatically assigned devices are not saved; the sections are in the order of their first use.
    EXPECT_FALSE(saved.contains("SoundCardNumber"));
    QByteArrayList sections;
    for (const QByteArray& line : saved.split('\n'))
        if (line.startsWith('['))
            sections << line.trimmed();
    EXPECT_EQ(sections, (QByteArrayList{"[FileLocations]", "[Audio]", "[DateTimeSettings]", "[AudioWall]",
                                        "[Carts]", "[LinkMesh]", "[CartPlayers]", "[Display]"}));
    EXPECT_TRUE(saved.contains("PlayerFadeSeconds=2\r\nRecordingSoundCard=1\r\n"));
    EXPECT_TRUE(saved.contains("JumpCartNumber1=0\r\nJumpDescription1=\r\nJumpCartNumber2=0\r\n"));
    EXPECT_TRUE(saved.contains("BackColor1=0\r\nForeColor1=255\r\nBackColor2=0\r\n"));
}

// A form holds a set flag as -1; the files hold 0 or 1.
TEST(SaveLocalSettings, FlagsLoseTheirSign) {
    tests::TestMachine machine;
    Settings values = loadAll();
    values.ShowClock = values.AdjustTheSystemColors = values.UseLargeWLBuffers = values.CartFontBold = -1;
    values.SingleClickPlayCarts = values.MouseClose = values.ShowICAtLogin = values.DisplayExtros = -1;
    values.ShowPadAtLogin = 0;
    EXPECT_EQ(SaveLocalSettings(values, ini), platform::ProfileOk);
    const QByteArray saved = machine.read(ini);
    for (const char* line : {"ShowClock=1\r\n", "AdjustTheSystemColors=1\r\n", "UseLargeWLBuffers=1\r\n",
                             "CartFontBold=1\r\n", "SingleClickPlayCarts=1\r\n", "MouseClose=1\r\n",
                             "ShowICAtLogin=1\r\n", "DisplayExtros=1\r\n", "ShowPadAtLogin=0\r\n"})
        EXPECT_TRUE(saved.contains(line)) << line;
    EXPECT_EQ(values.ShowClock, -1) << "the setting stays as the form has it";
}

TEST(SaveLocalSettings, LocationsAreTidiedOnceASave) {
    tests::TestMachine machine;
    Settings settings = loadAll();
    settings.DataLocation = QStringLiteral(" m:\\tolvex\\\\ ");
    settings.CartPartTable[1].Location = QString::fromUtf8("u:\\Gro\u00DF \u00B5\u00E9\\");
    settings.CartPartTable[2].Location = QStringLiteral("\\\\srv\\wall\\\\\\");
    EXPECT_EQ(SaveLocalSettings(settings, ini), platform::ProfileOk);
    EXPECT_TRUE(machine.read(ini).startsWith(
        "[FileLocations]\r\nData=M:\\TOLVEX\\\r\nSchedules=M:\\TOLVEX\\\\SCHEDULE\r\n"
        "Logs=M:\\TOLVEX\\\\LOGS\r\nCarts1=U:\\GRO\xDF \xB5\xC9\r\n"
        "Carts2=\\\\SRV\\WALL\\\\\r\n"))
        << machine.read(ini).left(300).toStdString();
    EXPECT_EQ(settings.DataLocation, "M:\\TOLVEX\\");
    EXPECT_EQ(settings.CartPartTable[2].Location, "\\\\SRV\\WALL\\\\");
}

TEST(SaveLocalSettings, AutomaticAssignmentRemovesStoredDevicesAndTheEditorIsKeptByItsShortPathToo) {
    tests::TestMachine machine;
    machine.write(ini, withAudioEnd());
    machine.write(QStringLiteral("C:\\Program Files\\Wave Editor\\editor.exe"), "x");
    Settings settings = loadAll();
    settings.AutomaticPlayerAssignment = -1;
    settings.AudioEditor = QStringLiteral("C:\\Program Files\\Wave Editor\\editor.exe");
    EXPECT_EQ(SaveLocalSettings(settings, ini), platform::ProfileOk);
    const QByteArray saved = machine.read(ini);
    EXPECT_FALSE(saved.contains("SoundCardNumber"));
    EXPECT_TRUE(saved.contains("AutomaticPlayerAssignment=1\r\n"));
    EXPECT_TRUE(saved.contains("\r\nAudioEditor=C:\\Program Files\\Wave Editor\\editor.exe\r\n"));
    const QString shortPath =
        platform::ShortPath(QStringLiteral("C:\\Program Files\\Wave Editor\\editor.exe"));
    EXPECT_FALSE(shortPath.contains(u' '));
    EXPECT_TRUE(saved.contains("\r\nSampleEditor=" + shortPath.toLatin1() + "\r\n"));
}

TEST(SaveLocalSettings, APathThatIsEmptyOrCannotBeWrittenLosesNothing) {
    tests::TestMachine machine;
    Settings settings = loadAll();
    EXPECT_EQ(SaveLocalSettings(settings, QStringLiteral("  ")), platform::ProfileOk);
    EXPECT_EQ(
        platform::FolderNames(platform::WindowsFolder()).filter(QStringLiteral(".ini"), Qt::CaseInsensitive),
        QStringList());
    machine.makeFolder(ini);
    EXPECT_NE(SaveLocalSettings(settings, ini), platform::ProfileOk);
    EXPECT_NE(SaveLocalSettings(settings, QStringLiteral("C:\\missing\\X.INI")), platform::ProfileOk);
    EXPECT_FALSE(machine.exists(QStringLiteral("C:\\missing")));
}

// Kills a process that saves two configurations in turn, many times: the file is always one of them.
TEST(SaveLocalSettings, AKillAtAnyMomentLeavesTheOldFileOrTheNewOne) {
    tests::TestMachine machine;
    machine.write(ini, withAudioEnd());
    Settings settings = loadAll();
    const auto save = [&settings](int turn) {
        settings.DataLocation = turn % 2 ? QStringLiteral("M:\\ONE") : QStringLiteral("M:\\ANOTHER\\PLACE");
        settings.KHz = turn % 2 ? 44100 : 22050;
        return SaveLocalSettings(settings, ini);
    };
    ASSERT_EQ(save(0), platform::ProfileOk);
    const QByteArray first = machine.read(ini);
    ASSERT_EQ(save(1), platform::ProfileOk);
    const QByteArray second = machine.read(ini);
    ASSERT_NE(first, second);
    for (int kill = 0; kill < 25; ++kill) {
        const pid_t child = fork();
        if (child == 0)
            for (int turn = 0;; ++turn)
                save(turn);
        usleep(static_cast<useconds_t>(2000 + kill * 300));
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const QByteArray left = machine.read(ini);
        ASSERT_TRUE(left == first || left == second) << left.toStdString();
    }
    // And the next save succeeds.
    machine.use();
    EXPECT_EQ(save(0), platform::ProfileOk);
    EXPECT_EQ(machine.read(ini), first);
}
