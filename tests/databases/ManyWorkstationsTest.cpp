// Several workstations start at the same moment on a station without databases: each opens the one database
// that one of them makes, and no event is lost.
#include "DatabasesTest.h"

#include "core/settings/Settings.h"
#include "databases/users/UsersDatabase.h"
#include "databases/users/UsersSchema.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "support/FileFaults.h"
#include "support/OtherWorkstation.h"

#include <memory>
#include <set>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

constexpr int Workstations = 16;
const QString Users = QStringLiteral("C:\\DATA\\USERS\\USERS25.MDB");

class ManyWorkstationsTest : public DatabasesTest, public testing::WithParamInterface<DiskAbilities> {
protected:
    // Runs `work` with the workstation's number in all of them at once.
    void atOnce(const std::function<bool(int)>& work) const {
        const StartingGun gun;
        std::vector<std::unique_ptr<OtherWorkstation>> all;
        for (int number = 0; number < Workstations; ++number)
            all.push_back(std::make_unique<OtherWorkstation>([&, number] {
                gun.wait();
                return work(number);
            }));
        gun.fire();
        int failed = 0;
        for (const auto& each : all)
            failed += each->wentWell() ? 0 : 1;
        EXPECT_EQ(failed, 0);
    }
    // One file, sound, and nothing beside it.
    void expectOnly(const QString& path) const {
        const QString folder = path.section(u'\\', 0, -2);
        EXPECT_EQ(platform::FolderNames(folder), QStringList{path.section(u'\\', -1)});
        jet::Database database = jet::Database::open(machine.host(path).toStdString());
        jet::CheckDatabase(database.pager(), [](const jet::Fault& fault) {
            if (!fault.harmless)
                ADD_FAILURE() << "page " << fault.page << ": " << fault.reason;
        });
    }
};

std::string nameOf(const testing::TestParamInfo<DiskAbilities>& disk) {
    return disk.param.renamesWithoutReplacing ? "Renaming" : disk.param.links ? "Linking" : "Locking";
}

} // namespace

// Ten rounds of sixteen starts, each on an empty folder.
TEST_P(ManyWorkstationsTest, OpenTheUsersDatabaseThatOneOfThemMakes) {
    const PlainDisk disk(GetParam());
    for (int round = 0; round < 10 && !HasFailure(); ++round) {
        machine.write(Users, {}); // a file of length 0 must be filled
        if (round % 2 == 0)
            platform::RemoveFile(Users);
        atOnce([&](int number) {
            Settings settings;
            settings.DataLocation = QStringLiteral("C:\\DATA");
            UsersState state(settings);
            EXPECT_EQ(OpenUsersDatabase(state, Users), 0);
            AddEventToUserHistory(state, QString::number(number), AutomationSettingsSaved, EventSucceeded,
                                  "start");
            CloseUsersDatabase(state);
            EXPECT_EQ(texts().join(u'|').toStdString(), "");
            return true;
        });
        EXPECT_EQ(rows(Users, "Description"), "Users Database,2.51,0");
        std::set<QString> logins;
        {
            const auto database = OpenSuiteDatabase(Users);
            const auto history = database->open("UserHistory", RecordsetMode::Table);
            EXPECT_EQ(history->recordCount(), Workstations);
            for (; !history->eof(); history->moveNext())
                logins.insert(history->value("LoginName").toString());
            EXPECT_EQ(database->open("Settings", RecordsetMode::Table)->recordCount(), 2);
        }
        EXPECT_EQ(logins.size(), std::size_t{Workstations});
        expectOnly(Users);
        platform::RemoveFile(Users);
    }
}

// A database that somebody made empty gets its tables once, whoever adds them.
TEST_P(ManyWorkstationsTest, BringOneDatabaseUpToDate) {
    const PlainDisk disk(GetParam());
    machine.makeFolder("C:\\BARE");
    CreateSuiteDatabase("C:\\BARE\\USERS.MDB");
    atOnce([&](int number) {
        QString title = QStringLiteral("Title %1").arg(number);
        EXPECT_EQ(ValidateDatabase("C:\\BARE\\USERS.MDB", UsersDatabaseType, true, &title), 0);
        EXPECT_EQ(ValidateUsersDatabaseTables("C:\\BARE\\USERS.MDB"), 0);
        EXPECT_EQ(texts().join(u'|').toStdString(), "");
        return true;
    });
    EXPECT_EQ(
        OpenSuiteDatabase("C:\\BARE\\USERS.MDB")->open("Description", RecordsetMode::Table)->recordCount(),
        1);
    expectOnly("C:\\BARE\\USERS.MDB");
}

INSTANTIATE_TEST_SUITE_P(Disks, ManyWorkstationsTest,
                         testing::Values(DiskAbilities{true, true}, DiskAbilities{false, true},
                                         DiskAbilities{false, false}),
                         nameOf);
