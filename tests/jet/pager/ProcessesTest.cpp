// Several processes on one file of this machine, working at the same time and killed at any instruction.
// TOLVEX_PROCESS_ROUNDS=<n> makes them work longer.
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/pager/Sharing.h"
#include "jet/pager/WriteAheadLog.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace jet::tests {
namespace {

using Random = std::mt19937;

int rounds(int usual) {
    const char* wanted = std::getenv("TOLVEX_PROCESS_ROUNDS");
    return wanted == nullptr ? usual : std::max(1, std::atoi(wanted));
}

// A child process that runs `work`, which can send numbers to its parent.
class Child {
public:
    using Tell = std::function<void(std::int32_t)>;

    explicit Child(const std::function<void(const Tell&)>& work) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        id_ = ::fork();
        if (id_ == 0) {
            int code = 0;
            try {
                work([&](std::int32_t number) {
                    if (::write(ends[1], &number, sizeof(number)) != sizeof(number))
                        ::_exit(2);
                });
            } catch (const std::exception& error) {
                std::fprintf(stderr, "process %d: %s\n", ::getpid(), error.what());
                code = 1;
            }
            ::_exit(code);
        }
        ::close(ends[1]);
        pipe_ = ends[0];
    }
    ~Child() { ::close(pipe_); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void kill() const { ::kill(id_, SIGKILL); }
    // The numbers from the child, up to its end. `clean`: it must end by itself without an error.
    std::vector<std::int32_t> end(bool clean) const {
        std::vector<std::int32_t> told;
        std::int32_t number = 0;
        while (::read(pipe_, &number, sizeof(number)) == sizeof(number))
            told.push_back(number);
        int status = 0;
        ::waitpid(id_, &status, 0);
        EXPECT_TRUE(!clean || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << "status " << status;
        return told;
    }

private:
    pid_t id_ = 0;
    int pipe_ = 0;
};

class ProcessesTest : public testing::Test {
protected:
    static constexpr std::int32_t Counter = 0; // the row that everybody changes

    void SetUp() override {
        std::filesystem::create_directories(folder_);
        Database database = Database::create(path_);
        TableDesign design;
        design.name = u"Accounts";
        design.fields = {{u"Id", ColumnType::Long},
                         {u"Owner", ColumnType::Text, 30},
                         {u"Credit", ColumnType::Long},
                         {u"Debit", ColumnType::Long},
                         {u"Note", ColumnType::Memo}};
        design.indexes = {{.name = u"Main", .fields = {{u"Id"}}, .unique = true, .primary = true},
                          {.name = u"Owner", .fields = {{u"Owner"}, {u"Credit", true}}}};
        AppendTable(database.catalog(), design);
        Recordset set = accounts(database);
        add(set, Counter, 0);
        database.close();
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    static Recordset accounts(Database& database) {
        Recordset set = Recordset::open(database, u"Accounts");
        set.setIndex(u"Main");
        return set;
    }
    static std::int32_t number(Recordset& set, const char16_t* field) {
        return std::get<std::int32_t>(set.value(field));
    }
    static std::size_t noteLength(std::int32_t credit) { return static_cast<std::size_t>(credit % 9000 + 1); }
    // Credit and debit always balance, and the note has the length given by the credit.
    static void fill(Recordset& set, std::int32_t credit) {
        set.set(u"Credit", credit);
        set.set(u"Debit", -credit);
        set.set(u"Owner", ToUtf16("Owner " + std::to_string(credit % 7)));
        set.set(u"Note", std::u16string(noteLength(credit), u'\u20AC'));
    }
    static void add(Recordset& set, std::int32_t id, std::int32_t credit) {
        set.addNew();
        set.set(u"Id", id);
        fill(set, credit);
        set.update();
    }
    static void seek(Recordset& set, std::int32_t id) {
        set.seek(SeekComparison::Equal, Value(id));
        if (set.noMatch())
            throw std::runtime_error("row " + std::to_string(id) + " is missing");
    }
    static void count(Database& database, Recordset& set) {
        Transaction transaction(database);
        seek(set, Counter);
        set.edit();
        fill(set, number(set, u"Credit") + 1);
        set.update();
        transaction.commit();
    }
    // Every row is complete; returns their credits by id.
    static std::map<std::int32_t, std::int32_t> readAll(Database& database) {
        std::map<std::int32_t, std::int32_t> all;
        const Reading reading(database.pager());
        Recordset set = accounts(database);
        for (; !set.eof(); set.moveNext()) {
            const std::int32_t credit = number(set, u"Credit");
            const auto note = std::get<std::u16string>(set.value(u"Note"));
            if (credit != -number(set, u"Debit") || note.size() != noteLength(credit))
                throw std::runtime_error("row " + std::to_string(number(set, u"Id")) + " is torn");
            all[number(set, u"Id")] = credit;
        }
        if (all.size() != set.recordCount())
            throw std::runtime_error("a walk met " + std::to_string(all.size()) + " of " +
                                     std::to_string(set.recordCount()) + " rows");
        return all;
    }
    void expectSound(Database& database) const {
        CheckDatabase(database.pager(), [](const Fault& fault) {
            if (!fault.harmless)
                ADD_FAILURE() << "page " << fault.page << " of '" << ToUtf8(fault.table)
                              << "': " << fault.reason;
        });
    }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("jet-processes-" + std::to_string(::getpid()));
    std::string path_ = folder_ / "ACCOUNTS.MDB";
};

TEST_F(ProcessesTest, EightWorkOnOneFile) {
    constexpr int Processes = 8;
    const int work = rounds(40);
    std::vector<std::unique_ptr<Child>> children;
    for (int process = 1; process <= Processes; ++process)
        children.push_back(std::make_unique<Child>([&, process](const Child::Tell& tell) {
            Random random(static_cast<std::uint32_t>(process));
            OpenOptions options;
            options.logPages = 200;
            options.cachePages = process % 2 == 0 ? 256 : 4096;
            options.lockWait = std::chrono::minutes(2);
            Database database = Database::open(path_, options);
            Recordset set = accounts(database);
            std::vector<std::int32_t> own;
            for (int round = 0; round < work; ++round) {
                count(database, set);
                own.push_back(process * 1000000 + round);
                add(set, own.back(), static_cast<std::int32_t>(random() % 20000));
                if (random() % 3 == 0) {
                    seek(set, own[random() % own.size()]);
                    set.edit();
                    fill(set, static_cast<std::int32_t>(random() % 20000));
                    set.update();
                }
                if (random() % 3 == 0) {
                    const std::size_t which = random() % own.size();
                    seek(set, own[which]);
                    set.remove();
                    own.erase(own.begin() + static_cast<std::ptrdiff_t>(which));
                }
                if (round % 10 == 0)
                    readAll(database);
            }
            for (const std::int32_t id : own)
                tell(id);
            database.close();
        }));
    std::vector<std::int32_t> expected{Counter};
    for (const auto& child : children)
        for (const std::int32_t id : child->end(true))
            expected.push_back(id);
    std::sort(expected.begin(), expected.end());
    EXPECT_FALSE(std::filesystem::exists(WriteAheadLog::PathFor(path_)));
    EXPECT_FALSE(std::filesystem::exists(Sharing::LockFileOf(path_)));

    Database database = Database::open(path_);
    const auto rows = readAll(database);
    EXPECT_EQ(rows.at(Counter), Processes * work);
    std::vector<std::int32_t> found;
    found.reserve(rows.size());
    for (const auto& [id, credit] : rows)
        found.push_back(id);
    EXPECT_EQ(found, expected);
    expectSound(database);
}

TEST_F(ProcessesTest, KilledOnesLoseNothingAndLockNothing) {
    Random random(7);
    std::int32_t counted = 0;
    for (int round = 0; round < rounds(20); ++round) {
        // In every other round another process has the file open and continues.
        std::optional<Database> other;
        if (round % 2 == 0)
            other.emplace(Database::open(path_));
        const Child child([&](const Child::Tell& tell) {
            OpenOptions options;
            options.exclusive = round % 4 == 1;
            options.logPages = 100;
            Database database = Database::open(path_, options);
            Recordset set = accounts(database);
            for (std::int32_t next = counted + 1;; ++next) {
                Transaction transaction(database);
                count(database, set);
                add(set, next * 2, next);
                add(set, next * 2 + 1, next * 31);
                transaction.commit();
                tell(next);
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 40000));
        child.kill();
        const std::vector<std::int32_t> told = child.end(false);
        const std::int32_t last = told.empty() ? counted : told.back();

        if (!other)
            other.emplace(Database::open(path_));
        const auto rows = readAll(*other);
        const std::int32_t now = rows.at(Counter);
        ASSERT_GE(now, last);
        ASSERT_LE(now, last + 1);
        ASSERT_EQ(rows.size(), 1u + 2u * static_cast<unsigned>(now));
        Recordset set = accounts(*other);
        Transaction transaction(*other);
        count(*other, set);
        counted = now + 1;
        add(set, counted * 2, 5);
        add(set, counted * 2 + 1, 6);
        transaction.commit();
        expectSound(*other);
        other->close();
    }
    EXPECT_GT(counted, 20);
    EXPECT_FALSE(std::filesystem::exists(WriteAheadLog::PathFor(path_)));
}

} // namespace
} // namespace jet::tests
