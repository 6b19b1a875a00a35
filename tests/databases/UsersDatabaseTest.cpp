// The users database: made, shared, cleaned up daily, filled from an older file.
#include "DatabasesTest.h"

#include "core/settings/Settings.h"
#include "core/system/Registry.h"
#include "core/time/Dates.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/users/UserImport.h"
#include "databases/users/UsersDatabase.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "platform/CodePage.h"
#include "platform/profile/ProfileFile.h"
#include "support/FixedClock.h"
#include "support/NoRoom.h"
#include "support/OtherWorkstation.h"

#include <array>
#include <poll.h>
#include <thread>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\USERS\\USERS25.MDB");

class UsersDatabaseTest : public DatabasesTest {
protected:
    UsersDatabaseTest() { settings.DataLocation = QStringLiteral("C:\\DATA"); }
    void open() { ASSERT_EQ(OpenUsersDatabase(state, Path), 0) << texts().join('|').toStdString(); }
    // Today and the days around it, as dates of the database.
    QDateTime day(int fromToday) const { return clock.time.date().addDays(fromToday).startOfDay(); }
    void addUser(const QString& login, const QVariant& expires, const QVariant& deleted) {
        SuiteRecordset& users = *state.users;
        users.addNew();
        users.set("LoginName", login);
        users.set("AccountStatus", 1);
        users.set("ExpirationDate", expires);
        users.set("DeletionDate", deleted);
        users.update();
    }
    void addHistory(const QDateTime& time) {
        auto history = state.database->open("UserHistory", RecordsetMode::Table);
        history->addNew();
        history->set("EventTime", time);
        history->update();
    }
    // A column of a table, in the order of its index.
    QStringList column(const QString& table, const QString& field) {
        auto rows = state.database->open(table, RecordsetMode::Table);
        rows->setIndex("Main");
        QStringList values;
        for (; !rows->eof(); rows->moveNext()) {
            const QVariant value = rows->value(field);
            values += value.typeId() == QMetaType::QDateTime ? value.toDateTime().toString("dd hh:mm:ss")
                                                             : value.toString();
        }
        return values;
    }

    FixedClock clock{QDateTime({2024, 3, 20}, {10, 0, 0, 700})};
    Settings settings;
    UsersState state{settings};
};

// Where two processes wait for each other, but not for ever.
class Meeting {
public:
    Meeting() {
        for (auto& pipe : pipes_)
            EXPECT_EQ(::pipe(pipe.data()), 0);
    }
    // `side`: 0 for one process, 1 for the other. False: the other one does not arrive.
    bool meet(std::size_t side) const {
        constexpr int Patience = 60000; // milliseconds
        char mark = 0;
        pollfd other{pipes_[1 - side][0], POLLIN, 0};
        return ::write(pipes_[side][1], &mark, 1) == 1 && ::poll(&other, 1, Patience) == 1 &&
               ::read(other.fd, &mark, 1) == 1;
    }

private:
    std::array<std::array<int, 2>, 2> pipes_{};
};

} // namespace

TEST_F(UsersDatabaseTest, IsMadeFromNothing) {
    open();
    EXPECT_TRUE(prompts.asked.isEmpty());
    CloseUsersDatabase(state);
    EXPECT_EQ(state.information.FullName, "");
    EXPECT_EQ(rows(Path, "Description"), "Users Database,2.51,0");
    // The first run is over, today's processing done, and there are no groups without an older file.
    EXPECT_EQ(rows(Path, "Settings"), "FirstRun,1|LastAccountProcess,45371");
    EXPECT_EQ(rows(Path, "UserGroups"), "");
    EXPECT_EQ(mdb("mdb-tables", Path, {"-1"}).split('\n').join(' ').toStdString(),
              "Description Settings Users UserGroups UserHistory UserPreferences");
    const QString schema = mdb("mdb-schema", Path, {"--indexes", "postgres"});
    for (const char* index : {"PRIMARY KEY (\"loginname\")", "PRIMARY KEY (\"groupnumber\")",
                              "PRIMARY KEY (\"eventtime\")", "PRIMARY KEY (\"loginname\", \"name\")"})
        EXPECT_TRUE(schema.contains(index)) << index;
    open(); // and again, over what is there
    EXPECT_EQ(state.UserHistoryPurgeDays, 30);
    EXPECT_FLOAT_EQ(state.information.Version, 2.51F);
}

TEST_F(UsersDatabaseTest, TakesEventsOfTwoWorkstationsInOneSecond) {
    open();
    UsersState second(settings);
    ASSERT_EQ(OpenUsersDatabase(second, Path), 0);
    for (int i = 0; i < 3; ++i) {
        AddEventToUserHistory(state, "ANN", 129, 1, QStringLiteral("here %1").arg(i));
        AddEventToUserHistory(second, "BOB", 129, 1, QStringLiteral("there %1").arg(i));
    }
    EXPECT_EQ(column("UserHistory", "EventTime"), (QStringList{"20 10:00:00", "20 10:00:01", "20 10:00:02",
                                                               "20 10:00:03", "20 10:00:04", "20 10:00:05"}));
    EXPECT_EQ(column("UserHistory", "LoginName").count("BOB"), 3);
    state.InhibitUserHistory = true;
    AddEventToUserHistory(state, "ANN", 129, 1, "");
    EXPECT_EQ(column("UserHistory", "LoginName").size(), 6);
    CloseUsersDatabase(state);
    AddEventToUserHistory(state, "ANN", 129, 1, "no database");
}

// Two processes keep the database open: each sees at once what the other adds, and so does a program with
// another engine, although nobody has closed the file.
TEST_F(UsersDatabaseTest, ServesTwoProcessesAtOnce) {
    constexpr int Each = 5;
    const Meeting meeting;
    const auto work = [&](std::size_t side, const QString& login) {
        if (OpenUsersDatabase(state, Path) != 0 || !meeting.meet(side))
            return false;
        for (int i = 0; i < Each; ++i)
            AddEventToUserHistory(state, login, 129, 1, QString::number(i));
        return meeting.meet(side) && column("UserHistory", "EventTime").size() == 2 * Each;
    };
    open();
    CloseUsersDatabase(state);
    const OtherWorkstation other([&] { return work(1, "BOB") && meeting.meet(1); });
    EXPECT_TRUE(work(0, "ANN")) << texts().join('|').toStdString();
    state.database->refresh(); // a reader may have blocked the last one
    const QStringList seen = QString::fromStdString(rows(Path, "UserHistory")).split('|');
    EXPECT_EQ(seen.size(), 2 * Each);
    EXPECT_EQ(seen.filter("BOB").size(), Each);
    EXPECT_TRUE(meeting.meet(0));
    EXPECT_TRUE(other.wentWell());
}

TEST_F(UsersDatabaseTest, TidiesAccountsOnceADay) {
    open();
    addUser("EXPIRED", day(0), {});
    addUser("LEAVER", day(-5), day(-1));
    addUser("O'NEILL", {}, day(0));
    addUser("STAYS", day(1), day(9));
    addUser("..", {}, day(0));
    for (const char* name : {"LEAVER", "O'NEILL", "STAYS"}) {
        machine.write(QStringLiteral("C:\\DATA\\USERS\\%1\\notes.txt").arg(name), "x");
        auto preferences = state.database->open("UserPreferences", RecordsetMode::Table);
        for (const char* item : {"Colour", "Size"}) {
            preferences->addNew();
            preferences->set("LoginName", QString(name));
            preferences->set("Name", QString(item));
            preferences->update();
        }
    }
    addHistory(day(-29).addSecs(-1));
    addHistory(day(-29));
    addHistory(day(-29).addSecs(1));
    open(); // the same day: nothing is processed
    EXPECT_EQ(column("Users", "LoginName").size(), 5);

    clock.time = clock.time.addDays(1);
    addHistory(day(-29)); // of the new day
    open();
    EXPECT_EQ(column("Users", "LoginName"), (QStringList{"EXPIRED", "STAYS"}));
    EXPECT_EQ(column("Users", "AccountStatus"), (QStringList{"0", "0"}));
    EXPECT_EQ(column("Users", "ExpirationDate"), (QStringList{"", ""}));
    EXPECT_EQ(column("UserPreferences", "LoginName"), (QStringList{"STAYS", "STAYS"}));
    EXPECT_FALSE(machine.exists("C:\\DATA\\USERS\\LEAVER"));
    EXPECT_FALSE(machine.exists("C:\\DATA\\USERS\\O'NEILL"));
    EXPECT_TRUE(machine.exists("C:\\DATA\\USERS\\STAYS\\notes.txt"));
    QStringList actions = column("UserHistory", "Action");
    QStringList logins = column("UserHistory", "Notes");
    for (int i = 0; i < actions.size(); ++i)
        actions[i] += ' ' + logins[i];
    actions.sort();
    EXPECT_EQ(actions, (QStringList{"21 EXPIRED", "21 STAYS", "22 ..", "22 LEAVER", "22 O'NEILL"}));
    EXPECT_EQ(column("UserHistory", "LoginName").count("SYSTEM"), 5);
    EXPECT_TRUE(prompts.asked.isEmpty()) << texts().join('|').toStdString();
}

TEST_F(UsersDatabaseTest, KeepsHistoryForEverWhenToldSo) {
    open();
    {
        auto items = state.database->open("Settings", RecordsetMode::Table);
        PutDatabaseSetting(items.get(), "UserHistoryPurgeDays", 0, 30);
    }
    addHistory(QDateTime({1999, 1, 1}, {0, 0}));
    clock.time = clock.time.addDays(1);
    WriteRegistryLong(LocalMachineHive, TolvexKey, "InhibitUserHistory", 1, 0);
    open();
    EXPECT_EQ(column("UserHistory", "EventTime").size(), 1);
    EXPECT_TRUE(state.InhibitUserHistory);
}

TEST_F(UsersDatabaseTest, ImportsAnOlderFileOnTheFirstRun) {
    const QString older = "C:\\DATA\\USERS\\USERS.MDB";
    make(older, 0, "Old users");
    {
        const Table general{"General",
                            {{"Login", FieldKind::Text, 20},
                             {"password", FieldKind::Text, 20},
                             {"FullName", FieldKind::Text, 100},
                             {"Phone1", FieldKind::Text, 30},
                             {"Phone2", FieldKind::Text, 30},
                             {"Address", FieldKind::Memo},
                             {"Access1", FieldKind::Long},
                             {"Access2", FieldKind::Long},
                             {"Access3", FieldKind::Long}},
                            {}};
        auto database = OpenSuiteDatabase(older);
        ASSERT_EQ(CheckTable(*database, general), 0);
        auto rows = database->open("General", RecordsetMode::Table);
        const struct {
            const char* login;
            int access2;
            int access3;
            int nameLength;
        } accounts[] = {{"ann", 1 + 8192, 0, 5}, {"bob", 0, 1, 5}, {"cat", 64, 2, 5},
                        {"long", 0, 0, 70},      {" ", 0, 0, 5},   {nullptr, 0, 0, 5}};
        for (const auto& account : accounts) {
            rows->addNew();
            rows->set("Login", account.login ? QVariant(QString(account.login)) : QVariant());
            rows->set("password", QString("secret"));
            rows->set("FullName", QString(account.nameLength, u'n'));
            rows->set("Phone1", QString("123"));
            rows->set("Access1", 5);
            rows->set("Access2", account.access2);
            rows->set("Access3", account.access3);
            rows->update();
        }
    }
    platform::WriteProfileText("UsersDatabase", "FileName", "USERS.MDB", "Tolvex.ini");
    prompts.answers = {Answer::Yes};
    open();
    ASSERT_EQ(prompts.asked.size(), 5) << texts().join('|').toStdString();
    EXPECT_EQ(texts()[0], "Do you want to import the Users from 'Old users'?");
    EXPECT_TRUE(texts()[1].startsWith("There was a problem adding long to the users database and"));
    // Accounts that nobody could log in to.
    EXPECT_TRUE(texts()[2].startsWith("There was a problem adding   to the users database and"));
    EXPECT_TRUE(texts()[3].startsWith("There was a problem adding  to the users database and"));
    EXPECT_EQ(texts()[4], "The Users database has been imported");
    EXPECT_EQ(column("UserGroups", "Name").size(), 23);
    EXPECT_EQ(column("UserGroups", "AccessRight6"), QStringList(15, "true") + QStringList(8, "false"));
    EXPECT_EQ(column("Users", "LoginName"), (QStringList{"ann", "bob", "cat"}));
    QStringList rights;
    for (int right = 1; right <= 6; ++right)
        rights += column("Users", QStringLiteral("AccessRight%1").arg(right)).join(' ');
    EXPECT_EQ(rights, (QStringList{"true false false", "true false false", "false false false",
                                   "false true false", "false true false", "false false true"}));
    EXPECT_EQ(column("Users", "GroupNumber").first(), "5");
    EXPECT_EQ(TransformPassword(column("Users", "Password").first(), true), "SECRET");
    EXPECT_NE(column("Users", "Password").first(), "SECRET");

    // The offer is made only once.
    prompts.forget();
    open();
    EXPECT_TRUE(prompts.asked.isEmpty());
    // Manually: No leads to the picker, Cancel ends it.
    prompts.answers = {Answer::No, Answer::Cancel};
    prompts.files = {std::nullopt};
    MakeDefaultGroupsAndImport(state, false);
    MakeDefaultGroupsAndImport(state, false);
    EXPECT_EQ(prompts.fileQuestions.size(), 1);
}

// With any amount of room, an attempt reports what is wrong, leaves a sound file or none, and does not block
// the next.
TEST_F(UsersDatabaseTest, AFullDiskLosesNothing) {
    const auto expectSound = [&] {
        if (!machine.exists(Path))
            return;
        jet::Database database = jet::Database::open(machine.host(Path).toStdString());
        EXPECT_EQ(jet::CheckDatabase(database, [](const jet::Fault&) {}).faults, 0u);
    };
    int failed = 0;
    for (const std::uintmax_t bytes : {0u, 30000u, 70000u, 75000u, 90000u, 110000u, 200000u, 400000u}) {
        qint16 result = 0;
        {
            const NoRoom room(bytes);
            result = OpenUsersDatabase(state, Path);
            CloseUsersDatabase(state);
        }
        expectSound();
        if (result == 0)
            continue;
        ++failed;
        EXPECT_TRUE(texts().join('|').contains("There is not enough space on the disk"))
            << bytes << ": " << texts().join('|').toStdString();
        prompts.forget();
    }
    EXPECT_GT(failed, 2);
    open();
    addUser("ANN", {}, {});
    state.database->refresh();
    {
        const NoRoom room(0);
        AddEventToUserHistory(state, "ANN", 129, 1, "no room");
        EXPECT_FALSE(DeleteUser(state, "ANN"));
        EXPECT_EQ(column("Users", "LoginName"), QStringList{"ANN"});
    }
    AddEventToUserHistory(state, "ANN", 129, 1, "room again");
    EXPECT_EQ(column("UserHistory", "Notes"), QStringList{"room again"});
    CloseUsersDatabase(state);
    expectSound();
}

TEST_F(UsersDatabaseTest, TellsWhyItDoesNotOpen) {
    machine.write(Path, QByteArray(50000, 'x'));
    EXPECT_EQ(OpenUsersDatabase(state, Path), -1);
    EXPECT_FALSE(state.database);
    ASSERT_FALSE(texts().isEmpty());
}

TEST(TransformPassword, IsItsOwnInverse) {
    QString all;
    for (int code = 1; code < 256; ++code)
        all += QChar(platform::FromCodePage(QByteArray(1, static_cast<char>(code))).front());
    EXPECT_EQ(TransformPassword(TransformPassword(all, true), true), all);
    EXPECT_EQ(TransformPassword("\u0001\u0002\u0004\u00e4", true), "\u0010\u0008\u0004\u00e4");
    EXPECT_EQ(TransformPassword(TransformPassword("aZ\u00fc\u00b5\u00df", false), true),
              "AZ\u00dc\u00b5\u00df");
}
