// Damaged databases at start-up: the program survives, the database is named, and sound parts keep working.
#include "databases/DatabasesTest.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/jet/JetDatabase.h"
#include "databases/store/Report.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/users/UsersDatabase.h"

#include "jet/Check.h"
#include "jet/Database.h"

#include <gtest/gtest.h>

namespace tolvex::tests {
namespace {

const QString users = QStringLiteral("C:\\DATA\\USERS\\USERS25.MDB");

class DamagedDatabasesTest : public DatabasesTest {
protected:
    DamagedDatabasesTest() {
        EXPECT_EQ(OpenUsersDatabase(state, users), 0);
        AddEventToUserHistory(state, QStringLiteral("ANN"), 1, 1, {});
        CloseUsersDatabase(state);
        sound_ = machine.read(users);
        prompts.forget();
    }

    jet::PageNumber definitionOf(const char16_t* table) const {
        jet::OpenOptions options;
        options.readOnly = true;
        jet::Database database = jet::Database::open(EnginePath(users), options);
        return static_cast<jet::PageNumber>(database.catalog().findTable(table)->id);
    }
    void damage(jet::PageNumber page, std::size_t at, char byte) {
        QByteArray file = machine.read(users);
        file.data()[page * jet::PageSize + at] = byte;
        machine.write(users, file);
    }
    std::string faults() const {
        jet::OpenOptions options;
        options.readOnly = true;
        jet::Database database = jet::Database::open(EnginePath(users), options);
        std::string text;
        jet::CheckDatabase(database, [&](const jet::Fault& fault) {
            text += fault.harmless ? std::string() : fault.reason + '\n';
        });
        return text;
    }

    Settings values;
    UsersState state{values};
    QByteArray sound_;
};

// An index of the preferences names a column that no table has. The other tables are read and written as
// before.
TEST_F(DamagedDatabasesTest, ABrokenTableIsNamedAndClosesNoOther) {
    const jet::PageNumber page = definitionOf(u"UserPreferences");
    const qsizetype start = page * qsizetype{jet::PageSize};
    // The first column of the first tree of keys: after its stamp, 1923.
    const qsizetype stamp = sound_.indexOf(QByteArray("\x83\x07\x00\x00", 4), start);
    ASSERT_LT(stamp, start + qsizetype{jet::PageSize});
    damage(page, static_cast<std::size_t>(stamp - start) + 4, 77);

    EXPECT_NE(OpenUsersDatabase(state, users), 0);
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(texts()[0].contains(users)) << texts()[0].toStdString();
    EXPECT_TRUE(texts()[0].contains(QStringLiteral("page %1: index 'Main' names a column").arg(page)))
        << texts()[0].toStdString();
    const auto database = OpenSuiteDatabase(users);
    EXPECT_EQ(database->open(QStringLiteral("UserHistory"), RecordsetMode::Table)->recordCount(), 1);
    auto settings = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
    settings->setIndex(QStringLiteral("Main"));
    EXPECT_EQ(PutDatabaseSetting(settings.get(), QStringLiteral("FirstRun"), 2, 0), 0);
    settings.reset();
    database->close();

    std::string lost;
    EXPECT_TRUE(
        CompactRepairDatabase(users, false, {}, true, [&](const jet::Fault& loss) { lost += loss.reason; }));
    EXPECT_EQ(lost, "lost index 'Main', which names a column that is not there");
    EXPECT_EQ(faults(), "");
    EXPECT_EQ(OpenUsersDatabase(state, users), 0); // rebuilds the index
}

// A page of the catalogue is missing from its list: its tables seem missing, and must not be made a second
// time.
TEST_F(DamagedDatabasesTest, TablesThatCannotBeFoundAreNotMadeAnew) {
    jet::PageNumber last = 0;
    {
        jet::OpenOptions options;
        options.readOnly = true;
        jet::Database database = jet::Database::open(EnginePath(users), options);
        last = database.catalog().findTable(u"UserPreferences")->row.page;
    }
    // The list of MSysObjects' pages is row 0 of page 6: a kind, a first page of four bytes, then a bit for
    // each.
    const std::size_t at = static_cast<std::uint8_t>(sound_[6 * 4096 + 14]) |
                           (static_cast<std::uint8_t>(sound_[6 * 4096 + 15]) & 0x1FU) << 8U;
    const std::size_t byte = at + 5 + last / 8;
    damage(6, byte, static_cast<char>(sound_.constData()[6 * 4096 + byte] & ~(1 << last % 8)));
    const QByteArray damaged = machine.read(users);

    EXPECT_NE(OpenUsersDatabase(state, users), 0);
    ASSERT_FALSE(texts().isEmpty());
    EXPECT_TRUE(texts()[0].contains(QStringLiteral("objects, of which"))) << texts()[0].toStdString();
    EXPECT_EQ(machine.read(users), damaged);
    EXPECT_TRUE(CompactRepairDatabase(users, false, {}, true));
    EXPECT_EQ(OpenUsersDatabase(state, users), 0);
    EXPECT_NE(rows(users, QStringLiteral("UserHistory")).find("ANN"), std::string::npos);
}

// The index of the settings is broken: the user sees the defaults, and the caller gets the reason.
TEST_F(DamagedDatabasesTest, ErrorsThatNobodySeesCanBeHeard) {
    jet::PageNumber root = 0;
    {
        jet::OpenOptions options;
        options.readOnly = true;
        jet::Database database = jet::Database::open(EnginePath(users), options);
        root = database.catalog().table(u"Settings").definition().realIndexes[0].root;
    }
    damage(root, 0, 9);
    const auto database = OpenSuiteDatabase(users);
    const auto settings = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
    SilentErrors outer;
    {
        SilentErrors silent;
        EXPECT_EQ(GetDatabaseSetting(settings.get(), QStringLiteral("FirstRun"), 5).toInt(), 5);
        const auto heard = silent.take();
        ASSERT_EQ(heard.size(), 1u);
        EXPECT_EQ(heard[0].number, 3428);
        EXPECT_TRUE(heard[0].text.contains(QStringLiteral("page %1").arg(root)))
            << heard[0].text.toStdString();
        EXPECT_TRUE(silent.take().empty());
    }
    EXPECT_TRUE(outer.take().empty());
    EXPECT_TRUE(texts().isEmpty());
}

} // namespace
} // namespace tolvex::tests
