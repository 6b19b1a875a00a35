// The settings of an automation database as the window edits them: what its controls show, the checks of OK,
// and storing beside other workstations. No widgets.
#include "automation/AutomationEditing.h"
#include "automation/AutomationSchema.h"
#include "automation/AutomationSetup.h"

#include "core/settings/Settings.h"
#include "databases/ServerTest.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/users/UsersDatabase.h"
#include "jet/Database.h"
#include "platform/Machine.h"
#include "platform/host/LookOnly.h"
#include "platform/profile/ProfileFile.h"
#include "support/FileFaults.h"
#include "support/FixedClock.h"
#include "support/NoRoom.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");
constexpr qint32 Carts = 9999;

class AutomationEditingTest : public ServerTest {
protected:
    AutomationEditingTest() {
        settings.DataLocation = QStringLiteral("C:\\DATA");
        make(Path, KOVAType);
        EXPECT_EQ(ValidateKOVADatabaseTables(Path), 0);
    }
    QByteArray file() const { return machine.read(Path); }
    // On another workstation the window is opened, one change is made, and OK is pressed.
    void storeElsewhere(const char* item, const char* value, const char* login = nullptr) {
        KOVADatabaseSettings theirs;
        UsersState others(settings);
        ASSERT_TRUE(!login || OpenUserHistory(others));
        others.currentLogin = login;
        AutomationEditing other(theirs, settings, others);
        ASSERT_TRUE(other.open(Path));
        QString why;
        ASSERT_TRUE(SetAutomationItem(*FindAutomationItem(item), value, theirs, &why)) << why.toStdString();
        ASSERT_TRUE(other.store());
    }

    Settings settings;
    UsersState users{settings};
    KOVADatabaseSettings record;
    AutomationEditing editing{record, settings, users};
};

AutomationEntries defaults() {
    KOVADatabaseSettings record;
    for (const AutomationItem& item : AutomationItems())
        TakeMember(item, DefaultValue(item, item.readDefault, record, "C:\\DATA"), record);
    record.SEGUE_PreviewLength = 10;
    record.SEGUE_VoiceStartCart = 8001;
    record.SEGUE_VoiceEndCart = 8999;
    return ShowAutomationSettings(record);
}

} // namespace

// Each check in its place: entries that break all of them give the first message; mended one by one they give
// the others.
TEST(AutomationFieldsTest, ChecksInOrderAndNamesTheField) {
    AutomationEntries entries = defaults();
    entries["txtVoiceLinkEndcart"] = entries["txtVoiceLinkStartCart"]; // one cart is a range
    EXPECT_FALSE(CheckAutomationSettings(entries, Carts));
    const QString restart = "You must set the automatic restart delay to a value from 0 to 32000 seconds";
    const QString next = "You must set how many \"Next\" to send from 1 to 50";
    const QString preview = "You can only set from 1 to 300 seconds for the number of seconds to hear when "
                            "using the segue editor";
    const QString voice = "You must choose a valid cart number range for Voice Links";
    const QString music = "You must set at least one of Music Log Filename Prefix and Log Filename Format";
    const QString adverts =
        "You must set at least one of Adverts Log Filename Prefix and Log Filename Format";
    const struct {
        const char* control;
        QVariant good;
        QString message; // while it is as below
        QVariant bad;
        QString at = {}; // the field, where it is another one
    } steps[] = {
        {"txtRestartSeconds", "0", restart, ""},
        {"txtRestartSeconds", "32000", restart, "32001"},
        {"txtShowNextItemsCount", "1", next, "0"},
        {"txtShowNextItemsCount", "50", next, "51"},
        {"comboStationControl", 0, next, 2, "txtShowNextItemsCount"},
        {"txtSegPreviewLength", "1", preview, "0"},
        {"txtSegPreviewLength", "300", preview, "301"},
        {"txtVoiceLinkStartCart", "8001", voice, "0"},
        {"txtVoiceLinkStartCart", "8001", voice, "10000"},
        {"txtVoiceLinkEndcart", "8001", voice, "8000"},
        {"txtVoiceLinkEndcart", "9999", voice, "10000"},
        {"comboMusicFilenameFormat", "yymmdd", music, " ", "txtMusicFilenamePrefix"},
        {"txtMusicFilenamePrefix", "TL", music, "", "txtMusicFilenamePrefix"},
        {"comboAdvertFilenameFormat", "yymmdd", adverts, "", "txtAdvertFilenamePrefix"},
        {"txtPrecueTime", "32767", "This number has to lie between 0 and 32767.", "32768"},
        {"txtMusicCartOffset", "-5", "This number has to lie between -2147483648 and 2147483647.",
         "2147483648"},
    };
    entries["comboStationControl"] = 1;
    entries["txtMusicFilenamePrefix"] = "";
    entries["comboMusicFilenameFormat"] = "";
    for (const auto& step : steps)
        entries[step.control] = step.bad;
    entries["comboStationControl"] = 1;
    for (const auto& step : steps) {
        const bool isEndOfRest = QString(step.control) == "txtMusicFilenamePrefix";
        if (isEndOfRest)
            entries["comboMusicFilenameFormat"] = "";
        // What follows is as wrong as it was: this message comes first.
        if (QString(step.control) == "comboStationControl")
            entries["txtShowNextItemsCount"] = "0";
        entries[step.control] = step.bad;
        const auto fault = CheckAutomationSettings(entries, Carts);
        ASSERT_TRUE(fault) << step.control;
        EXPECT_EQ(fault->message, step.message) << step.control;
        EXPECT_EQ(fault->control, step.at.isEmpty() ? QString(step.control) : step.at);
        entries[step.control] = step.good;
    }
    EXPECT_FALSE(CheckAutomationSettings(entries, Carts));
    // What is switched off is not looked at.
    entries["txtRestartSeconds"] = "99999";
    entries["chkAutoRestart"] = 0;
    entries["txtMaxFadeTime"] = "99999";
    entries["txtSTTriggerLevel"] = "99999";
    entries["chkSTLevelTrigger"] = 0;
    entries["txtMusicLogPath"] = "M:\\LOGS\\";
    EXPECT_FALSE(CheckAutomationSettings(entries, Carts));
    EXPECT_EQ(entries["txtMusicLogPath"], "M:\\LOGS");
}

// Every item with a control keeps every value that its control can show; those of one group do not stand
// together, so each group is tried in both of its states.
TEST(AutomationFieldsTest, KeepsEveryItemThroughItsControls) {
    KOVADatabaseSettings record;
    for (const AutomationItem& item : AutomationItems())
        TakeMember(item, DefaultValue(item, item.readDefault, record, "C:\\DATA"), record);
    int next = 1;
    for (const AutomationField& field : AutomationFields()) {
        const AutomationItem& item = *FindAutomationItem(field.item);
        const auto words = static_cast<int>(field.words.size());
        const int value = ++next;
        switch (field.kind) {
        case AutomationField::Kind::Flag:
            TakeMember(item, MemberValue(item, record).toInt() == 0 ? 1 : 0, record);
            break;
        case AutomationField::Kind::List:
            TakeMember(item, words - 1, record);
            break;
        case AutomationField::Kind::Player:
            TakeMember(item, value % words == 0 ? 255 : value % words, record);
            break;
        case AutomationField::Kind::Text:
        case AutomationField::Kind::ClientDatabase:
            TakeMember(item, QStringLiteral("text %1").arg(value), record);
            break;
        default:
            TakeMember(item, value, record);
        }
    }
    record.KOVA_LogBackColor = static_cast<qint32>(0x8000000F);
    record.KOVA_Go_Fade_Length = 2.5F;
    record.KOVA_EachFadeTime = 0;
    record.KOVA_SCComputerPort = 20;
    for (const bool second : {false, true}) {
        if (second) {
            record.KOVA_AutoRestartDelay = -1;
            record.SEGUE_VoiceLinkLevelTrigger = 0;
            record.ADVERTS_ClientDatabase.clear();
            record.KOVA_MaxFadeTime = 0;
            record.KOVA_EachFadeTime = 7;
            record.KOVA_SCComputerPort = 0;
        }
        const AutomationEntries entries = ShowAutomationSettings(record);
        EXPECT_EQ(entries["chkAutoRestart"], second ? 0 : 1);
        EXPECT_EQ(entries["txtRestartSeconds"].toString().isEmpty(), second);
        EXPECT_EQ(entries["optFadeEach"], second ? 1 : 0);
        EXPECT_EQ(entries["txtMaxFadeTime"].toString().isEmpty(), second);
        EXPECT_EQ(entries["comboStationControl"], second ? 2 : 1);
        KOVADatabaseSettings taken = record;
        for (const AutomationField& field : AutomationFields())
            if (field.kind < AutomationField::Kind::Font)
                TakeMember(*FindAutomationItem(field.item), "77", taken);
        TakeAutomationSettings(entries, taken);
        for (const AutomationItem& item : AutomationItems())
            EXPECT_EQ(MemberValue(item, taken), MemberValue(item, record)) << item.name;
    }
    // The lowest values that switch something on.
    record.KOVA_AutoRestartDelay = 0;
    record.SEGUE_VoiceLinkLevelTrigger = record.KOVA_MaxFadeTime = 1;
    AutomationEntries lowest = ShowAutomationSettings(record);
    EXPECT_EQ(lowest["chkAutoRestart"], 1);
    EXPECT_EQ(lowest["txtRestartSeconds"], "0");
    EXPECT_EQ(lowest["chkSTLevelTrigger"], 1);
    EXPECT_EQ(lowest["optFadeLast"], 1);
    // Values that no list has.
    record.KOVA_FadeSongRules = 9;
    record.CARTS_FirstPlayer = 0;
    record.CARTS_LastPlayer = 200;
    record.KOVA_SCComputerAddress.clear();
    const AutomationEntries entries = ShowAutomationSettings(record);
    EXPECT_EQ(entries["comboFadeRules"], 4);
    EXPECT_EQ(entries["listCartsFirstPlayerOrder"], 0);
    EXPECT_EQ(entries["listCartsLastPlayerOrder"], 5);
    EXPECT_EQ(entries["comboStationControl"], 0);
}

// The items after it would be stored as if they were 0.
TEST_F(AutomationEditingTest, EditsNothingThatCouldNotBeReadWhole) {
    {
        const auto database = OpenSuiteDatabase(Path);
        const auto rows = database->open("Settings", RecordsetMode::Dynaset);
        EXPECT_EQ(PutDatabaseSetting(rows.get(), "KOVA.KAE_Calculation_Time", 1234567890, 0), 0);
    }
    const QByteArray before = file();
    EXPECT_FALSE(editing.open(Path));
    EXPECT_TRUE(texts().last().startsWith("The setting KOVA.KAE_Calculation_Time of " + Path))
        << texts().last().toStdString();
    EXPECT_FALSE(editing.store());
    EXPECT_EQ(file(), before);
}

// A row without a value is not an item without a row: it reads as 0, and not as a change of somebody else.
TEST_F(AutomationEditingTest, ReadsARowWithoutAValueOnce) {
    {
        const auto database = OpenSuiteDatabase(Path);
        const auto rows = database->open("Settings", RecordsetMode::Dynaset);
        rows->addNew();
        rows->set("Item", "KOVA.PreCueTime");
        rows->update();
    }
    ASSERT_TRUE(editing.open(Path));
    EXPECT_EQ(record.KOVA_PreCueTime, 0);
    EXPECT_TRUE(editing.store());
    EXPECT_TRUE(texts().isEmpty()) << texts().join('|').toStdString();
    editing.close();
    EXPECT_TRUE(rows(Path, "Settings").find("KOVA.PreCueTime,0") != std::string::npos);
}

TEST_F(AutomationEditingTest, StoresAsOneTransactionWithItsHistory) {
    ASSERT_EQ(OpenUsersDatabase(users, "C:\\DATA\\USERS\\USERS25.MDB"), 0);
    users.currentLogin = "ANN";
    ASSERT_TRUE(editing.open(Path));
    record.KOVA_PreCueTime = 33;
    ASSERT_TRUE(editing.store());
    ASSERT_EQ(AutomationSaves(users).size(), 1);
    EXPECT_EQ(AutomationSaves(users)[0].login, "ANN");
    EXPECT_EQ(AutomationSaves(users)[0].computer, platform::ComputerName());
    editing.close();
    EXPECT_TRUE(rows(Path, "Settings").find("|KOVA.PreCueTime,33|") != std::string::npos);
    EXPECT_TRUE(rows(Path, "Settings").find("BeenSet,1") != std::string::npos);
    EXPECT_TRUE(texts().isEmpty());

    // A disk that fills up half-way leaves the old settings whole, and says so.
    ASSERT_TRUE(editing.open(Path));
    record.KOVA_PreCueTime = 44;
    record.MUSIC_FilenamePrefix = QString(20000, u'x');
    {
        const NoRoom full(1);
        EXPECT_FALSE(editing.store());
    }
    EXPECT_EQ(texts().size(), 1);
    KOVADatabaseSettings left;
    AutomationEditing again(left, settings, users);
    ASSERT_TRUE(again.open(Path));
    EXPECT_EQ(left.KOVA_PreCueTime, 33);
    EXPECT_EQ(left.MUSIC_FilenamePrefix, "TL");
}

// Killed at any call to the system that changes something, the settings are all the old ones or all the new.
TEST_F(AutomationEditingTest, AKillLeavesTheOldOrTheNewSettings) {
    ASSERT_TRUE(editing.open(Path));
    editing.close();
    const QByteArray old = file();
    const auto job = [this] {
        AutomationEditing other(record, settings, users);
        if (!other.open(Path))
            return 1;
        record.KOVA_PreCueTime = 77;
        record.HOURS_Colour = 77;
        return other.store() ? 0 : 1;
    };
    const int operations = RunWithFault(job, Fault::None, 0).operations;
    ASSERT_GT(operations, 5);
    int whole = 0;
    for (int at = 1; at <= operations && !HasFailure(); ++at) {
        for (const QString& name : platform::FolderNames("C:\\DATA\\SCHEDULE"))
            platform::RemoveFile("C:\\DATA\\SCHEDULE\\" + name);
        machine.write(Path, old);
        EXPECT_TRUE(RunWithFault(job, Fault::Kill, at).killed) << at;
        KOVADatabaseSettings left;
        AutomationEditing again(left, settings, users);
        ASSERT_TRUE(again.open(Path)) << at;
        EXPECT_EQ(left.KOVA_PreCueTime == 77, left.HOURS_Colour == 77) << at;
        whole += left.HOURS_Colour == 77 ? 1 : 0;
    }
    EXPECT_GT(whole, 0);
    EXPECT_LT(whole, operations);
}

// Only entries of the history that others made since the record was loaded: not older ones, and not our own.
TEST_F(AutomationEditingTest, NamesWhoStoredAndWhen) {
    FixedClock clock({{2024, 3, 4}, {14, 38, 33}});
    ASSERT_EQ(OpenUsersDatabase(users, UsersDatabaseFile(settings)), 0);
    users.currentLogin = "ANN";
    ASSERT_TRUE(editing.open(Path));
    ASSERT_TRUE(editing.store());
    storeElsewhere("KOVA.PreCueTime", "50", "EVE");
    ASSERT_TRUE(editing.open(Path));
    ASSERT_TRUE(editing.store());
    storeElsewhere("KOVA.PreCueTime", "51", "BOB");
    clock.time = clock.time.addDays(1);
    prompts.answers = {Answer::No, Answer::No};
    record.KOVA_PreCueTime = 60;
    EXPECT_FALSE(editing.store());
    ASSERT_EQ(texts().size(), 1);
    const QString day = QLocale::system().toString(QDate(2024, 3, 4), QLocale::ShortFormat);
    EXPECT_TRUE(
        texts()[0].contains("stored by BOB on " + platform::ComputerName() + " on " + day + " at 14:38:"))
        << texts()[0].toStdString();
    EXPECT_FALSE(texts()[0].contains("ANN") || texts()[0].contains("EVE")) << texts()[0].toStdString();
    storeElsewhere("KOVA.PreCueTime", "52", "CID");
    EXPECT_FALSE(editing.store());
    EXPECT_TRUE(texts()[1].contains("stored by CID on " + platform::ComputerName() + " at 14:38:33"))
        << texts()[1].toStdString();
    EXPECT_FALSE(texts()[1].contains("BOB"));
}

TEST_F(AutomationEditingTest, TellsWhatOthersStoredBeforeItOverwritesIt) {
    ASSERT_TRUE(editing.open(Path));
    storeElsewhere("KOVA.PreCueTime", "50"); // and makes the table dense, which is no change
    record.KOVA_PreCueTime = 60;
    prompts.answers = {Answer::No};
    EXPECT_FALSE(editing.store());
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(texts()[0].contains("KOVA.PreCueTime: \"50\", was \"20\"\n")) << texts()[0].toStdString();
    EXPECT_EQ(texts()[0].count(", was \""), 1) << texts()[0].toStdString();
    EXPECT_TRUE(texts()[0].startsWith("Another workstation has changed settings of this database"));
    EXPECT_TRUE(rows(Path, "Settings").find("KOVA.PreCueTime,50") != std::string::npos);

    // Once told, it is not told again; what is stored while the question stands is.
    prompts.forget();
    prompts.answers = {Answer::Yes, Answer::Yes};
    storeElsewhere("CARTS.FirstPlayer", "3");
    prompts.beforeAnswers = [&] {
        prompts.beforeAnswers = {};
        storeElsewhere("KOVA.SweeperMode", "Dry");
    };
    EXPECT_TRUE(editing.store());
    ASSERT_EQ(texts().size(), 2);
    EXPECT_TRUE(texts()[0].contains("CARTS.FirstPlayer: \"Cart Player 3\", was \"Cart Player 1\""));
    EXPECT_TRUE(texts()[1].contains("KOVA.SweeperMode: \"Dry\", was \"Timed to Intro End\""));
    editing.close();
    EXPECT_TRUE(rows(Path, "Settings").find("KOVA.PreCueTime,60") != std::string::npos);
    EXPECT_TRUE(rows(Path, "Settings").find("KOVA.SweeperMode,0") != std::string::npos);
}

TEST_F(AutomationEditingTest, RefusesWhatIsNotThereAnyMore) {
    EXPECT_FALSE(editing.open("C:\\DATA\\SCHEDULE\\NONE.MDB"));
    machine.write("C:\\DATA\\SCHEDULE\\TEXT.MDB", "text");
    EXPECT_FALSE(editing.open("C:\\DATA\\SCHEDULE\\TEXT.MDB"));
    EXPECT_TRUE(texts().takeLast().contains("opening the database"));
    machine.write("C:\\DATA\\SCHEDULE\\HALF.MDB", file().left(12 * 1024));
    EXPECT_FALSE(editing.open("C:\\DATA\\SCHEDULE\\HALF.MDB"));
    EXPECT_TRUE(texts().last().contains("There was a problem opening the ") &&
                texts().last().contains("HALF"))
        << texts().last().toStdString();
    make("C:\\DATA\\SCHEDULE\\ADS.MDB", AdvertsType); // has no settings
    EXPECT_FALSE(editing.open("C:\\DATA\\SCHEDULE\\ADS.MDB"));
    EXPECT_TRUE(texts().takeLast().contains("opening the K-OVA settings table"));
    {
        jet::OpenOptions alone;
        alone.exclusive = true;
        const jet::Database held = jet::Database::open(machine.host(Path).toStdString(), alone);
        EXPECT_FALSE(editing.open(Path));
        EXPECT_TRUE(texts().takeLast().contains("opening the database"));
    }
    prompts.forget();
    {
        const platform::LookOnly look;
        ASSERT_TRUE(editing.open(Path));
        EXPECT_EQ(editing.readOnlyReason(), "opened for reading only");
        EXPECT_FALSE(editing.store());
        EXPECT_TRUE(texts().takeLast().contains("storing the K-OVA settings and the error's description was "
                                                "reported as : \n\n\"The database may not be changed: "));
    }
    prompts.forget();
    ASSERT_TRUE(editing.open(Path));
    ASSERT_EQ(platform::RenameFile(Path, "C:\\DATA\\AWAY.MDB"), 0);
    make(Path, KOVAType);
    EXPECT_FALSE(editing.store());
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(texts()[0].contains("was removed or replaced"));
    EXPECT_EQ(rows("C:\\DATA\\AWAY.MDB", "Settings"), "");
}

TEST_F(AutomationEditingTest, EditsADatabaseOnAServer) {
    makeOnServer("kova", KOVAType);
    ASSERT_EQ(ValidateKOVADatabaseTables("kova", connect()), 0);
    ASSERT_TRUE(editing.open("kova", connect()));
    record.KOVA_PreCueTime = 33;
    ASSERT_TRUE(editing.store());
    KOVADatabaseSettings read;
    AutomationEditing again(read, settings, users);
    ASSERT_TRUE(again.open("kova", connect()));
    EXPECT_EQ(read.KOVA_PreCueTime, 33);
}

TEST_F(AutomationEditingTest, WritesTheNineKeysInTheirOrder) {
    settings.LocalIniFile = "TOLVEX.INI";
    machine.write("C:\\WINDOWS\\TOLVEX.INI", "[KOVA]\r\nZQSOther=5\r\n");
    settings.DefaultDatabase = "KOVA26.MDB";
    settings.GenerateAdvertRecFiles = -1;
    settings.DisplayInstantCarts = 2;
    settings.ReleaseMode = 9; // no such entry
    settings.ReleaseTime = 15;
    EXPECT_EQ(AutomationKeyText(settings, *FindAutomationKey("releasemode")), "never release control.");
    ASSERT_EQ(StoreAutomationSetup(settings), 0);
    EXPECT_EQ(machine.read("C:\\WINDOWS\\TOLVEX.INI"),
              "[KOVA]\r\nZQSOther=5\r\nDefaultDatabase=KOVA26.MDB\r\nGenerateAdvertRecFiles=1\r\n"
              "LogWhenStationController=0\r\nDisplayInstantCarts=2\r\nAllowControl=0\r\nReleaseMode=9\r\n"
              "ReleaseTime=15\r\nRequestMode=0\r\nGetControlKLogStart=0\r\n");
}
