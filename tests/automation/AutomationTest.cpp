// Automation databases: made, brought up to date, and their settings as other programs find them.
#include "automation/AutomationItems.h"
#include "automation/AutomationSchema.h"
#include "automation/AutomationStore.h"
#include "automation/LogMentions.h"

#include "core/settings/Settings.h"
#include "core/time/Dates.h"
#include "databases/ServerTest.h"
#include "databases/suite/DatabaseSettings.h"
#include "platform/profile/ProfileFile.h"

#include <QSet>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");

class AutomationTest : public ServerTest {
protected:
    explicit AutomationTest(Way way = Way::OwnDriver)
        : ServerTest(way) {
        settings.DataLocation = QStringLiteral("C:\\DATA");
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
    }
    ~AutomationTest() override { database.reset(); }
    void makeComplete() {
        makeEmpty();
        ASSERT_EQ(ValidateKOVADatabaseTables(Path, connect_), 0);
        database = open();
    }
    void makeEmpty() {
        QString title = QStringLiteral("A title");
        ASSERT_EQ(ValidateDatabase(Path, KOVAType, true, &title, connect_), 0);
    }
    std::unique_ptr<SuiteDatabase> open() const { return OpenSuiteDatabase(Path, connect_); }
    // What lies in the settings table, by item.
    QMap<QString, QString> stored() {
        QMap<QString, QString> values;
        auto rows = database->open("Settings", RecordsetMode::Table);
        for (; !rows->eof(); rows->moveNext())
            values[rows->value("Item").toString()] = rows->value("Value").toString();
        return values;
    }
    void store(const QString& item, const QVariant& value) {
        auto rows = database->open("Settings", RecordsetMode::Table);
        ASSERT_EQ(PutDatabaseSetting(rows.get(), item, value, QVariant()), 0);
    }
    Settings settings;
    KOVADatabaseSettings record;
    std::unique_ptr<SuiteDatabase> database;
    QString connect_; // empty: a file
};

// What holds for a file as for a database on a server.
enum class Kept { InFile, OnServer, OverTheWire };

class AutomationStoreTest : public AutomationTest, public testing::WithParamInterface<Kept> {
protected:
    AutomationStoreTest()
        : AutomationTest(GetParam() == Kept::OverTheWire ? Way::Wire : Way::OwnDriver) {
        if (GetParam() != Kept::InFile)
            connect_ = connect();
    }
};

INSTANTIATE_TEST_SUITE_P(Kept, AutomationStoreTest,
                         testing::Values(Kept::InFile, Kept::OnServer, Kept::OverTheWire),
                         [](const auto& kept) {
                             return kept.param == Kept::InFile     ? "InFile"
                                    : kept.param == Kept::OnServer ? "OnServer"
                                                                   : "OverTheWire";
                         });

// Items that are not stored while they are as they came.
const QSet<QString> sparse = {"KOVA.FadeSongRules",
                              "KOVA.LogFont.FontItalic",
                              "KOVA.LogFont.FontStrikeThru",
                              "KOVA.LogFont.FontUnderLine",
                              "KOVA.LogFont.FontSize",
                              "KOVA.LogFont.FontName",
                              "KOVA.SCComputerAddress",
                              "KOVA.SCWarnNearEndAds",
                              "KOVA.SCWarnNearEndJingles",
                              "KOVA.SCWarnNearEndSongs",
                              "KOVA.AllowManualZCP",
                              "KOVA.WaitSplitReturn",
                              "ADVERTS.CartOffset",
                              "ADVERTS.ClientDatabase",
                              "ADVERTS.FilenameFormat",
                              "ADVERTS.FilenamePrefix",
                              "ADVERTS.LogPath",
                              "ADVERTS.TXChainCode",
                              "MUSIC.UseCartRanges",
                              "MUSIC.CartOffset",
                              "MUSIC.FilenameFormat",
                              "MUSIC.FilenamePrefix",
                              "MUSIC.LogPath",
                              "MUSIC.JinglesStart",
                              "MUSIC.JinglesEnd",
                              "MUSIC.SweepersStart",
                              "MUSIC.SweepersEnd",
                              "MUSIC.AdvertsStart",
                              "MUSIC.AdvertsEnd",
                              "MUSIC.SongsStart",
                              "MUSIC.SongsEnd",
                              "MUSIC.CartGroupsStart",
                              "MUSIC.CartGroupsEnd"};
// Items that other programs write, and one that is never kept.
const QSet<QString> foreign = {"ADVERTS.LastSent", "ADVERTS.SentBy",    "MUSIC.LastSent",
                               "MUSIC.SentBy",     "RotaweaveLiteMode", "KOVA.ZQSServerAddress"};

} // namespace

TEST_F(AutomationTest, MakesOneDefaultDatabase) {
    machine.write("C:\\DATA\\SCHEDULE\\OTHER.MDB", "text");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, true), -1);
    EXPECT_EQ(platform::ProfileText("KOVA", "DefaultDatabase", {}, "TOLVEX.INI"), "KOVA26.MDB");
    EXPECT_EQ(rows(Path, "Description"), "K-Ova Database,2.5999999,14");
    EXPECT_EQ(rows(Path, "Settings"), "BeenSet,1");
    EXPECT_EQ(mdb("mdb-tables", Path, {"-1"}).split('\n').join(' ').toStdString(),
              "Description Log Settings Songs Jingles Schedule");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, true), 0); // there is a default
    platform::WriteProfileText("KOVA", "DefaultDatabase", QString(), "TOLVEX.INI");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, true), 0); // it is found
    EXPECT_EQ(platform::FolderNames("C:\\DATA\\SCHEDULE"), (QStringList{"KOVA26.MDB", "OTHER.MDB"}));
}

// A database that somebody emptied, or began and left, under the default's own title: it was found, so its
// settings are nobody's business here. And a default that is named counts, whether it is there or not.
TEST_F(AutomationTest, LeavesAloneWhatItFindsOrWhatIsNamed) {
    make("C:\\DATA\\SCHEDULE\\KOVA26.MDB", KOVAType, "K-Ova Database");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, true), 0);
    EXPECT_EQ(rows(Path, "Description"), "K-Ova Database,2.5999999,14");
    EXPECT_EQ(mdb("mdb-tables", Path, {"-1"}), "Description");
    EXPECT_EQ(platform::ProfileText("KOVA", "DefaultDatabase", {}, "TOLVEX.INI"), "");
    platform::RemoveFile(Path);
    platform::WriteProfileText("KOVA", "DefaultDatabase", "kova26.mdb", "TOLVEX.INI");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, true), 0);
    EXPECT_FALSE(machine.exists(Path));
    // Without being asked to, it names none.
    platform::WriteProfileText("KOVA", "DefaultDatabase", QString(), "TOLVEX.INI");
    EXPECT_EQ(CreateDefaultKOVADatabase(settings, false), -1);
    EXPECT_EQ(platform::ProfileText("KOVA", "DefaultDatabase", {}, "TOLVEX.INI"), "");
}

TEST_F(AutomationTest, HasTheTablesThatPlayersRelyOn) {
    makeComplete();
    database->close();
    database.reset();
    const struct {
        const char* table;
        int fields;
        const char* line; // of the schema, as mdbtools reads it
    } tables[] = {{"Log", 44, "[RDS_Text]\t\t\tText (256)"},
                  {"Songs", 37, "[HourRestrictions7]"},
                  {"Jingles", 38, "[IsSweeper]\t\t\tBoolean NOT NULL"},
                  {"Schedule", 6, "[RunToTime]\t\t\tBoolean NOT NULL"}};
    for (const auto& each : tables) {
        const QString schema = mdb("mdb-schema", Path, {"-T", each.table, "--indexes"});
        EXPECT_EQ(schema.count("\t["), each.fields) << each.table << schema.toStdString();
    }
    const QString indexes = mdb("mdb-schema", Path, {"-T", "Songs", "--indexes", "postgres"});
    EXPECT_TRUE(indexes.contains("PRIMARY KEY (\"songnumber\")"));
    EXPECT_TRUE(indexes.contains("CREATE INDEX \"songs_mit_idx\" ON \"songs\" (\"media\", \"itemnumber\", "
                                 "\"tracknumber\")"));
    EXPECT_TRUE(indexes.contains("CREATE INDEX \"songs_hdreference_idx\""));
}

TEST_P(AutomationStoreTest, UpgradesAnOlderDatabase) {
    makeEmpty();
    {
        auto old = open();
        old->createTable("Log", {"KIndex", FieldKind::Double}, true);
        old->appendField("Log", {"RDS_Text", FieldKind::Text, 255}, true);
        Table songs = KOVASongsSchema();
        std::erase_if(songs.fields,
                      [](const Field& field) { return qstrcmp(field.name, "HourRestrictions5") == 0; });
        ASSERT_EQ(CheckTable(*old, songs), 0);
    }
    ASSERT_EQ(ValidateKOVADatabaseTables(Path, connect_), 0);
    database = open();
    EXPECT_EQ(database->table("Songs")->fields.last(), "HourRestrictions5");
    EXPECT_EQ(database->table("Songs")->indexes.size(), 3);
    EXPECT_EQ(database->table("Log")->fields.size(), 44);
    EXPECT_EQ(database->open("Log", RecordsetMode::Table)->size("RDS_Text"), 255);
    EXPECT_TRUE(database->table("Schedule") && database->table("Jingles") && database->table("Settings"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_P(AutomationStoreTest, ReadsAnEmptyTableAsDefaultsAndSavesItDense) {
    makeComplete();
    int shown = 0;
    EXPECT_EQ(LoadKOVASettings(*database, record, settings.DataLocation, [&] { ++shown; }), -1);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(record.SEGUE_PreviewLength, 10);
    EXPECT_EQ(record.SEGUE_VoiceStartCart, 8001);
    EXPECT_EQ(record.SEGUE_VoiceEndCart, 8999);
    EXPECT_EQ(record.SEGUE_EditsFirstPlayer, 255);
    EXPECT_EQ(record.SEGUE_EditsLastPlayer, 1);
    EXPECT_EQ(record.KOVA_LogHighlightBackColor, static_cast<qint32>(0x8000000D));
    EXPECT_TRUE(record.KOVA_LogFont_FontBold);
    EXPECT_EQ(record.ADVERTS_LogPath, "C:\\DATA\\LOGS");

    EXPECT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    const auto values = stored();
    for (const AutomationItem& item : AutomationItems())
        EXPECT_EQ(values.contains(item.name), !sparse.contains(item.name) && !foreign.contains(item.name))
            << item.name;
    EXPECT_EQ(values.size(), 110 - sparse.size() - foreign.size());
    EXPECT_EQ(values["KOVA.Go_Fade_Length"], "4");
    EXPECT_EQ(values["KOVA.LogFont.FontBold"], "-1");
    EXPECT_EQ(values["KOVA.LogBackColor"], "-2147483633");
    EXPECT_EQ(values["SEGUE.VoiceLinkLevelTrigger"], "25");
    EXPECT_EQ(values["CMDS.Colour"], "15449533");
    EXPECT_TRUE(prompts.asked.isEmpty());
}

// The value with which an item is compared when it is saved is one that somebody may choose.
TEST_P(AutomationStoreTest, KeepsValuesThatEqualAWriteDefault) {
    makeComplete();
    LoadKOVASettings(*database, record, settings.DataLocation);
    for (const AutomationItem& item : AutomationItems())
        if (item.isWritten())
            TakeMember(item, DefaultValue(item, item.writeDefault, record, settings.DataLocation), record);
    EXPECT_EQ(record.CMDS_Colour, 16304375);
    EXPECT_EQ(record.SEGUE_VoiceLinkLevelTrigger, 5);
    // 0 stands for the voice-tracker's own numbers.
    record.SEGUE_PreviewLength = record.SEGUE_VoiceStartCart = record.SEGUE_VoiceEndCart = 1;
    const KOVADatabaseSettings saved = record;
    store("BeenSet", 1);
    ASSERT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    record = {};
    ASSERT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), 0);
    for (const AutomationItem& item : AutomationItems())
        EXPECT_EQ(MemberValue(item, record), MemberValue(item, saved)) << item.name;
}

TEST_P(AutomationStoreTest, KeepsEverySettingThroughSavingAndLoading) {
    makeComplete();
    LoadKOVASettings(*database, record, settings.DataLocation);
    // Every member gets a value of its own.
    int next = 100;
    for (const AutomationItem& item : AutomationItems()) {
        const bool isText = std::holds_alternative<QString AutomationItem::Record::*>(item.member);
        if (item.isWritten())
            TakeMember(item, isText ? QVariant(QStringLiteral("text %1").arg(++next)) : QVariant(++next),
                       record);
    }
    record.KOVA_ZQSServerAddress.clear();
    record.KOVA_Cart_Normal_Fade = 2.5F;
    record.KOVA_LogFont_FontBold = false;
    const KOVADatabaseSettings saved = record;
    store("BeenSet", 1);
    ASSERT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    record = {};
    ASSERT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), 0);
    for (const AutomationItem& item : AutomationItems())
        EXPECT_EQ(MemberValue(item, record), MemberValue(item, saved)) << item.name;
    EXPECT_EQ(stored()["KOVA.Cart_Normal_Fade"], "2.5");
    // Back to the defaults, the sparse rows go.
    record = {};
    record.KOVA_LogFont_FontName = "Arial";
    record.KOVA_LogFont_FontSize = 12;
    record.MUSIC_FilenamePrefix = "TL";
    ASSERT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    const auto values = stored();
    for (const char* item : {"KOVA.LogFont.FontName", "KOVA.LogFont.FontSize", "KOVA.LogFont.FontItalic",
                             "MUSIC.FilenamePrefix", "ADVERTS.ClientDatabase", "MUSIC.SongsEnd"})
        EXPECT_FALSE(values.contains(item)) << item;
    EXPECT_EQ(values["KOVA.LogFont.FontBold"], "0");
}

TEST_P(AutomationStoreTest, TakesOverAnOlderAddress) {
    makeComplete();
    store("KOVA.ZQSServerAddress", "10.0.0.7");
    store("KOVA.SCComputerAddress", "not read");
    store("KOVA.SCComputerPort", 99);
    store("BeenSet", 1);
    EXPECT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), 0);
    EXPECT_EQ(record.KOVA_SCComputerAddress, "10.0.0.7");
    EXPECT_EQ(record.KOVA_SCComputerPort, 0);
    EXPECT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    EXPECT_FALSE(stored().contains("KOVA.ZQSServerAddress"));
    EXPECT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), 0);
    EXPECT_EQ(record.KOVA_SCComputerAddress, "10.0.0.7");
}

TEST_P(AutomationStoreTest, ReadsWhatOthersWrote) {
    makeComplete();
    store("KOVA.LogFont.FontItalic", "-1"); // read under a name with a trailing blank
    store("KOVA.PreCueTime", "12 seconds");
    store("KOVA.MaxFadeTime", "soon");
    store("ADVERTS.LastSent", "05 Mar 2024 22:10:00");
    store("ADVERTS.LogPath", "  D:\\LOGS ");
    store("KOVA.LogFont.FontName", " Courier ");
    platform::WriteProfileText("Settings", "PreviewLength", "7", "stailor.ini");
    EXPECT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), -1);
    EXPECT_TRUE(record.KOVA_LogFont_FontItalic);
    EXPECT_EQ(record.KOVA_PreCueTime, 12);
    EXPECT_EQ(record.KOVA_MaxFadeTime, 0);
    EXPECT_EQ(FromSerialDate(record.ADVERTS_LastSent), QDateTime({2024, 3, 5}, {22, 10}));
    EXPECT_EQ(record.ADVERTS_LogPath, "D:\\LOGS");
    EXPECT_EQ(record.KOVA_LogFont_FontName, " Courier ");
    EXPECT_EQ(record.SEGUE_PreviewLength, 7);

    // A number that no member can hold ends the reading there.
    store("KOVA.PreCueTime", "99999");
    store("KOVA.AutoRestartDelay", "5");
    store("KOVA.MaxFadeTime", "3");
    EXPECT_EQ(LoadKOVASettings(*database, record, settings.DataLocation), 6);
    EXPECT_EQ(record.KOVA_AutoRestartDelay, 5);
    EXPECT_EQ(record.KOVA_PreCueTime, 12);
    EXPECT_EQ(record.KOVA_MaxFadeTime, 0);

    CreateSuiteDatabase("C:\\BARE.MDB");
    auto bare = OpenSuiteDatabase("C:\\BARE.MDB");
    EXPECT_EQ(LoadKOVASettings(*bare, record, settings.DataLocation), 3078);
    EXPECT_EQ(SaveKOVASettings(*bare, record, settings.DataLocation), 3078);
    EXPECT_TRUE(texts().last().startsWith("There was a problem opening the K-OVA settings table and"));
}

TEST_F(AutomationTest, SavesAllOrNothingOnAServer) {
    connect_ = connect();
    makeComplete();
    LoadKOVASettings(*database, record, settings.DataLocation);
    ASSERT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 0);
    const auto before = stored();
    for (const int statements : {0, 1, 2, 3, 5}) {
        record.KOVA_PreCueTime = 99;
        record.KOVA_SweeperMode = 2;
        prompts.forget();
        EXPECT_EQ(SaveKOVASettings(*openOnServer(Path, QStringLiteral("LoseAfter=%1").arg(statements)),
                                   record, settings.DataLocation),
                  3146);
        EXPECT_EQ(texts().size(), 1) << texts().join('|').toStdString();
        EXPECT_EQ(stored(), before) << statements;
    }
    // Nobody waits while a report is read: what was begun has been undone.
    int shown = 0;
    prompts.beforeAnswers = [&] {
        if (++shown > 1)
            return;
        const auto other = openOnServer(Path);
        const auto rows = other->open("Settings", RecordsetMode::Dynaset);
        EXPECT_EQ(PutDatabaseSetting(rows.get(), "BeenSet", 1, 0), 0);
    };
    database->execute("CREATE TRIGGER \"Refuse\" BEFORE INSERT ON [Settings] WHEN NEW.[Item] = 'CMDS.Colour' "
                      "BEGIN SELECT RAISE(ABORT, 'refused'); END");
    record.CMDS_Colour = 5;
    openOnServer(Path)->execute("DELETE FROM [Settings] WHERE [Item] = 'CMDS.Colour'");
    EXPECT_EQ(SaveKOVASettings(*database, record, settings.DataLocation), 3314);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(stored()["KOVA.PreCueTime"], before["KOVA.PreCueTime"]);
    prompts.beforeAnswers = {};
    // All settings are read with one statement: they are known, or none of them. A connection that is lost is
    // made once more.
    EXPECT_EQ(LoadKOVASettings(*openOnServer(Path, "LoseAfter=1"), record, settings.DataLocation), 3146);
    EXPECT_EQ(record.KOVA_PreCueTime, 99);
    EXPECT_EQ(LoadKOVASettings(*openOnServer(Path, "LoseAfter=2"), record, settings.DataLocation), 0);
    EXPECT_EQ(record.KOVA_PreCueTime, 20);
}

TEST_F(AutomationTest, EntriesOfTheLogAreFoundByTheirTexts) {
    EXPECT_EQ(AutomationLogPath(settings), QString());
    settings.DefaultDatabase = "KOVA26.MDB";
    EXPECT_EQ(AutomationLogPath(settings), Path);
    makeComplete();
    database->execute("INSERT INTO Log (KIndex, ItemReference) VALUES (1.5, 'DOOR')");
    database->execute("INSERT INTO Log (KIndex, Description1) VALUES (2, 'News')");
    database->execute("INSERT INTO Log (KIndex, InformationString4, ItemReference) VALUES (3, 'Door', 'x')");
    const auto isDoor = [](const QString& text) { return text.compare("door", Qt::CaseInsensitive) == 0; };
    const QList<LogMention> found = FindInAutomationLog(Path, isDoor, 9);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].entry, 1.5);
    EXPECT_EQ(found[0].field + '=' + found[0].text, QString("ItemReference=DOOR"));
    EXPECT_EQ(found[1].field + '=' + found[1].text, QString("InformationString4=Door"));
    EXPECT_EQ(FindInAutomationLog(Path, isDoor, 1).size(), 1);
    QString why;
    EXPECT_TRUE(FindInAutomationLog("C:\\NOT THERE.MDB", isDoor, 9, &why).isEmpty());
    EXPECT_TRUE(why.startsWith("C:\\NOT THERE.MDB could not be read: ")) << why.toStdString();
}
