// Servers that do not answer, that break connections, and that others have set up.
#include "ServerTest.h"

#include "databases/odbc/ServerSession.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/suite/FindDatabases.h"
#include "databases/users/UsersSchema.h"

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class HungServerTest : public ServerTest {
protected:
    HungServerTest()
        : ServerTest(Way::Wire) {
        serverPatience().rest = std::chrono::milliseconds(0);
        serverPatience().unseen = std::chrono::minutes(1); // even if this machine is slow
        makeOnServer("Log", KOVAType);
        database = openOnServer("Log");
        EXPECT_EQ(ValidateSettingsTable(*database), 0);
    }
    ~HungServerTest() override { serverPatience() = {}; }

    // The error that an operation throws.
    static DatabaseError errorOf(const std::function<void()>& operation) {
        try {
            operation();
        } catch (const DatabaseError& error) {
            return error;
        }
        return {};
    }
    void openAgain() const { openOnServer("Log"); }

    std::unique_ptr<SuiteDatabase> database;
};

} // namespace

// The user sees that it waits, and may stop it; the request then fails, and the next try works once the
// server does.
TEST_F(HungServerTest, CanBeLeft) {
    wire->hang();
    serverPatience().unseen = std::chrono::milliseconds(50);
    int events = 0;
    prompts.whileWaiting = [&] { ++events; };
    prompts.progressGoesOn = {true, true, false};
    DatabaseError error = errorOf([&] { openAgain(); });
    EXPECT_EQ(error.number, ConnectionFailed);
    EXPECT_TRUE(error.text.contains("The wait for the server was stopped.")) << error.text.toStdString();
    EXPECT_EQ(prompts.progressTitles, QStringList{"Database server"});
    EXPECT_EQ(events, 3);

    prompts.progressGoesOn = {false};
    error = errorOf([&] { database->open("Settings", RecordsetMode::Dynaset); });
    EXPECT_EQ(error.number, ServerCallFailed);
    // This connection was given up with its request.
    EXPECT_EQ(errorOf([&] { database->table("Settings"); }).number, ServerCallFailed);
    EXPECT_EQ(prompts.progressTitles.size(), 2);
    database.reset();
    wire->wake();
    EXPECT_TRUE(openOnServer("Log")->table("Settings"));
}

// A stop is not required: there are limits, and a server that was given up is left alone for a while.
TEST_F(HungServerTest, IsGivenUp) {
    wire->hang();
    serverPatience() = {std::chrono::milliseconds(300), std::chrono::milliseconds(200),
                        std::chrono::milliseconds(50), std::chrono::minutes(1)};
    DatabaseError error = errorOf([&] { database->table("Settings"); });
    EXPECT_EQ(error.number, ServerCallFailed);
    EXPECT_TRUE(error.text.contains("The server did not answer within 0.2 seconds."));
    // A search through its databases ends at once.
    QString first;
    EXPECT_EQ(FindDatabaseOfType({}, KOVAType, &first, 0, connect()), 0);
    EXPECT_EQ(prompts.progressTitles.size(), 1);
    error = errorOf([&] { openAgain(); });
    EXPECT_EQ(error.number, ConnectionFailed);
    EXPECT_TRUE(error.text.contains("did not answer a moment ago"));
    serverPatience().rest = std::chrono::milliseconds(0);
    error = errorOf([&] { openAgain(); });
    EXPECT_TRUE(error.text.contains("within 0.3 seconds")) << error.text.toStdString();
}

// A connection that broke while idle is reopened, unnoticed by the user.
TEST_F(HungServerTest, MayBreakAnIdleConnection) {
    auto rows = database->open("Settings", RecordsetMode::Dynaset);
    for (const char* value : {"1", "2", ""}) { // a new row, another value, no row
        wire->breakConnections();
        EXPECT_EQ(PutDatabaseSetting(rows.get(), "A", value, ""), 0) << value;
        wire->breakConnections();
        rows = database->open("Settings", RecordsetMode::Dynaset);
        EXPECT_EQ(GetDatabaseSetting(rows.get(), "A", ""), value);
    }
    wire->breakConnections();
    EXPECT_EQ(ValidateUsersDatabaseTables("Log", connect()), 0);
    EXPECT_EQ(texts(), QStringList{});
}

// It is unknown whether a change was made when the connection broke: it is neither made twice nor reported as
// a failure.
TEST_F(HungServerTest, MayLoseAnyAnswer) {
    for (int n = 1; n <= 10; ++n) {
        SCOPED_TRACE(n);
        auto rows = database->open("Settings", RecordsetMode::Dynaset);
        for (const char* value : {"1", "2", ""}) {
            wire->loseAnswer(n);
            EXPECT_EQ(PutDatabaseSetting(rows.get(), "A", value, ""), 0) << value;
            wire->loseAnswer(0);
            rows = database->open("Settings", RecordsetMode::Dynaset);
            EXPECT_EQ(GetDatabaseSetting(rows.get(), "A", ""), value);
        }
        EXPECT_EQ(rows->recordCount(), 0);
    }
    EXPECT_EQ(texts(), QStringList{});
}

// Changes by others while the connection was broken are respected.
TEST_F(HungServerTest, DoesNotTakeTheRowsOfOthersForItsOwn) {
    const auto other = [&](const char* value) {
        wire->breakConnections();
        const auto now = openOnServer("Log");
        EXPECT_EQ(PutDatabaseSetting(now->open("Settings", RecordsetMode::Dynaset).get(), "A", value, ""), 0);
    };
    const auto rows = database->open("Settings", RecordsetMode::Dynaset);
    rows->addNew();
    rows->set("Item", "A");
    rows->set("Value", "mine");
    other("theirs");
    EXPECT_EQ(errorOf([&] { rows->update(); }).number, DuplicateKeyError);
    const auto known = database->open("Settings", RecordsetMode::Dynaset);
    known->edit();
    known->set("Value", "mine");
    other("theirs again");
    EXPECT_EQ(errorOf([&] { known->update(); }).number, RecordChangedError);
}

// In a transaction it is an error, and no partial change remains.
TEST_F(HungServerTest, UndoesABrokenTransaction) {
    const auto rows = database->open("Settings", RecordsetMode::Dynaset);
    database->begin();
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "A", "1", ""), 0);
    wire->breakConnections();
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "B", "2", ""), ServerCallFailed);
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "C", "3", ""), ServerCallFailed);
    EXPECT_NE(errorOf([&] { database->commit(); }).number, 0);
    database->rollback();
    EXPECT_EQ(database->open("Settings", RecordsetMode::Dynaset)->recordCount(), 0);
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "D", "4", ""), 0);
    EXPECT_EQ(openOnServer("Log")->open("Settings", RecordsetMode::Dynaset)->recordCount(), 1);

    // A later request is a first attempt: a row that others removed is not ours to remove.
    database->begin();
    wire->breakConnections();
    EXPECT_EQ(PutDatabaseSetting(rows.get(), "E", "5", ""), ServerCallFailed);
    database->rollback();
    openOnServer("Log")->execute("DELETE FROM [Settings]");
    rows->findFirst("Item='D'");
    EXPECT_EQ(errorOf([&] { rows->remove(); }).number, RecordDeletedError);
}

// Primary keys have the names given by whoever made the table.
TEST_F(HungServerTest, HasKeysOfAnyName) {
    database->execute(
        "CREATE TABLE [UserPreferences] ([LoginName] NVARCHAR(20) NULL, [Name] NVARCHAR(255) NULL, "
        "[Preference] NVARCHAR(MAX) NULL)");
    for (const char* field : {"LoginName] NVARCHAR(20", "Name] NVARCHAR(255"})
        database->execute(
            QStringLiteral("ALTER TABLE [UserPreferences] ALTER COLUMN [%1) NOT NULL").arg(field));
    database->execute("ALTER TABLE [UserPreferences] ADD CONSTRAINT [PK__UserPref__3214EC07] PRIMARY KEY "
                      "([Name], [LoginName])");
    EXPECT_EQ(CheckTable(*database, UserPreferencesSchema()), 0);
    EXPECT_EQ(texts(), QStringList{});
    EXPECT_EQ(database->table("UserPreferences")->indexes, QStringList{"PK__UserPref__3214EC07"});
    const auto rows = database->open("UserPreferences", RecordsetMode::Dynaset);
    EXPECT_TRUE(rows->updatable());
    // An index over some of its fields is a different one, and so is one that allows duplicates.
    const Table more{"UserPreferences",
                     {{"LoginName", FieldKind::Text, 20}, {"Name", FieldKind::Text, 255}},
                     {{"ByName", {"Name"}, true}, {"Both", {"Name", "LoginName"}}}};
    EXPECT_EQ(CheckTable(*database, more), 0);
    EXPECT_EQ(database->table("UserPreferences")->indexes.size(), 3);
    // One over other fields is a different key.
    const Table other{"Settings",
                      {{"Item", FieldKind::Text, 250}, {"Value", FieldKind::Memo}},
                      {{"Other", {"Item", "Value"}, true}, {"Third", {"Item"}, true}}};
    EXPECT_EQ(CheckTable(*database, other), 0);
    EXPECT_EQ(database->table("Settings")->indexes, (QStringList{"Main", "Other"}));
}
