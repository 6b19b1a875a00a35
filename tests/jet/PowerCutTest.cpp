// Cuts the power before every single call to the disk of a session, lets the disk keep any part of what was
// not flushed, and opens the file again; and makes every single call fail. TOLVEX_POWER_CUTS=<n> tries n
// random losses at each point instead of a few.
#include "jet/FilePager.h"

#include "jet/FaultyStorage.h"
#include "jet/RawFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace jet::test {
namespace {

constexpr char Path[] = "/data/SONGS.MDB";

std::uint32_t losses() {
    const char* wanted = std::getenv("TOLVEX_POWER_CUTS");
    return wanted == nullptr ? 3 : static_cast<std::uint32_t>(std::max(1, std::atoi(wanted)));
}

// A session of several openings that does all that the storage can do. Each committed state is told to
// `report` with its fingerprint.
class Session {
public:
    explicit Session(FaultyStorage& storage)
        : storage_(storage) {}

    int commits = 0;
    int flushed = 0; // commits that were safe when a flush or close returned
    std::vector<std::uint64_t> states;

    void run() {
        const OpenOptions shared = options(false), exclusive = options(true);
        {
            FilePager pager(storage_, Path, shared);
            note(pager);
            change(pager, 1, 1);
            FilePager other(storage_, Path, shared);
            change(other, 2, 2);
            change(pager, 3, 3);
            flush(pager);
            change(other, 4, 3);
            giveUp(pager);
            change(pager, 5, 1);
            change(other, 5, 1);
            change(pager, 5, 6);
            other.close();
            change(pager, 6, 2); // long enough for the log to be brought into the file
            change(pager, 7, 2);
            closeIt(pager);
        }
        FilePager pager(storage_, Path, exclusive);
        change(pager, 8, 2);
        change(pager, 9, 400); // does not fit into the cache
        change(pager, 10, 2);
        flush(pager);
        shrink(pager);
        change(pager, 11, 3);
        closeIt(pager);
    }

    static OpenOptions options(bool exclusive) {
        OpenOptions options;
        options.exclusive = exclusive;
        options.cachePages = 256;
        options.logPages = 20;
        options.lockWait = std::chrono::milliseconds(0);
        return options;
    }

    // All that the file holds, each page by its content.
    static std::uint64_t fingerprint(FilePager& pager) {
        const Reading reading(pager);
        std::uint64_t sum = 14695981039346656037u;
        FreeMap free(pager, {1, 0});
        for (PageNumber page = 1; page < pager.pageCount(); ++page) {
            if (page > 1 && free.isFree(page))
                continue;
            const std::uint8_t* bytes = pager.read(page);
            for (std::size_t at = 0; at < PageSize; at += 8)
                sum = (sum ^ Load64(bytes + at)) * 1099511628211u;
        }
        return sum;
    }

private:
    void note(FilePager& pager) {
        if (states.size() == static_cast<std::size_t>(commits))
            states.push_back(fingerprint(pager));
    }
    void committed(FilePager& pager) {
        ++commits;
        note(pager);
    }
    // One transaction over pages old and new.
    void change(FilePager& pager, std::uint32_t value, int pages) {
        Changing changing(pager);
        Fill(pager.edit(2), value);
        Fill(pager.edit(3), value);
        for (int i = 0; i < pages; ++i) {
            last_ = pager.allocate();
            Fill(pager.edit(last_), value * 1000 + static_cast<std::uint32_t>(i));
        }
        changing.commit();
        committed(pager);
    }
    void shrink(FilePager& pager) {
        Changing changing(pager);
        for (PageNumber page = last_; page > last_ - 50; --page)
            pager.release(page);
        changing.commit();
        committed(pager);
    }
    void giveUp(FilePager& pager) {
        const Changing changing(pager);
        Fill(pager.edit(2), 999);
        pager.allocate();
    }
    void flush(FilePager& pager) {
        pager.flush();
        flushed = commits;
    }
    void closeIt(FilePager& pager) {
        pager.close();
        flushed = commits;
    }

    FaultyStorage& storage_;
    PageNumber last_ = 0;
};

// The session without faults: how many calls it makes, and the states it goes through.
struct Reference {
    int calls = 0;
    std::vector<std::uint64_t> states;

    Reference() {
        FaultyStorage storage;
        storage.put(Path, RawFile());
        Session session(storage);
        session.run();
        calls = storage.calls();
        states = session.states;
        EXPECT_EQ(storage.names(), std::vector<std::string>{Path});
    }

    // Which committed state a file is in; -1: none.
    int stateOf(FaultyStorage& storage) const {
        FilePager pager(storage, Path, Session::options(false));
        const std::uint64_t found = Session::fingerprint(pager);
        // It can be worked with, too.
        Changing change(pager);
        Fill(pager.edit(pager.allocate()), 1);
        change.commit();
        pager.close();
        const auto at = std::find(states.begin(), states.end(), found);
        return at == states.end() ? -1 : static_cast<int>(at - states.begin());
    }
};

TEST(PowerCut, AtEveryCallOfASession) {
    const Reference reference;
    ASSERT_GT(reference.calls, 50);
    for (int cut = 1; cut <= reference.calls; ++cut) {
        for (std::uint32_t loss = 0; loss < losses() + 2; ++loss) {
            FaultyStorage storage;
            storage.put(Path, RawFile());
            storage.cutAt(cut);
            Session session(storage);
            EXPECT_THROW(session.run(), Error);
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

// The power goes again while the file is recovered.
TEST(PowerCut, AtEveryCallOfARecovery) {
    const Reference reference;
    for (int cut = 10; cut <= reference.calls; cut += 7) {
        FaultyStorage storage;
        storage.put(Path, RawFile());
        storage.cutAt(cut);
        Session session(storage);
        EXPECT_THROW(session.run(), Error);
        int firstState = -1;
        for (int second = 1;; ++second) {
            FaultyStorage once;
            storage.afterPowerCut(FaultyStorage::Loss::Random, static_cast<std::uint32_t>(cut), once);
            once.cutAt(second);
            bool wasCut = false;
            try {
                FilePager(once, Path, Session::options(false)).close();
            } catch (const Error&) {
                wasCut = true;
            }
            FaultyStorage twice;
            once.afterPowerCut(FaultyStorage::Loss::Random, static_cast<std::uint32_t>(second), twice);
            const int state = reference.stateOf(twice);
            ASSERT_GE(state, session.flushed) << "cuts " << cut << ", " << second;
            // What was recovered once is on the disk, or is recovered again.
            firstState = second == 1 ? state : firstState;
            ASSERT_EQ(state, firstState) << "cuts " << cut << ", " << second;
            if (!wasCut)
                break;
        }
    }
}

// Every call fails once, or from then on: what was committed stays, the rest is not there at all.
TEST(PowerCut, EveryCallFails) {
    const Reference reference;
    for (const bool lasting : {false, true}) {
        for (int call = 1; call <= reference.calls; ++call) {
            FaultyStorage storage;
            storage.put(Path, RawFile());
            storage.failAt(call, ErrorNumber::DiskFull, lasting);
            Session session(storage);
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
} // namespace jet::test
