// Transactions, cache, sharing and refusals of the pager, on files in memory.
#include "jet/pager/FilePager.h"

#include "jet/FaultyStorage.h"
#include "jet/NewDatabase.h"
#include "jet/RawFile.h"
#include "jet/pager/Sharing.h"
#include "jet/pager/WriteAheadLog.h"

#include <gtest/gtest.h>

namespace jet::tests {
namespace {

constexpr char Path[] = "/data/SONGS.MDB";

class FilePagerTest : public testing::Test {
protected:
    FilePagerTest() { storage_.put(Path, RawFile()); }

    static OpenOptions exclusive() {
        OpenOptions options;
        options.exclusive = true;
        return options;
    }
    static OpenOptions impatient() {
        OpenOptions options;
        options.lockWait = std::chrono::milliseconds(0);
        return options;
    }
    static void fill(FilePager& pager, PageNumber page, std::uint32_t value) {
        Changing change(pager);
        Fill(pager.edit(page), value);
        change.commit();
    }
    std::uint32_t onDisk(PageNumber page) const {
        return Load32(storage_.get(Path).data() + page * PageSize);
    }

    FaultyStorage storage_;
};

// The counters of users who have written a lot are above 01FF; only one below 0100 indicates an unfinished
// write.
TEST_F(FilePagerTest, CommitCountersTellWhetherAWriterDied) {
    constexpr std::size_t counters = 0xE00;
    const auto reasonWith = [&](std::size_t user, std::uint32_t count) {
        Bytes file = RawFile();
        Store16(file.data() + counters + 2 * user, count);
        storage_.put(Path, file);
        return FilePager(storage_, Path, {}).readOnlyReason();
    };
    for (const std::uint32_t count : {0x0100u, 0x01FFu, 0x0200u, 0x024Bu, 0x3401u, 0xFFFFu})
        EXPECT_EQ(reasonWith(255, count), "") << count;
    for (const std::uint32_t count : {0u, 1u, 0x00FFu})
        EXPECT_NE(reasonWith(0, count).find("died"), std::string::npos) << count;
}

TEST_F(FilePagerTest, CommitsStayInTheLogUntilTheLastUserCloses) {
    FilePager first(storage_, Path, {});
    FilePager second(storage_, Path, {});
    fill(first, 2, 7);
    EXPECT_EQ(onDisk(2), 0u);
    EXPECT_EQ(FilledWith(second.read(2)), 7);
    const std::vector<std::string> shared{"/data/SONGS.LDB", Path, WriteAheadLog::PathFor(Path)};
    EXPECT_EQ(storage_.names(), shared);
    first.close();
    EXPECT_EQ(FilledWith(second.read(2)), 7);
    fill(second, 3, 8);
    second.close();
    EXPECT_EQ(onDisk(2), 7u);
    EXPECT_EQ(onDisk(3), 8u);
    EXPECT_EQ(storage_.names(), std::vector<std::string>{Path});
}

TEST_F(FilePagerTest, RollbackUndoesPagesAllocationsAndWhatWasSpilled) {
    OpenOptions small = exclusive();
    small.cachePages = 256;
    FilePager pager(storage_, Path, small);
    fill(pager, 2, 1);
    const auto change = [&](bool commit) {
        Changing changing(pager);
        Fill(pager.edit(2), 99);
        for (std::uint32_t i = 0; i < 1000; ++i) {
            const PageNumber page = pager.allocate();
            EXPECT_EQ(page, 4 + i);
            Fill(pager.edit(page), i);
        }
        EXPECT_EQ(FilledWith(pager.read(2)), 99);
        if (commit)
            changing.commit();
    };
    change(false);
    EXPECT_EQ(FilledWith(pager.read(2)), 1);
    EXPECT_EQ(pager.pageCount(), 4u);
    EXPECT_EQ(CodeOf([&] { pager.read(4); }), ErrorNumber::ReadVerification);
    change(true);
    pager.close();
    EXPECT_EQ(storage_.get(Path).size(), 1004u * PageSize);
    FilePager again(storage_, Path, small);
    for (std::uint32_t i = 0; i < 1000; ++i)
        ASSERT_EQ(FilledWith(again.read(4 + i)), i);
}

TEST_F(FilePagerTest, AnUndoneInnerChangeLeavesTheOuterOneAsItWas) {
    FilePager pager(storage_, Path, exclusive());
    Changing outer(pager);
    Fill(pager.edit(2), 1);
    PageNumber inOuter = 0;
    {
        Changing middle(pager, Changing::Undoable);
        Fill(pager.edit(2), 2);
        inOuter = pager.allocate();
        Fill(pager.edit(inOuter), 3);
        {
            Changing inner(pager, Changing::Undoable);
            Fill(pager.edit(2), 4);
            Fill(pager.edit(3), 5);
            pager.release(inOuter);
            pager.allocate();
            pager.allocate();
        }
        EXPECT_EQ(FilledWith(pager.read(2)), 2);
        EXPECT_EQ(FilledWith(pager.read(3)), 0);
        EXPECT_EQ(FilledWith(pager.read(inOuter)), 3);
        { const Changing untouched(pager, Changing::Undoable); }
        {
            Changing inner(pager, Changing::Undoable);
            Fill(pager.edit(3), 6);
            inner.commit();
        }
        { const Changing untouched(pager, Changing::Undoable); }
        Fill(pager.edit(3), 7);
    }
    EXPECT_EQ(FilledWith(pager.read(2)), 1);
    EXPECT_EQ(FilledWith(pager.read(3)), 0);
    EXPECT_EQ(pager.pageCount(), inOuter);
    outer.commit();
    EXPECT_EQ(FilledWith(pager.read(2)), 1);
}

TEST_F(FilePagerTest, APlainInnerChangeGivenUpSpoilsTheTransaction) {
    FilePager pager(storage_, Path, exclusive());
    {
        Changing outer(pager);
        { const Changing untouched(pager); }
        {
            const Changing inner(pager);
            Fill(pager.edit(2), 1);
        }
        EXPECT_EQ(CodeOf([&] { outer.commit(); }), ErrorNumber::InvalidArgument);
    }
    EXPECT_EQ(FilledWith(pager.read(2)), 0);
    fill(pager, 2, 2);
    EXPECT_EQ(FilledWith(pager.read(2)), 2);
}

TEST_F(FilePagerTest, AnOperationSeesOneStateWhileOthersCommit) {
    FilePager reader(storage_, Path, {});
    OpenOptions eager = impatient();
    eager.logPages = 1; // tries to write the file at every commit
    FilePager writer(storage_, Path, eager);
    fill(writer, 2, 1);
    fill(writer, 3, 1);
    {
        const Reading reading(reader);
        EXPECT_EQ(FilledWith(reader.read(2)), 1);
        fill(writer, 2, 2);
        fill(writer, 3, 2);
        EXPECT_EQ(FilledWith(reader.read(3)), 1);
    }
    const std::uint64_t before = reader.version();
    EXPECT_EQ(FilledWith(reader.read(2)), 2);
    EXPECT_EQ(FilledWith(reader.read(3)), 2);
    EXPECT_NE(reader.version(), before);
    writer.flush();
    EXPECT_EQ(onDisk(3), 2u);
    fill(reader, 3, 3);
    EXPECT_EQ(FilledWith(writer.read(3)), 3);
}

TEST_F(FilePagerTest, OneTransactionAtATime) {
    FilePager first(storage_, Path, impatient());
    FilePager second(storage_, Path, impatient());
    {
        const Changing running(first);
        EXPECT_EQ(CodeOf([&] { fill(second, 2, 1); }), ErrorNumber::RecordLocked);
        EXPECT_EQ(FilledWith(second.read(2)), 0); // reading continues
    }
    fill(second, 2, 1);
    EXPECT_EQ(FilledWith(first.read(2)), 1);
}

TEST_F(FilePagerTest, ExclusiveUseExcludesAndIsExcluded) {
    {
        const FilePager one(storage_, Path, exclusive());
        EXPECT_EQ(CodeOf([&] { FilePager(storage_, Path, impatient()); }), ErrorNumber::FileLocked);
    }
    const FilePager shared(storage_, Path, {});
    OpenOptions options = exclusive();
    options.lockWait = std::chrono::milliseconds(0);
    EXPECT_EQ(CodeOf([&] { FilePager(storage_, Path, options); }), ErrorNumber::CannotStart);
}

TEST_F(FilePagerTest, AProgramThatDoesNotKnowTheLogIsNotWrittenUnder) {
    storage_.put("/data/SONGS.LDB", {});
    const auto lockFile = storage_.open("/data/SONGS.LDB", Storage::Open::ReadWrite);
    ASSERT_TRUE(lockFile->lock(0x10000001, 1, true, false));
    FilePager pager(storage_, Path, {});
    EXPECT_EQ(FilledWith(pager.read(2)), 0);
    EXPECT_EQ(CodeOf([&] { fill(pager, 2, 1); }), ErrorNumber::FileLocked);
    EXPECT_EQ(CodeOf([&] { FilePager(storage_, Path, exclusive()); }), ErrorNumber::CannotStart);
    // A refresh shows what it writes.
    const auto file = storage_.open(Path, Storage::Open::ReadWrite);
    Bytes page(PageSize);
    Fill(page.data(), 5);
    file->write(2 * PageSize, page.data(), page.size());
    pager.refresh();
    EXPECT_EQ(FilledWith(pager.read(2)), 5);
    lockFile->unlock(0x10000001, 1);
    fill(pager, 2, 1);
}

TEST_F(FilePagerTest, TheLockFileNamesItsUsers) {
    const FilePager first(storage_, Path, {});
    const FilePager second(storage_, Path, {});
    const Bytes entries = storage_.get("/data/SONGS.LDB");
    ASSERT_EQ(entries.size(), 128u);
    EXPECT_STREQ(reinterpret_cast<const char*>(entries.data() + 64), MachineName().substr(0, 31).c_str());
    EXPECT_STREQ(reinterpret_cast<const char*>(entries.data() + 96), "Admin");
    EXPECT_EQ(Sharing::LockFileOf("/a.b/songs.mdb"), "/a.b/songs.ldb");
    EXPECT_EQ(Sharing::LockFileOf("/a.b/songs"), "/a.b/songs.ldb");
}

struct Refusal {
    const char* name;
    std::function<void(PageZero&, OpenOptions&, FaultyStorage&)> make;
};

class ReadOnlyTest : public FilePagerTest, public testing::WithParamInterface<Refusal> {};

TEST_P(ReadOnlyTest, ReadsAndSaysWhyItCannotWrite) {
    PageZero header;
    OpenOptions options;
    GetParam().make(header, options, storage_);
    Bytes image = RawFile(2, header);
    Fill(image.data() + 2 * PageSize, 77);
    if (header.databaseKey != 0)
        CryptPage(header.databaseKey, 2, {image.data() + 2 * PageSize, PageSize});
    storage_.put(Path, image);
    FilePager pager(storage_, Path, options);
    EXPECT_EQ(FilledWith(pager.read(2)), 77);
    EXPECT_FALSE(pager.readOnlyReason().empty());
    EXPECT_EQ(CodeOf([&] { fill(pager, 2, 1); }), ErrorNumber::CannotUpdateReadOnly);
    pager.close();
    EXPECT_EQ(storage_.get(Path), image);
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, ReadOnlyTest,
    testing::Values(Refusal{"Asked", [](auto&, OpenOptions& options, auto&) { options.readOnly = true; }},
                    Refusal{"Protected", [](auto&, auto&, FaultyStorage& files) { files.setReadOnly(true); }},
                    Refusal{"Encrypted", [](PageZero& header, auto&, auto&) { header.databaseKey = 0x1234; }},
                    Refusal{"OtherOrder", [](PageZero& header, auto&, auto&) { header.language = 0x041F; }},
                    Refusal{"LaterOrder", [](PageZero& header, auto&, auto&) { header.sortVersion = 1; }}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(FilePagerTest, RefusesWhatIsNoDatabaseAndAWrongPassword) {
    PageZero header;
    header.password = u"S\u00FCd";
    header.created.days = 42329.94;
    const Bytes locked = RawFile(2, header);
    storage_.put(Path, locked);
    EXPECT_EQ(CodeOf([&] { FilePager(storage_, Path, {}); }), ErrorNumber::InvalidPassword);
    OpenOptions options;
    options.password = header.password;
    EXPECT_EQ(FilePager(storage_, Path, options).header().password, header.password);
    Bytes later = RawFile();
    later[0x14] = 2;
    for (const Bytes& bytes :
         {Bytes{}, Bytes(100), Bytes(8192), later, Bytes(locked.begin(), locked.begin() + 3000)}) {
        storage_.put(Path, bytes);
        EXPECT_EQ(CodeOf([&] { FilePager(storage_, Path, {}); }), ErrorNumber::Unrecognised);
    }
    EXPECT_EQ(CodeOf([&] { FilePager(storage_, "/data/NONE.MDB", {}); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(storage_.names(), std::vector<std::string>{Path});
}

TEST_F(FilePagerTest, ALogOfAnotherFileIsKeptAside) {
    FaultyStorage after;
    {
        FilePager pager(storage_, Path, {});
        fill(pager, 2, 1);
        storage_.afterPowerCut(FaultyStorage::Loss::Nothing, 0, after);
    }
    Bytes restored = RawFile();
    restored[0xE02] = 9; // another program has written since
    const Bytes log = after.get(WriteAheadLog::PathFor(Path));
    for (const char* aside : {"-unused", "-unused2"}) { // and earlier ones stay
        after.put(Path, restored);
        after.put(WriteAheadLog::PathFor(Path), log);
        FilePager pager(after, Path, {});
        EXPECT_EQ(FilledWith(pager.read(2)), 0);
        Changing change(pager);
        Fill(pager.edit(3), 1);
        change.commit();
        EXPECT_TRUE(after.exists(WriteAheadLog::PathFor(Path) + aside));
    }
    EXPECT_EQ(after.get(WriteAheadLog::PathFor(Path) + "-unused"), log);
}

// The first commit makes a log, and a large transaction makes one long before that.
TEST_F(FilePagerTest, PagesOfARunningTransactionAreNotThereForOthers) {
    OpenOptions small;
    small.cachePages = 256;
    FilePager writer(storage_, Path, small);
    FilePager reader(storage_, Path, {});
    Changing change(writer);
    for (int i = 0; i < 400; ++i)
        Fill(writer.edit(writer.allocate()), 1);
    EXPECT_TRUE(storage_.exists(WriteAheadLog::PathFor(Path)));
    EXPECT_EQ(reader.pageCount(), 4u);
    change.commit();
    EXPECT_EQ(reader.pageCount(), 404u);
    EXPECT_EQ(FilledWith(reader.read(403)), 1);
}

// Another user's transaction prevents writing the log to the file: committed data is durable anyway when
// close() returns, and if that fails, close() reports it.
TEST_F(FilePagerTest, ALeavingUserFlushesItsCommits) {
    for (const bool works : {true, false}) {
        FaultyStorage storage, after;
        storage.put(Path, RawFile());
        FilePager other(storage, Path, impatient());
        FilePager first(storage, Path, impatient());
        fill(first, 2, 7);
        const Changing running(other);
        if (!works)
            storage.failAt(storage.calls() + 1, ErrorNumber::DiskIo, true);
        EXPECT_EQ(CodeOf([&] { first.close(); }), works ? ErrorNumber{} : ErrorNumber::DiskIo);
        EXPECT_EQ(CodeOf([&] { first.close(); }), ErrorNumber{}) << "closed once and for all";
        storage.failAt(0, ErrorNumber::DiskIo, false);
        storage.afterPowerCut(FaultyStorage::Loss::Everything, 0, after);
        FilePager again(after, Path, {});
        EXPECT_EQ(FilledWith(again.read(2)), works ? 7 : 0);
    }
}

// A failed flush must not be reported as successful the second time, even if the system does.
TEST_F(FilePagerTest, AFailedFlushStaysFailed) {
    FilePager pager(storage_, Path, {});
    fill(pager, 2, 7);
    storage_.failAt(storage_.calls() + 1, ErrorNumber::DiskIo, false);
    EXPECT_EQ(CodeOf([&] { pager.flush(); }), ErrorNumber::DiskIo);
    EXPECT_EQ(CodeOf([&] { pager.flush(); }), ErrorNumber::DiskIo);
    EXPECT_EQ(FilledWith(pager.read(2)), 7);
    EXPECT_EQ(CodeOf([&] { pager.close(); }), ErrorNumber::DiskIo);
    FilePager again(storage_, Path, {});
    EXPECT_EQ(FilledWith(again.read(2)), 7);
}

TEST_F(FilePagerTest, AClosedOneSaysSo) {
    FilePager pager(storage_, Path, exclusive());
    {
        Changing change(pager);
        Fill(pager.edit(2), 1);
        pager.close();
        EXPECT_THROW(change.commit(), Error);
    }
    EXPECT_EQ(onDisk(2), 0u);
    for (const std::function<void()>& call : std::initializer_list<std::function<void()>>{
             [&] { pager.read(2); }, [&] { pager.pageCount(); }, [&] { fill(pager, 2, 1); },
             [&] { pager.flush(); }, [&] { pager.refresh(); }})
        EXPECT_EQ(CodeOf(call), ErrorNumber::InvalidArgument);
}

TEST_F(FilePagerTest, TheCacheStaysWithinItsLimit) {
    storage_.put(Path, RawFile(3000));
    OpenOptions small = exclusive();
    small.cachePages = 256;
    FilePager pager(storage_, Path, small);
    // A page that is read again and again stays while a hundred others are evicted.
    for (PageNumber page = 2; page < 3000; ++page) {
        const std::uint8_t* kept = pager.read(2);
        for (PageNumber other = page; other < page + 100 && other < 3000; ++other)
            pager.read(other);
        ASSERT_EQ(pager.read(2), kept);
    }
}

} // namespace
} // namespace jet::tests
