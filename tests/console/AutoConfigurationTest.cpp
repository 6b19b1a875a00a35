// From an empty machine to a configured workstation, and again on one that is complete.
#include "console/AutoConfiguration.h"

#include "console/Installation.h"
#include "console/WorkstationGlance.h"
#include "core/system/Registry.h"
#include "platform/Machine.h"
#include "platform/profile/ProfileFile.h"
#include "station/CheckConfiguration.h"
#include "station/LoadSettings.h"
#include "station/StationTest.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;
using platform::DriveType;

namespace {

const QString localQuestion = "Do you want Tolvex to be configured to run from the following directories:\n\n"
                              "Data Location    : C:\\TOLVEX\\SYSTEM\nAudio Location   : C:\\TOLVEX\\AUDIO";
const QString networkQuestion = "Tolvex will be configured to look in the following directories:\n\n"
                                "Data Location    : M:\\\nAudio Location   : U:\\";
const QString connectQuestion =
    "Do you have a networked system of Tolvex on drives M: and U: that you want to connect to?";
const QString searchQuestion = "Do you want Tolvex to automatically search for information on a network?";
const QString exitQuestion = "Tolvex is now fully configured on your system.\n\n"
                             "Do you want to exit from Tolvex Configuration?";
const QString editorMessage = "Please select the program you want to use to edit carts";
const QString doneMessage =
    "Tolvex is now fully configured on this computer, and all the data files have been created.";
const QStringList installing = {editorMessage, doneMessage};

QByteArray terminal(const QByteArray& networkName) {
    return QByteArray(30, ' ') + networkName.leftJustified(30) + QByteArray(12, '\0') + QByteArray(56, ' ');
}

class AutoConfigurationTest : public StationTest {
protected:
    AutoConfigurationTest() { start(); }

    // A start of the program: everything is loaded from the files, and no editor is chosen.
    void start() {
        begin();
        prompts.forget();
        LoadLocalSettings(station);
        prompts.files = {std::nullopt};
    }
    void addNetwork() {
        machine.addDrive(u'M', DriveType::Remote);
        machine.addDrive(u'U', DriveType::Remote);
    }
    QString locations() const {
        QStringList all = {station.settings.DataLocation};
        for (const CartPart& part : station.settings.CartPartTable)
            all += part.Location;
        all.removeDuplicates();
        return all.join(' ');
    }
    QString stored(const char* section, const char* key) const {
        return platform::ProfileText(section, key, "none", "TOLVEX.INI");
    }
};

} // namespace

TEST_F(AutoConfigurationTest, AMachineThatHasNothingBecomesAWorkstation) {
    machine.write("C:\\Program Files\\App\\Updates.txt", "news");
    platform::SetApplicationFolder("C:\\Program Files\\App");
    prompts.answers = {Answer::Yes};
    EXPECT_TRUE(DefaultLocalInstall(station));
    EXPECT_EQ(prompts.texts(), QStringList{localQuestion} + installing);
    EXPECT_EQ(prompts.asked[1].title, QString("Tolvex Automatic Configuration"));
    EXPECT_EQ(prompts.splashes,
              (QStringList{"Automatic Configuration..", "Checking/Creating Databases..",
                           "Checking/Creating Files..", "Loading Locale Specific Information...",
                           "Loading System Specific Information...", "Accessing AudioWall...",
                           "Accessing Terminals...", "Opening Public Instant Cart Hotlists...",
                           "Audio Setup..", "Finishing Configuration..", QString()}));
    EXPECT_EQ(prompts.pointer(), platform::Pointer::Default);
    EXPECT_TRUE(prompts.notices.isEmpty());
    EXPECT_EQ(station.settings.AutoConfigInProgress, 0);
    ASSERT_EQ(prompts.fileQuestions.size(), 1);
    const platform::FileQuestion& editor = prompts.fileQuestions[0];
    EXPECT_EQ(editor.title + '|' + editor.filter + '|' + editor.fileName + '|' + editor.defaultExtension,
              QString("Select Audio Editor Program|Programs|*.EXE *.COM *.BAT *.PIF|*.EXE|EXE"));

    // The state at the next start of any program.
    start();
    EXPECT_TRUE(MissingItems(station).isEmpty());
    EXPECT_EQ(CheckConfiguration(station), QString());
    EXPECT_EQ(locations(), QString("C:\\TOLVEX\\SYSTEM C:\\TOLVEX\\AUDIO"));
    EXPECT_EQ(stored("KOVA", "DefaultDatabase"), QString("KOVA26.MDB"));
    EXPECT_EQ(stored("AudioWall", "JumpCartNumber3") + stored("AudioWall", "JumpDescription3"),
              QString("3001Music"));
    EXPECT_EQ(stored("Audio", "EmptyCartBackColor"), QString::number(qint32(0x8000000F)));
    for (int part = 1; part <= 10; ++part)
        EXPECT_EQ(machine.read(QString("C:\\TOLVEX\\AUDIO\\Carts%1.lst").arg(part)).size(),
                  part == 10 ? 999 * 300 : 1000 * 300);
    EXPECT_FALSE(machine.exists("C:\\TOLVEX\\AUDIO\\Carts11.lst"));
    EXPECT_EQ(machine.read("C:\\TOLVEX\\AUDIO\\GLIC.Lst").size(), 40 * 256);
    EXPECT_EQ(machine.read("C:\\TOLVEX\\AUDIO\\Audwall.ini"), "[Audiowall]\r\nVersion=2.6\r\n");
    const QByteArray list = machine.read("C:\\TOLVEX\\SYSTEM\\Terminal.Lst");
    EXPECT_EQ(list.left(128), terminal(platform::ComputerName().toLatin1()));
    EXPECT_EQ(list.size(), 32 * 128);
    EXPECT_EQ(station.settings.LinkMeshId, 1);
    EXPECT_FALSE(LookAtWorkstation(station).facts[2].missing) << "the number of the workstation";

    // While no database is chosen, one of the kind under another name serves as well.
    ASSERT_TRUE(QFile::rename(machine.host("C:\\TOLVEX\\SYSTEM\\SCHEDULE\\KOVA26.MDB"),
                              machine.host("C:\\TOLVEX\\SYSTEM\\SCHEDULE\\OWN.MDB")));
    machine.write(
        "C:\\WINDOWS\\TOLVEX.INI",
        machine.read("C:\\WINDOWS\\TOLVEX.INI").replace("DefaultDatabase=KOVA26.MDB", "DefaultDatabase="));
    start();
    EXPECT_TRUE(MissingItems(station).isEmpty());
}

TEST_F(AutoConfigurationTest, ASecondRunKeepsWhatTheFirstOneAndOthersMade) {
    prompts.answers = {Answer::Yes};
    ASSERT_TRUE(DefaultLocalInstall(station));
    start();
    const QByteArray cart(300, 'x');
    machine.write("C:\\TOLVEX\\AUDIO\\Carts2.lst",
                  cart + machine.read("C:\\TOLVEX\\AUDIO\\Carts2.lst") + cart);
    QByteArray list = machine.read("C:\\TOLVEX\\SYSTEM\\Terminal.Lst");
    list = terminal("OTHER") + list.mid(128, 128) + list.left(128) + list.mid(384);
    machine.write("C:\\TOLVEX\\SYSTEM\\Terminal.Lst", list);
    platform::WriteProfileText("Hardware1", "CardType", "7", "TOLVEX.INI");
    platform::WriteProfileText("FileLocations", "AudioEditor", "C:\\EDIT.EXE", "TOLVEX.INI");
    machine.write("C:\\EDIT.EXE", "program");
    const QByteArray carts = machine.read("C:\\TOLVEX\\AUDIO\\Carts2.lst");
    const QByteArray database = machine.read("C:\\TOLVEX\\SYSTEM\\SCHEDULE\\KOVA26.MDB");
    start();
    prompts.answers = {Answer::Yes, Answer::Yes};
    LocalSetup(station);
    EXPECT_EQ(prompts.texts(),
              (QStringList{"Are you sure you want to allow Tolvex to automatically configure itself to run "
                           "locally?\nThis will overwrite all of your previous settings.",
                           localQuestion, doneMessage}));
    EXPECT_EQ(prompts.asked[0].defaultAnswer, Answer::No);
    EXPECT_EQ(stored("LinkMesh", "LinkMeshId"), QString("3"));
    EXPECT_EQ(stored("Hardware1", "CardType"), QString("7"));
    EXPECT_EQ(stored("FileLocations", "AudioEditor"), QString("C:\\EDIT.EXE"));
    EXPECT_TRUE(machine.read("C:\\TOLVEX\\AUDIO\\Carts2.lst") == carts);
    EXPECT_TRUE(machine.read("C:\\TOLVEX\\SYSTEM\\Terminal.Lst") == list);
    EXPECT_TRUE(machine.read("C:\\TOLVEX\\SYSTEM\\SCHEDULE\\KOVA26.MDB") == database);

    start();
    prompts.answers = {Answer::No};
    LocalSetup(station);
    prompts.answers = {Answer::No};
    EXPECT_FALSE(DefaultLocalInstall(station));
    EXPECT_EQ(prompts.asked.size(), 2);
}

TEST_F(AutoConfigurationTest, AWorkstationTakesItsOwnNumberAFreeOneOrNobodysName) {
    const QByteArray own = platform::ComputerName().toLower().toLatin1();
    machine.write("C:\\TOLVEX\\SYSTEM\\TLVX_SYS.INI", "[LinkMesh]\r\nNumberTerminals=3\r\n");
    const struct {
        QByteArray list;
        int id;
        QByteArray after;
    } cases[] = {
        {terminal("A") + terminal(own) + terminal(""), 2, terminal("A") + terminal(own) + terminal("")},
        {terminal("A") + terminal("B") + terminal(own), 3, terminal("A") + terminal("B") + terminal(own)},
        {terminal("A") + terminal("") + terminal(""), 2,
         terminal("A") + terminal(own.toUpper()) + terminal("")},
        {terminal("A") + terminal("B") + terminal("C"), 1, terminal("A") + terminal("B") + terminal("C")},
        {terminal("A"), 2, terminal("A") + terminal(own.toUpper()) + terminal("")},
    };
    for (const auto& each : cases) {
        machine.write("C:\\TOLVEX\\SYSTEM\\Terminal.Lst", each.list);
        start();
        prompts.answers = {Answer::Yes};
        EXPECT_TRUE(DefaultLocalInstall(station));
        EXPECT_EQ(stored("LinkMesh", "LinkMeshId").toInt(), each.id);
        EXPECT_TRUE(machine.read("C:\\TOLVEX\\SYSTEM\\Terminal.Lst") == each.after) << each.id;
        const QString shared = "All 3 numbers of the station are in use. This workstation uses number 1 "
                               "together with A. Choose another one in LinkMesh Setup.";
        EXPECT_EQ(prompts.texts().contains(shared), each.id == 1);
    }
}

TEST_F(AutoConfigurationTest, WhatIsFoundIsUsedAfterAQuestion) {
    addNetwork();
    machine.write("M:\\SYSTEM\\TLVX_SYS.INI", "[LinkMesh]\r\nNumberTerminals=2\r\n");
    machine.write("U:\\AUDIO\\AUDIO2\\Carts2.lst", QByteArray(300, 'x'));
    machine.write("U:\\AUDIO\\Carts1.lst", QByteArray(300, 'x'));
    const auto question = [](const char* indent) {
        return QString(
                   "Tolvex data has been found in: \n\n m:\\SYSTEM\n\nand the audiowall has been found in: "
                   "\n\n%1u:\\AUDIO\n%1u:\\AUDIO\\AUDIO2\n\nDo you want to use these locations?")
            .arg(indent);
    };
    prompts.answers = {Answer::Yes, Answer::Yes};
    EXPECT_TRUE(LookForSetup(station));
    EXPECT_EQ(prompts.texts(), QStringList{question("")} + installing + QStringList{exitQuestion});
    EXPECT_EQ(locations(), QString("M:\\SYSTEM U:\\AUDIO U:\\AUDIO\\AUDIO2"));
    EXPECT_EQ(stored("FileLocations", "Carts11"), QString("U:\\AUDIO\\AUDIO2"));
    EXPECT_TRUE(machine.read("U:\\AUDIO\\AUDIO2\\Carts2.lst").startsWith(QByteArray(300, 'x')));
    EXPECT_EQ(machine.read("M:\\SYSTEM\\Terminal.Lst").size(), 2 * 128);

    start();
    prompts.answers = {Answer::Yes, Answer::Yes, Answer::No};
    EXPECT_FALSE(NetworkSetup(station));
    EXPECT_EQ(prompts.texts(),
              (QStringList{searchQuestion, question("\t")} + installing + QStringList{exitQuestion}));
}

TEST_F(AutoConfigurationTest, WithoutAFindTheDefaultsAreOffered) {
    const auto run = [this](const std::function<bool(Workstation&)>& job, const std::deque<Answer>& answers) {
        start();
        prompts.answers = answers;
        const bool exits = job(station);
        EXPECT_TRUE(prompts.answers.empty());
        return exits;
    };
    // Nothing exists, including the network drives.
    EXPECT_FALSE(run(LookForSetup, {Answer::Cancel}));
    EXPECT_EQ(prompts.texts(), QStringList{connectQuestion});
    EXPECT_EQ(prompts.asked[0].defaultAnswer, Answer::No);
    EXPECT_FALSE(run(NetworkSetup, {Answer::Cancel}));
    EXPECT_FALSE(run(NetworkSetup, {Answer::Yes, Answer::No}));
    EXPECT_EQ(prompts.texts(), (QStringList{searchQuestion, networkQuestion}));
    EXPECT_EQ(prompts.asked[1].title, QString("Tolvex Automatic Network Configuration"));

    // The default locations cannot be made: nothing is saved, and the settings stay unchanged.
    station.settings.DataLocation = "C:\\BEFORE";
    prompts.answers = {Answer::Yes};
    EXPECT_FALSE(DefaultNetworkInstall(station));
    EXPECT_EQ(locations(), QString("C:\\BEFORE "));
    EXPECT_FALSE(machine.exists("C:\\WINDOWS\\TOLVEX.INI"));
    EXPECT_EQ(prompts.texts().filter("There was a problem").size(), 2); // M:\USERS and U:
    EXPECT_EQ(prompts.splashes.last(), QString());
    EXPECT_EQ(prompts.pointer(), platform::Pointer::Default);

    addNetwork();
    EXPECT_TRUE(run(LookForSetup, {Answer::Yes, Answer::Yes, Answer::Yes}));
    EXPECT_EQ(prompts.texts(),
              (QStringList{connectQuestion, networkQuestion} + installing + QStringList{exitQuestion}));
    EXPECT_EQ(locations(), QString("M: U:"));
    machine.removeDrive(u'M'); // carts alone, which do not suffice
    EXPECT_FALSE(run(LookForSetup, {Answer::No, Answer::No, Answer::Yes, Answer::No}));
    EXPECT_EQ(prompts.texts().mid(1),
              (QStringList{connectQuestion, localQuestion} + installing + QStringList{exitQuestion}));
    EXPECT_EQ(locations(), QString("C:\\TOLVEX\\SYSTEM C:\\TOLVEX\\AUDIO"));
    EXPECT_FALSE(run(NetworkSetup, {Answer::No, Answer::No}));

    // A stopped search asks nothing.
    start();
    prompts.progressGoesOn = {false};
    EXPECT_FALSE(LookForSetup(station));
    EXPECT_TRUE(prompts.asked.isEmpty());
    prompts.progressGoesOn = {false};
    prompts.answers = {Answer::Yes};
    EXPECT_FALSE(NetworkSetup(station));
    EXPECT_EQ(prompts.texts(), QStringList{searchQuestion});
}

TEST_F(AutoConfigurationTest, AnAudiowallFoundAloneKeepsTheDataWhereTheyAre) {
    machine.write("C:\\AUDIO\\Carts1.lst", QByteArray(300, 'x'));
    prompts.answers = {Answer::Yes};
    EXPECT_EQ(ConfigureFromSearch(station, false), InstallOutcome::Configured);
    // There is no data location at all: nothing is made in the root of a drive, and the user is told.
    EXPECT_TRUE(prompts.texts()[0].startsWith("Tolvex data has been found in: \n\n \n\nand"));
    EXPECT_TRUE(prompts.texts().end()[-2].contains("Data location: not set"));
    for (const char* file : {"C:\\Terminal.Lst", "C:\\SCHEDULE", "C:\\USERS"})
        EXPECT_FALSE(machine.exists(file)) << file;

    station.settings.DataLocation = "C:\\DATA";
    prompts.files = {std::nullopt};
    prompts.answers = {Answer::Yes};
    EXPECT_EQ(ConfigureFromSearch(station, false), InstallOutcome::Configured);
    EXPECT_EQ(locations(), QString("C:\\DATA C:\\AUDIO"));
}

TEST_F(AutoConfigurationTest, WhatCannotBeMadeIsNamedAndStopsNothingElse) {
    machine.write("C:\\TOLVEX\\SYSTEM\\SCHEDULE", "a file");
    machine.makeFolder("C:\\TOLVEX\\SYSTEM\\Terminal.Lst");
    machine.makeFolder("C:\\TOLVEX\\AUDIO\\GLIC.Lst");
    machine.makeFolder("C:\\TOLVEX\\AUDIO\\Carts4.lst");
    station.settings.LinkMeshId = 5;
    prompts.answers = {Answer::No, Answer::Yes, Answer::No};
    EXPECT_FALSE(LookForSetup(station));
    EXPECT_EQ(prompts.texts().last(), exitQuestion);
    EXPECT_EQ(prompts.texts().end()[-3],
              QString("This could not be made:\n\n"
                      "Folder: C:\\TOLVEX\\SYSTEM\\SCHEDULE\n"
                      "Automation database: C:\\TOLVEX\\SYSTEM\\SCHEDULE\\KOVA26.MDB\n"
                      "Terminal list: C:\\TOLVEX\\SYSTEM\\Terminal.Lst\n"
                      "Cart list: C:\\TOLVEX\\AUDIO\\Carts4.lst\n"
                      "Hotlist: C:\\TOLVEX\\AUDIO\\GLIC.Lst\n\n"
                      "Please see that the disks are connected and have room, and configure again: what was "
                      "made is kept."));
    EXPECT_EQ(machine.read("C:\\TOLVEX\\SYSTEM\\SCHEDULE"), "a file");
    EXPECT_EQ(stored("LinkMesh", "LinkMeshId"), QString("5")); // no list says otherwise

    // An ini file that cannot be written: the requested locations are built all the same.
    QFile::remove(machine.host("C:\\WINDOWS\\TOLVEX.INI"));
    QDir().rename(machine.host("C:\\TOLVEX"), machine.host("C:\\") + "/OLD");
    machine.makeFolder("C:\\WINDOWS\\TOLVEX.INI");
    start();
    prompts.answers = {Answer::Yes};
    EXPECT_TRUE(DefaultLocalInstall(station));
    EXPECT_TRUE(prompts.texts()[1].startsWith(
        "There was a problem saving the settings of this workstation in TOLVEX.INI (system error "));
    EXPECT_TRUE(prompts.texts().end()[-2].contains("Settings of this workstation: TOLVEX.INI"));
    EXPECT_TRUE(machine.exists("C:\\TOLVEX\\AUDIO\\Carts10.lst"));
    EXPECT_EQ(locations(), QString("C:\\TOLVEX\\SYSTEM C:\\TOLVEX\\AUDIO"));
}

TEST_F(AutoConfigurationTest, TheInstallerNamesTheBaseAndTheEditorIsLookedFor) {
    machine.write("C:\\WINDOWS\\Win.ini", "[Tolvex]\r\nInstallPath=C:\\Radio\\\r\n");
    WriteRegistryString(LocalMachineHive, "Software\\Syntrillium\\CE2000", "MAINDIR", "C:\\CE", {});
    machine.write("C:\\CE\\COOL2000.EXE", "program");
    prompts.answers = {Answer::Yes};
    EXPECT_TRUE(DefaultLocalInstall(station));
    EXPECT_EQ(locations(), QString("C:\\RADIO\\SYSTEM C:\\RADIO\\AUDIO"));
    EXPECT_EQ(station.settings.AudioEditor, QString("C:\\CE\\COOL2000.EXE"));
    EXPECT_FALSE(prompts.texts().contains(editorMessage));

    QFile::remove(machine.host("C:\\CE\\COOL2000.EXE"));
    machine.write("C:\\MY.EXE", "program");
    const struct {
        std::optional<QString> chosen;
        const char* editor;
    } cases[] = {{std::nullopt, "C:\\CE\\COOL2000.EXE"},
                 {"C:\\NONE.EXE", "C:\\CE\\COOL2000.EXE"},
                 {"C:\\MY.EXE", "C:\\MY.EXE"}};
    for (const auto& each : cases) {
        start();
        prompts.files = {each.chosen};
        prompts.answers = {Answer::Yes};
        EXPECT_TRUE(DefaultLocalInstall(station));
        EXPECT_EQ(stored("FileLocations", "AudioEditor"), QString(each.editor));
    }
}
