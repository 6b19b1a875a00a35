// Named values in a Settings table, and what a database says about itself.
#include "ServerTest.h"

#include "databases/compaction/CompactRepair.h"
#include "databases/suite/DatabaseSettings.h"

#include "core/time/Dates.h"
#include "jet/Database.h"
#include "support/WithoutRights.h"

#include <sys/stat.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\A.MDB");

// Every kind of recordset must give the same answers.
enum class Kept { FileTable, FileDynaset, Server, Wire };

class DatabaseSettingsTest : public ServerTest, public testing::WithParamInterface<Kept> {
protected:
    DatabaseSettingsTest()
        : ServerTest(GetParam() == Kept::Wire ? Way::Wire : Way::OwnDriver) {}
    void SetUp() override {
        const bool onServer = GetParam() == Kept::Server || GetParam() == Kept::Wire;
        if (onServer)
            makeOnServer(Path, 14);
        else
            make(Path, 14);
        database = OpenSuiteDatabase(Path, onServer ? connect() : QString());
        ASSERT_EQ(ValidateSettingsTable(*database), 0);
        reopen();
    }
    void reopen() {
        settings = database->open("Settings", GetParam() == Kept::FileTable ? RecordsetMode::Table
                                                                            : RecordsetMode::Dynaset);
    }
    QVariant get(const QString& item, const QVariant& fallback = "none") {
        return GetDatabaseSetting(settings.get(), item, fallback);
    }
    int put(const QString& item, const QVariant& value, const QVariant& fallback = QVariant()) {
        return PutDatabaseSetting(settings.get(), item, value, fallback);
    }

    std::unique_ptr<SuiteDatabase> database;
    std::unique_ptr<SuiteRecordset> settings;
};

} // namespace

TEST_P(DatabaseSettingsTest, KeepsOnlyWhatIsNotTheDefault) {
    EXPECT_EQ(get("A"), "none");
    EXPECT_EQ(put("A", 5, 5), 0);
    EXPECT_EQ(settings->recordCount(), 0);
    // A number is never a text, so this default does not match.
    EXPECT_EQ(put("A", 5, "5"), 0);
    EXPECT_EQ(get("A"), "5");
    EXPECT_EQ(put("a", 6, 5), 0);
    EXPECT_EQ(get("A"), "6");
    EXPECT_EQ(put("B \"quoted\" 'too' [x] * #", "text", ""), 0);
    EXPECT_EQ(get("B \"quoted\" 'too' [x] * #"), "text");
    EXPECT_EQ(settings->recordCount(), 2);
    EXPECT_EQ(put("A", 5, 5), 0);
    EXPECT_EQ(get("A"), "none");
    EXPECT_EQ(settings->recordCount(), 1);
    EXPECT_EQ(put("B \"quoted\" 'too' [x] * #", "", ""), 0);
    EXPECT_EQ(settings->recordCount(), 0);
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_P(DatabaseSettingsTest, StoresValuesAsTheEngineWritesThem) {
    put("Flag", true, false);
    put("Long", -7, 0);
    put("Single", 2.6F, 0);
    put("Empty", QString(""), "x");
    put("Memo", QString(3000, u'\u00e9'), "");
    reopen();
    EXPECT_EQ(get("Flag"), "-1");
    EXPECT_EQ(get("Long"), "-7");
    EXPECT_EQ(get("Single"), "2.6");
    EXPECT_EQ(get("Empty"), "");
    EXPECT_EQ(get("Memo"), QString(3000, u'\u00e9'));
    EXPECT_EQ(get("flag "), get("Flag")); // a trailing blank in a name is ignored
}

TEST_P(DatabaseSettingsTest, CutsLongNames) {
    const QString name(250, u'n');
    put(name + "first", "1", "");
    EXPECT_EQ(get(name + "second"), "1");
    put(name + "third", "3", "");
    EXPECT_EQ(settings->recordCount(), 1);
    EXPECT_EQ(get(name), "3");
}

TEST_P(DatabaseSettingsTest, DoesNothingWithoutATableOrName) {
    EXPECT_FALSE(GetDatabaseSetting(nullptr, "A", 5).isValid());
    EXPECT_FALSE(get("", 5).isValid());
    EXPECT_EQ(PutDatabaseSetting(nullptr, "A", 5, 1), 0);
    EXPECT_EQ(put("", 5, 1), 0);
    EXPECT_EQ(settings->recordCount(), 0);
}

TEST_P(DatabaseSettingsTest, ReportsWithTheName) {
    EXPECT_EQ(put("Bytes", QByteArray("x"), ""), TypeMismatchError);
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(
        texts()[0].startsWith("There was a problem setting the value for a setting : Bytes and the error's"));
    EXPECT_EQ(get("Bytes"), "none");
}

INSTANTIATE_TEST_SUITE_P(Modes, DatabaseSettingsTest,
                         testing::Values(Kept::FileTable, Kept::FileDynaset, Kept::Server, Kept::Wire),
                         [](const auto& kept) {
                             return kept.param == Kept::Server      ? "Server"
                                    : kept.param == Kept::Wire      ? "OverTheWire"
                                    : kept.param == Kept::FileTable ? "Table"
                                                                    : "Dynaset";
                         });

using DatabaseInformationTest = DatabasesTest;

TEST_F(DatabaseInformationTest, TellsWhatADatabaseSays) {
    make("C:\\DATA\\A.MDB", 14, "Log of today");
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation("C:\\DATA\\A", &information, true), 0);
    EXPECT_EQ(information.FullName, "C:\\DATA\\A.mdb");
    EXPECT_EQ(information.FileName, "A.mdb");
    EXPECT_EQ(information.Path, "C:\\DATA");
    EXPECT_EQ(information.EngineVersion, "4.0");
    EXPECT_EQ(information.LastAccessed, 0); // the fields are missing
    {
        auto database = OpenSuiteDatabase(Path);
        for (const char* field : {"LastAccessed", "LastAccessedSoftware", "LastBackup"})
            database->appendField("Description", {field, FieldKind::Text, 200}, false);
        auto row = database->open("Description", RecordsetMode::Table);
        row->edit();
        row->set("LastAccessed", "05/03/2024 22:10:00");
        row->set("LastAccessedSoftware", "Player");
        row->set("LastBackup", "never");
        row->update();
    }
    EXPECT_EQ(GetDatabaseInformation(Path, &information, true), 0);
    EXPECT_EQ(FromSerialDate(information.LastAccessed), QDateTime({2024, 3, 5}, {22, 10}));
    EXPECT_EQ(information.LastAccessedSoftware, "Player");
    EXPECT_EQ(information.LastBackup, "never");
}

TEST_F(DatabaseInformationTest, TellsMissingEmptyAndForeignDatabasesApart) {
    DatabaseInformation information;
    information.Description = "kept";
    EXPECT_EQ(GetDatabaseInformation("C:\\NONE.MDB", &information, true), -1);
    machine.write("C:\\EMPTY.MDB", {});
    EXPECT_EQ(GetDatabaseInformation("C:\\EMPTY.MDB", &information, true), -1);
    EXPECT_EQ(information.Description, "kept");

    CreateSuiteDatabase("C:\\BARE.MDB"); // no Description table
    EXPECT_EQ(GetDatabaseInformation("C:\\BARE.MDB", &information, true), 3078);
    EXPECT_TRUE(texts().last().startsWith("There was a problem C:\\BARE.MDB\n\nopening the description "
                                          "information in the database and"));

    // A table without a row is a valid answer.
    make("C:\\NOROW.MDB", 1);
    {
        auto database = OpenSuiteDatabase("C:\\NOROW.MDB");
        database->execute("DELETE * FROM [Description]");
    }
    prompts.forget();
    EXPECT_EQ(GetDatabaseInformation("C:\\NOROW.MDB", &information, false), 0);
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(information.FullName, "C:\\NOROW.MDB");
    EXPECT_EQ(information.Description, "");
    EXPECT_EQ(GetDatabaseInformation("C:\\NOROW.MDB", &information, true), 0);
    EXPECT_EQ(texts(), QStringList{"C:\\NOROW.MDB\n\nThere was no Description information in the "
                                   "database.\n\nPlease contact Norvane Ltd."});
}

TEST_F(DatabaseInformationTest, TellsThatAnotherProgramHasItAlone) {
    make(Path, 14, "Log");
    jet::OpenOptions alone;
    alone.exclusive = true;
    auto holder =
        std::make_unique<jet::Database>(jet::Database::open(machine.host(Path).toStdString(), alone));
    DatabaseInformation information;
    const int error = GetDatabaseInformation(Path, &information, true);
    EXPECT_EQ(error, 3356);
    EXPECT_TRUE(
        texts().last().startsWith("There was a problem C:\\DATA\\A.MDB\n\nopening the database to read "
                                  "it's information and"));
    QString title = "x";
    EXPECT_EQ(ValidateDatabase(Path, 14, true, &title), 3356);
    EXPECT_EQ(ChangeDatabaseDescription(Path, "x"), 0);
    prompts.forget();
    EXPECT_EQ(GetDatabaseInformation(Path, &information, false), 3356);
    EXPECT_TRUE(prompts.asked.isEmpty());
    holder.reset();
    EXPECT_EQ(GetDatabaseInformation(Path, &information, true), 0);
    EXPECT_EQ(information.Description, "Log");
}

TEST_F(DatabaseInformationTest, ReadsWhatMayNotBeWritten) {
    make(Path, 14, "Log");
    {
        auto database = OpenSuiteDatabase(Path);
        ASSERT_EQ(ValidateSettingsTable(*database), 0);
        auto rows = database->open("Settings", RecordsetMode::Table);
        PutDatabaseSetting(rows.get(), "Item", 5, 0);
    }
    ASSERT_EQ(::chmod(machine.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(machine.host(Path).toUtf8().constData(), 0444), 0);
    EXPECT_TRUE(PassesWithoutRights([&] {
        machine.use();
        DatabaseInformation information;
        EXPECT_EQ(GetDatabaseInformation(Path, &information, true), 0);
        EXPECT_EQ(information.Description, "Log");
        QString title;
        EXPECT_EQ(ValidateDatabase(Path, 14, true, &title), 0); // it is complete
        {
            auto database = OpenSuiteDatabase(Path);
            auto rows = database->open("Settings", RecordsetMode::Table);
            EXPECT_EQ(GetDatabaseSetting(rows.get(), "Item", 1), "5");
            EXPECT_EQ(PutDatabaseSetting(rows.get(), "Item", 6, 0), 0); // nothing happens
            EXPECT_EQ(GetDatabaseSetting(rows.get(), "Item", 1), "5");
            EXPECT_TRUE(prompts.asked.isEmpty());
            EXPECT_EQ(CheckTable(*database, {"More", {{"A", FieldKind::Long}}, {}}), 3027);
            EXPECT_TRUE(texts().last().startsWith("There was a problem creating the More Table and"));
        }
        EXPECT_EQ(ChangeDatabaseDescription(Path, "x"), 0);
        EXPECT_TRUE(texts().last().startsWith("There was a problem editing the details and"));
        EXPECT_FALSE(CompactRepairDatabase(Path, false, {}, true));
    }));
}

TEST_F(DatabaseInformationTest, ChangesTheDescription) {
    make(Path, 1, "Old");
    EXPECT_EQ(ChangeDatabaseDescription(Path, QString(300, u'x')), -1);
    EXPECT_EQ(rows(Path, "Description"), QString(QString(200, u'x') + ",2.5999999,1").toStdString());
    EXPECT_EQ(ChangeDatabaseDescription(Path, ""), 0);
    EXPECT_EQ(ChangeDatabaseDescription("", "x"), 0);
    EXPECT_EQ(ChangeDatabaseDescription("C:\\NONE.MDB", "x"), 0);
    EXPECT_TRUE(prompts.asked.isEmpty());
    CreateSuiteDatabase("C:\\BARE.MDB");
    EXPECT_EQ(ChangeDatabaseDescription("C:\\BARE.MDB", "x"), 0);
    EXPECT_TRUE(texts().last().startsWith("There was a problem opening the database and"));
}
