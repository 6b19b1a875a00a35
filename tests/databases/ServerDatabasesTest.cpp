// Databases on a server, through the real driver manager and the public routines.
#include "ServerTest.h"

#include "core/time/Dates.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/suite/FindDatabases.h"
#include "databases/users/UsersSchema.h"

#include <QFile>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

// Names that would end a statement, a text or a connect string if they were not quoted.
const char* const hostileNames[] = {
    "Plain",
    "d\u00e9j\u00e0 vu \u20ac \u4e2d",
    "a]b]]c",
    "it's '; DROP TABLE Description --",
    "\"; DROP DATABASE Plain; --",
    "x;Server=/nowhere;Locked=1",
    "{braced}; } {",
    "100% _\\",
    " blanks ",
};

class EveryWayTest : public ServerTest, public testing::WithParamInterface<Way> {
protected:
    EveryWayTest()
        : ServerTest(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Ways, EveryWayTest, testing::Values(Way::OwnDriver, Way::Wire), NameOfWay);

} // namespace

TEST_P(EveryWayTest, MakesAndDescribesDatabasesOfAnyName) {
    for (const char* each : hostileNames) {
        const QString name = QString::fromUtf8(each);
        SCOPED_TRACE(each);
        if (wire && name.contains("};"))
            continue; // that driver does not support doubled braces
        DatabaseInformation information;
        information.Description = "kept";
        EXPECT_EQ(GetDatabaseInformation(name, &information, true, connect()), -1);
        EXPECT_EQ(information.Description, "kept");
        QString title = "  Title of " + name + "  ";
        EXPECT_EQ(ValidateDatabase(name, 14, false, &title, connect()), 0); // a server causes no question
        EXPECT_EQ(GetDatabaseInformation(name, &information, true, connect()), 0);
        EXPECT_EQ(information.FullName, name);
        EXPECT_EQ(information.Path, name);
        EXPECT_EQ(information.Connect, connect());
        EXPECT_TRUE(information.IsServer);
        EXPECT_EQ(information.EngineVersion, "");
        EXPECT_EQ(information.Description, title.trimmed());
        EXPECT_EQ(information.Version, 2.6F);
        EXPECT_EQ(information.Type, 14);
        EXPECT_EQ(information.LastAccessed, 0);
        EXPECT_EQ(ChangeDatabaseDescription(name, "]'; \u00e9 " + QString(300, u'x'), connect()), -1);
        EXPECT_EQ(GetDatabaseInformation(name, &information, true, connect()), 0);
        EXPECT_EQ(information.Description, "]'; \u00e9 " + QString(194, u'x')); // the field holds 200
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(),
              qsizetype(std::size(hostileNames)) - (wire ? 1 : 0));
    EXPECT_EQ(texts(), QStringList{});
}

TEST_P(EveryWayTest, LeavesAsItIsWhatADatabaseSays) {
    QString title;
    prompts.typed = {QStringLiteral("Typed")};
    EXPECT_EQ(ValidateDatabase("A", 0, false, &title, connect()), 0);
    EXPECT_EQ(title, "Typed");
    title = "Other";
    EXPECT_EQ(ValidateDatabase("A", 19, true, &title, connect()), 0);
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation("A", &information, true, connect()), 0);
    EXPECT_EQ(information.Description, "Typed");
    EXPECT_EQ(information.Version, 0);
    EXPECT_EQ(information.Type, 0);
    {
        const auto database = openOnServer("A");
        EXPECT_EQ(database->table("Description")->fields, (QStringList{"Description", "Version", "Type"}));
        EXPECT_EQ(database->table("Description")->indexes, QStringList{"Main"});
        for (const char* field : {"LastAccessed", "LastAccessedSoftware", "LastBackup"})
            database->appendField("Description", {field, FieldKind::Text, 200}, false);
        const auto row = database->open("Description", RecordsetMode::Table);
        row->edit();
        row->set("LastAccessed", "05/03/2024 22:10:00");
        row->set("LastBackup", "never");
        row->update();
    }
    EXPECT_EQ(GetDatabaseInformation("A", &information, true, connect()), 0);
    EXPECT_EQ(FromSerialDate(information.LastAccessed), QDateTime({2024, 3, 5}, {22, 10}));
    EXPECT_EQ(information.LastAccessedSoftware, "");
    EXPECT_EQ(information.LastBackup, "never");

    // A table without a row is a valid answer; a database without the table does not belong to the suite.
    openOnServer("A")->execute("DELETE FROM [Description]");
    EXPECT_EQ(GetDatabaseInformation("A", &information, false, connect()), 0);
    EXPECT_EQ(information.Description, "");
    EXPECT_EQ(texts(), QStringList{});
    ConnectToServer(connect())->execute("CREATE DATABASE \"Foreign\"");
    EXPECT_EQ(GetDatabaseInformation("Foreign", &information, true, connect()), 3078);
    EXPECT_TRUE(
        texts().last().startsWith("There was a problem Foreign\n\nopening the description information"));
    EXPECT_EQ(ValidateDatabase("Foreign", 1, true, &title, connect()), 3204);
    EXPECT_TRUE(texts().last().startsWith("There was a problem creating a new database 'Foreign'"));
    EXPECT_TRUE(texts().last().contains("Database 'Foreign' already exists. (42000, #1801)"));
}

TEST_P(EveryWayTest, FindsDatabasesOfAKind) {
    for (const char* name : {"Log1", "Log2", "Log3", "Cheap$Log"})
        makeOnServer(name, KOVAType);
    makeOnServer("Adverts", AdvertsType);
    ConnectToServer(connect())->execute("CREATE DATABASE \"Foreign\"");
    // Not databases at all, but present: skipped.
    QFile(folder.filePath("Broken.db")).open(QIODevice::WriteOnly);
    QString first = "before";
    EXPECT_EQ(FindDatabaseOfType({}, KOVAType, &first, 0, connect()), 3);
    EXPECT_EQ(first, ""); // for a server only the count is returned
    EXPECT_EQ(FindDatabaseOfType({}, KOVAType, &first, 2, connect()), 2);
    EXPECT_EQ(FindDatabaseOfType({}, AdvertsType, &first, 0, connect()), 1);
    EXPECT_EQ(FindDatabaseOfType({}, QuillType, &first, 0, connect()), 0);
    EXPECT_EQ(FindDatabaseOfType({}, KOVAType, &first, 0, "odbc;DRIVER={No Such Driver}"), 0);
    EXPECT_EQ(texts(), QStringList{});
}

TEST_P(EveryWayTest, BringsTablesUpToDate) {
    makeOnServer("Users", UsersDatabaseType);
    EXPECT_EQ(ValidateUsersDatabaseTables("Users", connect()), 0);
    {
        // Existing things stay: a narrow field, a field of its own, a row.
        const auto database = openOnServer("Users");
        database->execute("DROP TABLE [UserPreferences]");
        database->createTable("UserPreferences", {"Own", FieldKind::Long}, true);
        database->appendField("UserPreferences", {"LoginName", FieldKind::Text, 3}, true);
        database->execute("INSERT INTO [UserPreferences] ([Own], [LoginName]) VALUES (7, 'ANN')");
    }
    EXPECT_EQ(ValidateUsersDatabaseTables("Users", connect()), 0);
    EXPECT_TRUE(texts().last().startsWith(
        "There was a problem adding the index 'Main' to the UserPreferences table"));
    EXPECT_TRUE(texts().last().contains("#515")); // that row has no `Name`, and a key allows no nulls
    const auto database = openOnServer("Users");
    const auto preferences = database->table("userpreferences");
    EXPECT_EQ(preferences->fields, (QStringList{"Own", "LoginName", "Name", "Preference"}));
    EXPECT_EQ(database->open("UserPreferences", RecordsetMode::Dynaset)->size("LoginName"), 3);
    EXPECT_EQ(database->table("Users")->keys, QList<QStringList>{{"LoginName"}});
    EXPECT_FALSE(database->table("User%"));

    // A complete database is not written to.
    prompts.forget();
    makeOnServer("Log", KOVAType);
    const Table table{
        "Parts",
        {{"Number", FieldKind::Long}, {"Reference", FieldKind::Text}, {"Held", FieldKind::Boolean}},
        {{"Main", {"Number"}, true, true}, {"Reference", {"Reference"}}}};
    EXPECT_EQ(CheckTable(*openOnServer("Log"), table), 0);
    EXPECT_EQ(CheckTable(*openOnServer("Log", "Locked=1"), table), 0);
    EXPECT_EQ(texts(), QStringList{});
    EXPECT_EQ(CheckTable(*openOnServer("Log", "Locked=1"), {"More", {{"A", FieldKind::Long}}, {}}), 3027);
    EXPECT_TRUE(texts().last().startsWith("There was a problem creating the More Table"));
}

TEST_P(EveryWayTest, KeepsEveryKindOfValue) {
    makeOnServer("Log", KOVAType);
    const auto database = openOnServer("Log");
    const Table table{"Kinds]'\"",
                      {{"Key]'\"", FieldKind::Double},
                       {"Flag", FieldKind::Boolean},
                       {"Small", FieldKind::Integer},
                       {"Long", FieldKind::Long},
                       {"Single", FieldKind::Single},
                       {"Date", FieldKind::DateTime},
                       {"Text", FieldKind::Text, 5},
                       {"Memo", FieldKind::Memo}},
                      {{"Main", {"Key]'\""}, true, true}}};
    ASSERT_EQ(CheckTable(*database, table), 0);
    const QVariant values[] = {0.1,
                               true,
                               -32768,
                               2147483647,
                               2.6F,
                               QDateTime({1999, 12, 31}, {23, 59, 58}),
                               QString("\u00e9''] "),
                               QString(9000, u'\u4e2d')};
    auto rows = database->open(table.name, RecordsetMode::Dynaset);
    EXPECT_TRUE(rows->eof());
    for (const bool filled : {true, false}) {
        rows->addNew();
        rows->set("key]'\"", filled ? 0.1 : 0.2);
        for (std::size_t i = 1; filled && i < std::size(values); ++i)
            rows->set(table.fields[i].name, values[i]);
        rows->update();
    }
    // As saved here and as another connection reads them.
    for (int turn = 0; turn < 2; ++turn) {
        for (std::size_t i = 0; i < std::size(values); ++i)
            EXPECT_EQ(rows->value(table.fields[i].name), values[i]) << i;
        rows->moveNext();
        EXPECT_EQ(rows->value("Flag"), false); // as in a file, never null
        for (std::size_t i = 2; i < std::size(values); ++i)
            EXPECT_FALSE(rows->value(table.fields[i].name).isValid()) << i;
        rows = database->open(table.name, RecordsetMode::Dynaset);
    }
    rows->edit();
    for (std::size_t i = 2; i < std::size(values); ++i)
        rows->set(table.fields[i].name, QVariant());
    rows->update();
    rows = database->open(table.name, RecordsetMode::Dynaset);
    for (std::size_t i = 2; i < std::size(values); ++i)
        EXPECT_FALSE(rows->value(table.fields[i].name).isValid()) << i;
}

namespace {

int errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const DatabaseError& error) {
        return error.number;
    }
    return 0;
}

} // namespace

TEST_P(EveryWayTest, GivesTheNumbersThatTheSuiteKnows) {
    makeOnServer("Log", KOVAType);
    const auto database = openOnServer("Log");
    ASSERT_EQ(
        CheckTable(*database,
                   {"T", {{"A", FieldKind::Text, 5}, {"N", FieldKind::Long}}, {{"Main", {"A"}, true, true}}}),
        0);
    database->execute("INSERT INTO [T] VALUES ('one', 1)");
    const auto rows = database->open("T", RecordsetMode::Table);
    EXPECT_FALSE(rows->tableMode());
    EXPECT_EQ(errorOf([&] { rows->seek("one"); }), 3019);
    EXPECT_EQ(errorOf([&] { rows->value("Other"); }), ItemNotFoundError);
    EXPECT_EQ(errorOf([&] { rows->findFirst("Other=1"); }), 3061);
    EXPECT_EQ(errorOf([&] { rows->set("A", "x"); }), 3020);
    EXPECT_EQ(errorOf([&] { database->open("None", RecordsetMode::Table); }), 3078);
    EXPECT_EQ(errorOf([&] { database->execute("SELECT * FROM [None]"); }), 3078);
    EXPECT_EQ(errorOf([&] { database->execute("SELECT [None] FROM [T]"); }), ItemNotFoundError);
    EXPECT_EQ(errorOf([&] { database->execute("SELECT 'unclosed"); }), ServerCallFailed);
    EXPECT_EQ(errorOf([&] { database->createTable("T", {"A", FieldKind::Long}, true); }), 3010);
    EXPECT_EQ(errorOf([&] { database->appendField("T", {"N", FieldKind::Long}, true); }), 3191);
    EXPECT_EQ(errorOf([&] { database->appendIndex("T", {"Main", {"N"}}); }), 0); // "TMain" there
    EXPECT_EQ(errorOf([&] { database->appendIndex("T", {"Main", {"N"}}); }), 3284);
    // The values of a refused row are kept for another try.
    rows->addNew();
    rows->set("A", "ONE ");
    EXPECT_EQ(errorOf([&] { rows->update(); }), DuplicateKeyError);
    rows->set("A", "too long");
    EXPECT_EQ(errorOf([&] { rows->update(); }), 3163);
    rows->set("A", QVariant());
    EXPECT_EQ(errorOf([&] { rows->update(); }), 3314);
    EXPECT_EQ(errorOf([&] { rows->set("N", "words"); }), 3421);
    rows->set("A", "two");
    EXPECT_EQ(errorOf([&] { rows->update(); }), 0);
    EXPECT_EQ(rows->recordCount(), 2);
}

TEST_P(EveryWayTest, DoesNotOverwriteWhatOthersDid) {
    makeOnServer("Log", KOVAType);
    const auto database = openOnServer("Log");
    ASSERT_EQ(ValidateSettingsTable(*database), 0);
    const auto other = openOnServer("Log");
    database->execute("INSERT INTO [Settings] VALUES ('A', '1')");
    database->execute("INSERT INTO [Settings] VALUES ('B', '2')");
    const auto rows = database->open("Settings", RecordsetMode::Table);
    const auto theirs = other->open("Settings", RecordsetMode::Table);

    rows->edit();
    rows->set("Value", "mine");
    EXPECT_EQ(PutDatabaseSetting(theirs.get(), "A", "theirs", ""), 0);
    EXPECT_EQ(errorOf([&] { rows->update(); }), 3197);
    rows->edit(); // reads it again
    EXPECT_EQ(rows->value("Value"), "theirs");
    rows->set("Value", "mine");
    rows->update();
    EXPECT_EQ(GetDatabaseSetting(other->open("Settings", RecordsetMode::Table).get(), "A", ""), "mine");

    EXPECT_EQ(PutDatabaseSetting(theirs.get(), "A", "", ""), 0);
    EXPECT_EQ(errorOf([&] { rows->edit(); }), 3167);
    EXPECT_EQ(errorOf([&] { rows->remove(); }), 3167);
    EXPECT_EQ(PutDatabaseSetting(theirs.get(), "New", "theirs", ""), 0);
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "new", "mine", ""), DuplicateKeyError);

    // Together or not at all.
    other->begin();
    EXPECT_EQ(PutDatabaseSetting(theirs.get(), "B", "3", ""), 0);
    EXPECT_EQ(PutDatabaseSetting(theirs.get(), "C", "4", ""), 0);
    other->rollback();
    const auto now = database->open("SELECT * FROM [Settings] WHERE [Item] <> 'new'", RecordsetMode::Dynaset);
    EXPECT_EQ(now->recordCount(), 1);
    EXPECT_EQ(now->value("Value"), "2");
    EXPECT_FALSE(now->updatable());
    EXPECT_EQ(errorOf([&] { now->edit(); }), 3027);
}

TEST_P(EveryWayTest, WritesOnlyWhereItMay) {
    makeOnServer("Log", KOVAType);
    ASSERT_EQ(ValidateSettingsTable(*openOnServer("Log")), 0);
    for (const char* how : {"ReadOnly=1", "Locked=1"}) {
        if (wire && how[0] == 'R')
            continue; // a driver's own word
        const auto database = openOnServer("Log", how);
        const auto rows = database->open("Settings", RecordsetMode::Table);
        const bool isTold = !rows->updatable();
        EXPECT_EQ(PutDatabaseSetting(rows.get(), "A", 1, 0), isTold ? 0 : 3027) << how;
        EXPECT_EQ(texts().size(), isTold ? 0 : 1);
        EXPECT_EQ(GetDatabaseSetting(rows.get(), "A", "none"), "none");
    }
    // Without a unique index rows cannot be identified.
    const auto database = openOnServer("Log");
    database->createTable("Bare", {"A", FieldKind::Long}, true);
    EXPECT_FALSE(database->open("Bare", RecordsetMode::Table)->updatable());
    // A table that belongs to another owner.
    QString title;
    EXPECT_EQ(ValidateDatabase("Theirs", 1, true, &title, connect("Deny=Description")), 0);
    EXPECT_EQ(
        errorOf([&] { openOnServer("Log", "Deny=Description")->open("Description", RecordsetMode::Table); }),
        NoPermissionOnServer);
}

TEST_F(ServerTest, ReportsAServerThatFails) {
    makeOnServer("Log", KOVAType);
    prompts.forget();
    const struct {
        QString connect;
        const char* says;
    } cases[] = {
        {"ODBC;DRIVER={Test Server};Server=/nowhere",
         "'/nowhere' failed.\n[Test Server]Server does not exist"},
        {"ODBC;DRIVER={No Such Driver};Server=x", "'x' failed.\n[unixODBC][Driver Manager]"},
        {"ODBC;DSN=No such source",
         "'No such source' failed.\n[unixODBC][Driver Manager]Data source name not found"},
        {"ODBC;", "'ODBC' failed.\n"},
        {connect("UID=sa;PWD=wrong"), "Login failed for user 'sa'. (28000, #18456)"},
    };
    QString title;
    DatabaseInformation information;
    for (const auto& each : cases) {
        EXPECT_EQ(errorOf([&] { OpenSuiteDatabase("Log", each.connect); }), ConnectionFailed);
        EXPECT_EQ(GetDatabaseInformation("Log", &information, false, each.connect), -1);
        EXPECT_TRUE(texts().last().startsWith("There was a problem connecting to 'ODBC;"));
        EXPECT_TRUE(texts().last().contains(each.says)) << texts().last().toStdString();
        EXPECT_FALSE(texts().last().contains("wrong"));
        EXPECT_EQ(ValidateDatabase("Log", 1, true, &title, each.connect), ConnectionFailed);
        EXPECT_TRUE(texts().last().startsWith("There was a problem opening a new DB Workspace"));
        EXPECT_EQ(ChangeDatabaseDescription("Log", "x", each.connect), 0);
    }
    EXPECT_EQ(errorOf([&] { openOnServer("None"); }), ConnectionFailed);
    prompts.forget();
    EXPECT_EQ(GetDatabaseInformation("Log", &information, false, connect("Slow=1")), -1);
    EXPECT_TRUE(texts().last().startsWith("There was a problem retrieving the list of databases"));
    EXPECT_TRUE(texts().last().contains("Query timeout expired (HYT00, #0)"));
    EXPECT_EQ(ValidateDatabase("New", 1, true, &title, connect("Locked=1")), ServerCallFailed);
    EXPECT_TRUE(texts().last().contains("permission denied in database 'master'. (42000, #262)"));
}

namespace {

class BrokenServerTest : public ServerTest, public testing::WithParamInterface<std::tuple<const char*, Way>> {
protected:
    BrokenServerTest()
        : ServerTest(std::get<Way>(GetParam())) {}
};

} // namespace

// The connection breaks, or the server rolls back the transaction, at the first, the second, ... statement:
// nothing is ever partially done.
TEST_P(BrokenServerTest, LeavesNothingHalfDone) {
    const QString fault = QLatin1String(std::get<const char*>(GetParam()));
    const bool isLost = fault == "LoseAfter";
    const Table table{"Parts",
                      {{"Number", FieldKind::Long}, {"Name", FieldKind::Text, 20}},
                      {{"Main", {"Number"}, true, true}}};
    for (int statements = 0;; ++statements) {
        ASSERT_LT(statements, 60);
        const QString name = QStringLiteral("Log%1").arg(statements);
        makeOnServer(name, KOVAType);
        prompts.forget();
        const int error =
            CheckTable(*openOnServer(name, QStringLiteral("%1=%2").arg(fault).arg(statements)), table);
        const auto shape = openOnServer(name)->table("Parts");
        EXPECT_EQ(error == 0, texts().isEmpty());
        EXPECT_EQ(shape.has_value(), error == 0) << statements;
        if (error == 0) {
            EXPECT_EQ(shape->keys, QList<QStringList>{{"Number"}});
            EXPECT_GT(statements, 3);
            break;
        }
        EXPECT_EQ(error, isLost ? ServerCallFailed : 3260);
        // The own driver's numbers, or FreeTDS's.
        EXPECT_TRUE(texts().first().contains(isLost ? (wire ? "#20017)" : "(08S01, #10054)") : "#1205)"));
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, BrokenServerTest,
                         testing::Combine(testing::Values("LoseAfter", "UndoAfter"),
                                          testing::Values(Way::OwnDriver, Way::Wire)),
                         [](const auto& fault) {
                             return std::string(std::get<0>(fault.param)) +
                                    (std::get<1>(fault.param) == Way::Wire ? "OverTheWire" : "OwnDriver");
                         });
