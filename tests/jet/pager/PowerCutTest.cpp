// Cuts the power (or the share) before every single disk call of a session, keeps a random part of the
// unflushed data, and opens the file again; and makes every single call fail. TOLVEX_POWER_CUTS=<n> tries n
// random losses at each point instead of a few.
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/RawFile.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace jet::tests {
namespace {

constexpr char Path[] = "/data/SONGS.MDB";

std::uint32_t losses() {
    const char* wanted = std::getenv("TOLVEX_POWER_CUTS");
    return wanted == nullptr ? 3 : static_cast<std::uint32_t>(std::max(1, std::atoi(wanted)));
}

// A session that uses everything in the storage, and records its states.
class Session {
public:
    static constexpr int NoFile = -1;

    explicit Session(FaultyStorage& storage)
        : storage_(storage) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    virtual ~Session() = default;
    virtual void run() = 0;

    int commits = NoFile;            // number of the state after the last commit
    int flushed = NoFile;            // the state that was durable when a flush or close returned
    std::vector<std::string> states; // the file's content in each

    static OpenOptions options(bool exclusive) {
        OpenOptions options;
        options.exclusive = exclusive;
        options.cachePages = 256;
        options.logPages = 20;
        options.lockWait = std::chrono::milliseconds(0);
        return options;
    }

protected:
    void committed(const std::string& content) {
        ++commits;
        states.push_back(content);
    }

    FaultyStorage& storage_;
};

// Pages without tables: shared and exclusive, large and rolled back, freed and flushed.
class PageSession final : public Session {
public:
    explicit PageSession(FaultyStorage& storage)
        : Session(storage) {
        storage.put(Path, RawFile());
        flushed = commits = 0;
    }

    void run() override {
        {
            FilePager pager(storage_, Path, options(false));
            states.push_back(content(pager));
            change(pager, 1, 1);
            FilePager other(storage_, Path, options(false));
            change(other, 2, 2);
            change(pager, 3, 3);
            flush(pager);
            change(other, 4, 3);
            giveUp(pager);
            change(pager, 5, 1);
            change(other, 6, 1);
            change(pager, 7, 6);
            other.close();
            change(pager, 8, 2); // long enough for the log to be brought into the file
            change(pager, 9, 2);
            close(pager);
        }
        FilePager pager(storage_, Path, options(true));
        change(pager, 10, 2);
        change(pager, 11, 400); // does not fit into the cache
        change(pager, 12, 2);
        flush(pager);
        shrink(pager);
        change(pager, 13, 3);
        close(pager);
    }

    static std::string contentOf(FaultyStorage& storage) {
        FilePager pager(storage, Path, options(false));
        std::string found = content(pager);
        Changing change(pager); // it can be used, too
        Fill(pager.edit(pager.allocate()), 1);
        change.commit();
        pager.close();
        return found;
    }

private:
    // One number for all used pages together.
    static std::string content(FilePager& pager) {
        const Reading reading(pager);
        std::uint64_t sum = 14695981039346656037u;
        const FreeMap free(pager, {1, 0});
        for (PageNumber page = 1; page < pager.pageCount(); ++page) {
            if (page > 1 && free.isFree(page))
                continue;
            const std::uint8_t* bytes = pager.read(page);
            for (std::size_t at = 0; at < PageSize; at += 8)
                sum = (sum ^ Load64(bytes + at)) * 1099511628211u;
        }
        return std::to_string(sum);
    }
    // One transaction over old and new pages.
    void change(FilePager& pager, std::uint32_t value, int pages) {
        Changing changing(pager);
        Fill(pager.edit(2), value);
        Fill(pager.edit(3), value);
        for (int i = 0; i < pages; ++i) {
            last_ = pager.allocate();
            Fill(pager.edit(last_), value * 1000 + static_cast<std::uint32_t>(i));
        }
        changing.commit();
        committed(content(pager));
    }
    void shrink(FilePager& pager) {
        Changing changing(pager);
        for (PageNumber page = last_; page > last_ - 50; --page)
            pager.release(page);
        changing.commit();
        committed(content(pager));
    }
    static void giveUp(FilePager& pager) {
        const Changing changing(pager);
        Fill(pager.edit(2), 999);
        pager.allocate();
    }
    void flush(FilePager& pager) {
        pager.flush();
        flushed = commits;
    }
    void close(FilePager& pager) {
        pager.close();
        flushed = commits;
    }

    PageNumber last_ = 0;
};

// A database from its creation on: tables, rows, long values, indexes that split, design changes.
class TableSession final : public Session {
public:
    using Session::Session;

    void run() override {
        {
            Database database = Database::create(storage_, Path, options(true));
            committed(content(database));
            flushed = commits;
            AppendTable(database.catalog(), {u"Songs",
                                             {{u"Title", ColumnType::Text, 60}, {u"Note", ColumnType::Memo}},
                                             {{.name = u"Main", .fields = {{u"Title"}}, .unique = true}},
                                             {}});
            committed(content(database));
            for (int song = 0; song < 3; ++song) {
                insert(database, song);
                committed(content(database));
            }
            Transaction many(database);
            for (int song = 3; song < 150; ++song)
                insert(database, song);
            many.commit();
            committed(content(database));
            close(database);
        }
        Database database = Database::open(storage_, Path, options(false));
        Table songs = database.catalog().table(u"Songs");
        RowPointer at;
        RowView row;
        songs.next(at, row);
        const FieldChange longer{1, std::u16string(9000, u'\u20AC')};
        songs.update(at, {&longer, 1});
        committed(content(database));
        songs.next(at, row);
        songs.remove(at);
        committed(content(database));
        database.flush();
        flushed = commits;
        AppendIndex(database.catalog(), u"Songs", {.name = u"Again", .fields = {{u"Title", true}}});
        committed(content(database));
        AppendField(database.catalog(), u"Songs", {u"Year", ColumnType::Long});
        committed(content(database));
        RenameTable(database.catalog(), u"Songs", u"Titles");
        committed(content(database));
        AppendTable(database.catalog(),
                    {u"Adverts", {{u"Title", ColumnType::Text}, {u"Note", ColumnType::Memo}}, {}, {}});
        committed(content(database));
        DropTable(database.catalog(), u"Titles");
        committed(content(database));
        close(database);
    }

    static std::string contentOf(FaultyStorage& storage) {
        if (!storage.exists(Path))
            return {};
        Database database = Database::open(storage, Path, options(false));
        CheckDatabase(database.pager(), [](const Fault& fault) {
            if (!fault.harmless)
                ADD_FAILURE() << "page " << fault.page << ": " << fault.reason;
        });
        std::string found = content(database);
        AppendTable(database.catalog(), {u"After", {{u"Id", ColumnType::Long}}, {}, {}});
        database.close();
        return found;
    }

private:
    static void insert(Database& database, int song) {
        std::vector<Value> values{ToUtf16(std::to_string(song * 7919 % 1000) + std::string(50, 'x')),
                                  std::u16string(static_cast<std::size_t>(song % 5 * 40 + 1), u'n')};
        database.catalog().table(u"Songs").insert(values);
    }
    static std::string content(Database& database) {
        std::string text = "database";
        for (const CatalogObject& object : database.catalog().tables()) {
            const Table table = database.catalog().table(object);
            text += ' ' + ToUtf8(table.name()) + std::to_string(table.definition().columns.size()) + '/' +
                    std::to_string(table.definition().realIndexes.size()) + ' ' +
                    std::to_string(table.rowCount());
            RowPointer at;
            Value title, note;
            for (RowView row; table.next(at, row);) {
                table.value(row, table.definition().findColumn(u"Title"), title);
                table.value(row, table.definition().findColumn(u"Note"), note);
                text += ' ' + ToUtf8(std::get<std::u16string>(title).substr(0, 3)) +
                        std::to_string(std::get<std::u16string>(note).size());
            }
        }
        return text;
    }
    void close(Database& database) {
        database.close();
        flushed = commits;
    }
};

// The session without faults: its number of calls, and its states.
template<class Kind>
struct Reference {
    int calls = 0;
    std::vector<std::string> states;

    Reference() {
        FaultyStorage storage;
        Kind session(storage);
        session.run();
        calls = storage.calls();
        states = session.states;
        EXPECT_EQ(storage.names(), std::vector<std::string>{Path});
        EXPECT_GT(calls, 50);
    }

    // The committed state of a file; -2: none.
    int stateOf(FaultyStorage& storage) const {
        const std::string found = Kind::contentOf(storage);
        if (found.empty())
            return Session::NoFile;
        const auto at = std::find(states.begin(), states.end(), found);
        return at == states.end() ? -2 : static_cast<int>(at - states.begin());
    }
};

template<class Kind>
class PowerCut : public testing::Test {};
using Sessions = testing::Types<PageSession, TableSession>;
class SessionNames {
public:
    template<class Kind>
    static std::string GetName(int) {
        return std::is_same_v<Kind, PageSession> ? "Pages" : "Tables";
    }
};
TYPED_TEST_SUITE(PowerCut, Sessions, SessionNames);

TYPED_TEST(PowerCut, AtEveryCallOfASession) {
    const Reference<TypeParam> reference;
    for (int cut = 1; cut <= reference.calls; ++cut) {
        for (std::uint32_t loss = 0; loss < losses() + 2; ++loss) {
            FaultyStorage storage;
            TypeParam session(storage);
            storage.cutAt(cut);
            bool told = false;
            try {
                session.run();
            } catch (const Error&) {
                told = true;
            }
            // Only the lock file, on which nothing depends, may silently stay.
            EXPECT_TRUE(told || session.flushed == session.commits) << "cut " << cut;
            FaultyStorage after;
            storage.afterPowerCut(loss == 0   ? FaultyStorage::Loss::Everything
                                  : loss == 1 ? FaultyStorage::Loss::Nothing
                                              : FaultyStorage::Loss::Random,
                                  static_cast<std::uint32_t>(cut) * 1000 + loss, after);
            const int state = reference.stateOf(after);
            ASSERT_GE(state, session.flushed) << "cut " << cut << ", loss " << loss;
            ASSERT_LE(state, session.commits + 1) << "cut " << cut << ", loss " << loss;
            // Killing the process alone loses no commit.
            ASSERT_TRUE(loss != 1 || state >= session.commits) << "kill at " << cut;
        }
    }
}

// The power fails again during recovery.
TYPED_TEST(PowerCut, AtEveryCallOfARecovery) {
    const Reference<TypeParam> reference;
    for (int cut = 10; cut <= reference.calls; cut += 7) {
        FaultyStorage storage;
        TypeParam session(storage);
        storage.cutAt(cut);
        EXPECT_THROW(session.run(), Error);
        int firstState = -1;
        for (int second = 1;; ++second) {
            FaultyStorage once;
            storage.afterPowerCut(FaultyStorage::Loss::Random, static_cast<std::uint32_t>(cut), once);
            once.cutAt(second);
            try {
                FilePager(once, Path, Session::options(false)).close();
            } catch (const Error&) {
                // The power is off, or there is no file yet.
            }
            FaultyStorage twice;
            once.afterPowerCut(FaultyStorage::Loss::Random, static_cast<std::uint32_t>(second), twice);
            const int state = reference.stateOf(twice);
            ASSERT_GE(state, session.flushed) << "cuts " << cut << ", " << second;
            // Recovered data is on the disk, or is recovered again.
            firstState = second == 1 ? state : firstState;
            ASSERT_EQ(state, firstState) << "cuts " << cut << ", " << second;
            if (once.calls() < second)
                break;
        }
    }
}

// Every call fails once, or from then on: committed data stays, the rest is completely absent.
TYPED_TEST(PowerCut, EveryCallFails) {
    const Reference<TypeParam> reference;
    for (const bool lasting : {false, true}) {
        for (int call = 1; call <= reference.calls; ++call) {
            FaultyStorage storage;
            TypeParam session(storage);
            storage.failAt(call, ErrorNumber::DiskFull, lasting);
            try {
                session.run();
            } catch (const Error& error) {
                EXPECT_TRUE(error.code() == ErrorNumber::DiskFull || error.code() == ErrorNumber::DiskIo)
                    << error.what();
            }
            storage.failAt(0, ErrorNumber::DiskFull, false);
            FaultyStorage after; // the process ends
            storage.afterPowerCut(FaultyStorage::Loss::Nothing, 0, after);
            const int state = reference.stateOf(after);
            ASSERT_GE(state, session.commits) << "call " << call << (lasting ? " and all after" : "");
            ASSERT_LE(state, session.commits + 1) << "call " << call << (lasting ? " and all after" : "");
        }
    }
}

} // namespace
} // namespace jet::tests
