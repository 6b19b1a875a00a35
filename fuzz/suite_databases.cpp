// Whole databases of the suite, damaged, in start-up, validation, the users database, the automation settings
// and compaction: each ends with an answer or an error, and the compacted file has no fault. The first byte
// of an input selects the database and the routines; then follow damages of four bytes: a page, a place in it
// (its first 256 bytes in steps of one, after that of sixteen), and the byte to put there.
#include "Require.h"

#include "automation/AutomationSchema.h"
#include "automation/AutomationStore.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/jet/JetDatabase.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/ValidateDatabase.h"
#include "databases/users/UsersDatabase.h"
#include "databases/users/UsersSchema.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

using namespace tolvex;

namespace {

constexpr std::size_t longest = 256;

class StandingClock final : public platform::Clock {
public:
    QDateTime now() const override { return QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53)); }
    void sleep(double) override {}
    void set(const QDateTime&, bool, SetDone done) override { done({1, {}}); }
};

// A folder in memory, where a flush costs nothing, if the machine has one.
QString placeForFolder() {
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + QStringLiteral("/tolvex-XXXXXX");
}

struct Station {
    Station() {
        platform::setClock(&clock);
        require(platform::SetMachineFolder(folder.path()));
        for (const auto& [path, type] :
             {std::pair(users, UsersDatabaseType), std::pair(automation, KOVAType)}) {
            QString title = QStringLiteral("A database");
            require(ValidateDatabase(path, type, true, &title) == 0);
        }
        const Settings settings;
        UsersState state(settings);
        require(OpenUsersDatabase(state, users) == 0);
        for (int i = 0; i < 40; ++i) {
            const QString login = QStringLiteral("USER%1").arg(i);
            state.database->execute(QStringLiteral("INSERT INTO Users (LoginName, FullName, Notes, "
                                                   "GroupNumber, ExpirationDate, DeletionDate) "
                                                   "VALUES ('%1', 'The %1', '%2', 1, %3, NULL)")
                                        .arg(login, QString(i % 9 * 60, u'n'))
                                        .arg(46000 + 20 * i));
            state.database->execute(
                QStringLiteral(
                    "INSERT INTO UserPreferences (LoginName, Name, Preference) VALUES ('%1', 'Colour', '%2')")
                    .arg(login, QString(i * 3, u'p')));
            AddEventToUserHistory(state, login, 1, 1, QStringLiteral("logged in"));
        }
        CloseUsersDatabase(state);
        require(ValidateKOVADatabaseTables(automation) == 0);
        const auto database = OpenSuiteDatabase(automation);
        require(SaveKOVASettings(*database, {}, {}) == 0);
        database->close();
        for (const QString& path : {users, automation})
            sound.push_back(read(path));
    }
    static QByteArray read(const QString& path) {
        QFile file(platform::HostPath(path));
        require(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    // The folder holds only this file.
    void put(const QString& path, const QByteArray& bytes) const {
        QDir drive(platform::HostPath(QStringLiteral("C:\\DATA")));
        for (const QString& name : drive.entryList(QDir::Files))
            require(drive.remove(name));
        QFile file(platform::HostPath(path));
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    StandingClock clock;
    QTemporaryDir folder{placeForFolder()};
    QString users = QStringLiteral("C:\\DATA\\USERS25.MDB");
    QString automation = QStringLiteral("C:\\DATA\\KOVA26.MDB");
    QList<QByteArray> sound;
};

QByteArray damaged(QByteArray file, const std::uint8_t* data, std::size_t size) {
    const auto pages = static_cast<std::size_t>(file.size()) / jet::PageSize;
    for (; size >= 4; size -= 4, data += 4) {
        const std::size_t place = data[1] | static_cast<std::size_t>(data[2]) << 8;
        const std::size_t at = place < 256 ? place : place * 16 % jet::PageSize + data[2] % 16;
        const std::size_t page = data[0] % pages;
        file.data()[page * jet::PageSize + at] = static_cast<char>(data[3]);
    }
    return file;
}

void requireSound(const QString& path) {
    jet::OpenOptions options;
    options.readOnly = true;
    jet::Database database = jet::Database::open(EnginePath(path), options);
    jet::CheckDatabase(database, [](const jet::Fault& fault) {
        if (fault.harmless)
            return;
        std::fprintf(stderr, "page %u: %s\n", fault.page, fault.reason.c_str());
        std::abort();
    });
}

void compact(const QString& path) {
    if (CompactRepairDatabase(path, false, {}, true))
        requireSound(path);
}

void useUsers(const QString& path) {
    const Settings settings;
    UsersState state(settings);
    if (OpenUsersDatabase(state, path) == 0) {
        AddEventToUserHistory(state, QStringLiteral("USER1"), 2, 1, QStringLiteral("logged out"));
        ProcessUserAccounts(state, QStringLiteral("SYSTEM"));
        DeleteUser(state, QStringLiteral("USER2"));
    }
    CloseUsersDatabase(state);
}

void useAutomation(const QString& path) {
    QString title;
    ValidateDatabase(path, KOVAType, true, &title);
    ValidateKOVADatabaseTables(path);
    try {
        const auto database = OpenSuiteDatabase(path);
        KOVADatabaseSettings record;
        LoadKOVASettings(*database, record, {});
        SaveKOVASettings(*database, record, {});
    } catch (const DatabaseError&) {
        // the answer to a damaged file
    }
    ChangeDatabaseDescription(path, QStringLiteral("Another"), {});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Station station;
    if (size == 0 || size > longest)
        return 0;
    const bool users = (data[0] & 1) == 0;
    const QString& path = users ? station.users : station.automation;
    station.put(path, damaged(station.sound[users ? 0 : 1], data + 1, size - 1));
    if ((data[0] & 2) != 0)
        compact(path);
    users ? useUsers(path) : useAutomation(path);
    if ((data[0] & 4) != 0)
        compact(path);
    return 0;
}
