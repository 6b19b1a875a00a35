// Databases made from nothing and brought up to date.
#include "DatabasesTest.h"

#include "core/report/DebugLog.h"

#include "core/report/DebugLog.h"
#include "core/settings/Settings.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

class ValidateDatabaseTest : public DatabasesTest {
protected:
    // A database without tables.
    void makeEmpty(const QString& path) const {
        machine.host(path);
        CreateSuiteDatabase(path);
    }
};

const QString Path = QStringLiteral("C:\\DATA\\NEW.mdb");

} // namespace

TEST_F(ValidateDatabaseTest, MakesEveryKindFromNothing) {
    struct Case {
        qint32 type;
        const char* version;
    };
    const Case cases[] = {{0, ""},       {1, "2.5999999"}, {2, "2.51"},       {4, "1.3"},        {10, "3.03"},
                          {11, "3.21"},  {12, "3.5"},      {14, "2.5999999"}, {19, "3.0610001"}, {30, "1"},
                          {31, "1.071"}, {99, "1.753"},    {77, ""}};
    for (const Case& each : cases) {
        const QString path = QStringLiteral("C:\\DATA\\DEEP\\KIND%1.MDB").arg(each.type);
        make(path, each.type, QStringLiteral("  Kind \u00e9 "));
        EXPECT_EQ(mdb("mdb-ver", path), "JET4");
        EXPECT_EQ(rows(path, "Description"),
                  QStringLiteral("Kind \u00e9,%1,%2").arg(each.version).arg(each.type).toStdString());
        DatabaseInformation information;
        EXPECT_EQ(GetDatabaseInformation(path, &information, true), 0);
        EXPECT_EQ(information.Type, each.type);
        EXPECT_FLOAT_EQ(information.Version, QString(each.version).toFloat());
    }
    EXPECT_TRUE(prompts.asked.isEmpty());
    const QString schema = mdb("mdb-schema", "C:\\DATA\\DEEP\\KIND1.MDB", {"--indexes", "-T", "Description"});
    EXPECT_TRUE(schema.contains("Text (400)") || schema.contains("Text (200)")) << schema.toStdString();
    EXPECT_TRUE(schema.contains("Single"));
    EXPECT_TRUE(schema.contains("Long Integer"));
}

TEST_F(ValidateDatabaseTest, AsksBeforeItMakesAFile) {
    QString title;
    prompts.answers = {Answer::No};
    EXPECT_EQ(ValidateDatabase("C:\\DATA\\NEW", 1, false, &title), -1);
    EXPECT_FALSE(machine.exists("C:\\DATA"));
    EXPECT_EQ(texts(),
              QStringList{"The database C:\\DATA\\NEW.mdb does not exist. Would you like to create it?"});

    prompts.answers = {Answer::Yes};
    prompts.typed = {QStringLiteral("News songs")};
    EXPECT_EQ(ValidateDatabase("C:\\DATA\\NEW", 1, false, &title), 0);
    EXPECT_EQ(title, "News songs");
    EXPECT_EQ(prompts.textPrompts, QStringList{"Please enter a suitable description for this database"});
    EXPECT_EQ(rows(Path, "Description"), "News songs,2.5999999,1");

    // Existing things stay, whatever is requested now.
    title = QStringLiteral("Other");
    EXPECT_EQ(ValidateDatabase("C:\\DATA\\NEW", 14, false, &title), 0);
    EXPECT_EQ(rows(Path, "Description"), "News songs,2.5999999,1");
}

TEST_F(ValidateDatabaseTest, MakesAFileOfNoBytesAnew) {
    machine.write("C:\\DATA\\NEW.MDB", {});
    QString title;
    EXPECT_EQ(ValidateDatabase("C:\\DATA\\NEW.MDB", 2, true, &title), 0);
    EXPECT_EQ(title, "You have to have a title!");
    EXPECT_EQ(rows("C:\\DATA\\NEW.MDB", "Description"), "You have to have a title!,2.51,2");
}

TEST_F(ValidateDatabaseTest, AddsWhatADescriptionTableLacks) {
    machine.makeFolder("C:\\DATA");
    makeEmpty(Path);
    {
        // An older file: a narrow first field, a field of its own, a row, none of the other fields.
        auto database = OpenSuiteDatabase(Path);
        database->createTable("Description", {"Description", FieldKind::Text, 20}, false);
        database->appendField("Description", {"Station", FieldKind::Text, 5}, false);
        auto row = database->open("Description", RecordsetMode::Table);
        row->addNew();
        row->set("Description", "Old");
        row->set("Station", "FM");
        row->update();
        row.reset();
        database->close();
    }
    make(Path, 14);
    EXPECT_EQ(rows(Path, "Description"), "Old,FM,,");
    auto database = OpenSuiteDatabase(Path);
    const auto shape = database->table("description");
    EXPECT_EQ(shape->fields, (QStringList{"Description", "Station", "Version", "Type"}));
    EXPECT_EQ(shape->indexes, QStringList{"Main"});
    EXPECT_EQ(database->open("Description", RecordsetMode::Table)->size("Description"), 20);
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(Path, &information, true), 0);
    EXPECT_EQ(information.Description, "Old");
    EXPECT_EQ(information.Type, 0);
}

TEST_F(ValidateDatabaseTest, ReportsWhatStopsIt) {
    QString title = "x";
    machine.write("C:\\DATA", "a file where a folder should be");
    EXPECT_NE(ValidateDatabase(Path, 1, true, &title), 0);
    ASSERT_FALSE(texts().isEmpty());
    EXPECT_TRUE(texts().last().startsWith("There was a problem creating the new database"))
        << texts().join('|').toStdString();
    prompts.forget();

    machine.write("C:\\OTHER\\TEXT.MDB", QByteArray(9000, 'x'));
    EXPECT_EQ(ValidateDatabase("C:\\OTHER\\TEXT.MDB", 1, true, &title), UnrecognisedDatabase);
    EXPECT_TRUE(
        texts().last().startsWith("There was a problem opening the database C:\\OTHER\\TEXT.MDB and"));
    EXPECT_EQ(machine.read("C:\\OTHER\\TEXT.MDB"), QByteArray(9000, 'x'));

    prompts.forget();
    EXPECT_EQ(ValidateDatabase("SONGS", 1, true, &title, "ODBC;DSN=none"), ConnectionFailed);
    EXPECT_TRUE(texts().first().startsWith("There was a problem connecting to 'ODBC;DSN=none' and"));
    EXPECT_TRUE(texts().last().startsWith("There was a problem opening a new DB Workspace and"));
}

TEST_F(ValidateDatabaseTest, MakesNoFileForATitleThatDoesNotFit) {
    QString title(201, u't');
    EXPECT_EQ(ValidateDatabase("C:\\LONG\\A.MDB", 1, true, &title), FieldTooSmallError);
    EXPECT_FALSE(machine.exists("C:\\LONG"));
    EXPECT_TRUE(texts().last().contains("201 characters"));
    prompts.typed = {title};
    prompts.answers = {Answer::Yes};
    title.clear();
    EXPECT_EQ(ValidateDatabase("C:\\LONG\\A.MDB", 1, false, &title), FieldTooSmallError);
    EXPECT_EQ(platform::FolderNames("C:\\LONG"), QStringList{});
    title = ' ' + QString(200, u't') + ' ';
    EXPECT_EQ(ValidateDatabase("C:\\LONG\\A.MDB", 1, true, &title), 0);
}

TEST_F(ValidateDatabaseTest, TellsTheDebugLogWhatItDoes) {
    {
        const qint32 level = 5;
        const DebugLogging log(level);
        make(Path, 1, "T");
    }
    const QStringList logs = platform::FolderNames("C:\\Debugfiles");
    ASSERT_EQ(logs.size(), 1);
    QStringList lines;
    for (const QByteArray& line : machine.read("C:\\Debugfiles\\" + logs.first()).split('\n'))
        if (line.contains("Started V") || line.contains("Description'") || line.contains("Opening D"))
            lines += QString::fromLatin1(line.trimmed().mid(9));
    EXPECT_EQ(lines, (QStringList{("Started Validate Database: DBName='C:\\DATA\\NEW.mdb' Type=1, "
                                   "SilentMode=True, Title='T' Connect=''"),
                                  "Opening Database", "Looking for 'Description' table",
                                  "Can't find 'Description' table", "Opening 'Description' table"}));
}

TEST_F(ValidateDatabaseTest, BringsTablesUpToDateAndKeepsTheRest) {
    const Table songs{
        "Songs",
        {{"Number", FieldKind::Long},
         {"Title", FieldKind::Text, 50},
         {"Notes", FieldKind::Memo},
         {"Any", FieldKind::Text, 0}},
        {{"Main", {"Number"}, true, true}, {"Bad", {"Gone"}}, {"ByTitle", {"Title", "Number"}}}};
    make(Path, 1);
    {
        auto database = OpenSuiteDatabase(Path);
        database->createTable("Songs", {"Title", FieldKind::Text, 10}, true);
        database->appendField("Songs", {"Mine", FieldKind::Double}, true);
        auto row = database->open("Songs", RecordsetMode::Table);
        row->addNew();
        row->set("Title", "A");
        row->update();
        row.reset();
        EXPECT_EQ(CheckTable(*database, songs), 0);
        // An index that cannot be added is reported and skipped. The primary one fails because of the row
        // without a number.
        EXPECT_EQ(texts().size(), 2);
        EXPECT_TRUE(texts()[0].startsWith("There was a problem adding the index 'Main' to the Songs table"));
        EXPECT_TRUE(texts()[1].startsWith("There was a problem adding the index 'Bad' to the Songs table"));
        EXPECT_EQ(database->table("Songs")->fields, (QStringList{"Title", "Mine", "Number", "Notes", "Any"}));
        EXPECT_EQ(database->table("Songs")->indexes, QStringList{"ByTitle"});
        // An existing one does not prevent the addition of those after it.
        EXPECT_EQ(CheckTable(*database,
                             {"Songs", {songs.fields[1]}, {{"ByTitle", {"Title"}}, {"ByNotes", {"Any"}}}}),
                  0);
        EXPECT_EQ(database->table("Songs")->indexes, (QStringList{"ByNotes", "ByTitle"}));
        auto rows = database->open("Songs", RecordsetMode::Table);
        EXPECT_EQ(rows->size("Title"), 10);
        EXPECT_EQ(rows->size("Any"), 255);
        EXPECT_EQ(rows->value("Title"), "A");
        rows->edit();
        rows->set("Notes", QString());
        rows->set("Any", QString(""));
        rows->update(); // empty texts are allowed in fields made by the check
        database->close();
    }
    EXPECT_EQ(ValidateDatabaseTables("C:\\DATA\\NONE.MDB", {}), 3024);
    EXPECT_TRUE(texts().last().startsWith("There was a problem opening the database and"));
}

TEST_F(ValidateDatabaseTest, LeavesACompleteDatabaseAsItIs) {
    make(Path, 1);
    const QByteArray before = machine.read(Path);
    make(Path, 1);
    EXPECT_EQ(machine.read(Path).mid(4096), before.mid(4096));
}
