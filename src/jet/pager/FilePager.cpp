#include "jet/pager/FilePager.h"

#include "jet/base/Damage.h"
#include "jet/page/UsageMap.h"
#include "jet/pager/LoggedFile.h"
#include "jet/pager/Savepoints.h"
#include "jet/pager/Sharing.h"
#include "jet/pager/Swap.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {

namespace {

constexpr std::size_t LeastCache = 256;
// Pages edited last, which stay as they are when a large transaction's pages are put into the log: code above
// may still write through their pointers.
constexpr std::size_t RecentEdits = 16;
// How long a commit waits for readers to let it empty a log that has become long; it tries again at the next.
constexpr Sharing::Wait BriefWait{20};
constexpr std::chrono::seconds ForeignUserCheck{1};

std::string whyReadOnly(const OpenOptions& options, bool writable, const PageZero& header) {
    if (options.readOnly)
        return "opened for reading only";
    if (!writable)
        return "the file may not be written";
    if (header.databaseKey != 0)
        return "the file is encrypted";
    if (!header.hasKnownOrder())
        return "the file is in a sort order other than General";
    if (!header.cleanlyClosed)
        return "a program died while it wrote to the file: compact and repair it first";
    return {};
}

} // namespace

struct FilePager::Impl {
    Impl(FilePager& pager, Storage& storageUsed, const std::string& databasePath, const OpenOptions& wanted)
        : storage(storageUsed)
        , path(databasePath)
        , options(wanted)
        , cache(std::max(wanted.cachePages, LeastCache))
        // Only a file that is open for writing can be locked against all others.
        , stored(storageUsed, databasePath, cache, wanted.readOnly && !wanted.exclusive)
        , free(pager, stored.header().freeMap)
        , readOnlyReason(whyReadOnly(wanted, stored.isWritable(), stored.header())) {}

    bool open();
    void settleSwap() const;
    void takeOverLog(Sharing::Others others);

    PageCache::Frame& load(PageNumber page);
    PageCache::Frame& frameOf(PageNumber page);
    PageCache::Frame& editFrame(PageNumber page);
    void makeDirty(PageCache::Frame& frame);
    PageNumber append();
    void spill();

    void checkOpen() const;
    void enter();
    void leave() noexcept;
    void takeNews();
    void forgetDerived();
    void cutTo(PageNumber pages);
    void commitOutermost();
    void rollbackOutermost() noexcept;
    void restore(const Savepoints::Level& level);
    void endOutermost() noexcept;
    bool checkpoint(Sharing::Wait wait);
    void close();
    void leaveFile(bool last);

    Storage& storage;
    std::string path;
    OpenOptions options;
    PageCache cache;
    LoggedFile stored;
    FreeMap free;
    std::string readOnlyReason;
    std::unique_ptr<Sharing> sharing;
    bool closed = false;

    bool ready = false; // pages may be read without asking for others' changes
    int readDepth = 0;
    std::uint64_t version = 1;
    std::chrono::steady_clock::time_point foreignChecked{};

    Savepoints changes;
    PageNumber pagesBefore = 0; // as the transaction began
    std::array<const PageCache::Frame*, RecentEdits> recent{};
    std::size_t edits = 0;
};

// ---- Opening

// False: the file was replaced before this user was in, by one that is to be opened in its place.
bool FilePager::Impl::open() {
    const PageZero& header = stored.header();
    if (!header.password.empty() && header.password != options.password)
        throw Error(ErrorNumber::InvalidPassword, path);
    sharing = std::make_unique<Sharing>(storage, stored.file(), path, stored.isWritable(), options.lockWait);
    const Sharing::Others others = sharing->join(options.exclusive);
    stored.setShared(!sharing->isExclusive());
    try {
        if (!stored.file().isNow(path)) {
            closed = true;
            sharing->finishLeaving(!others.any);
            return false;
        }
        if (!others.any && stored.isWritable())
            settleSwap();
        takeOverLog(others);
        sharing->joined();
    } catch (...) {
        sharing->finishLeaving(!others.any);
        throw;
    }
    ready = sharing->isExclusive();
    return true;
}

void FilePager::Impl::settleSwap() const {
    try {
        Swap::settle(storage, path);
    } catch (const Error&) {
        // What a dead process left beside the file takes room and does no harm.
    }
}

void FilePager::Impl::takeOverLog(Sharing::Others others) {
    stored.countPages();
    // A log that others write to is read under the locks of the first operation.
    if (others.writers || !stored.recoverLog() || !stored.isWritable())
        return;
    try {
        if (others.any)
            stored.publishLog();
        else
            stored.retireLog();
    } catch (const Error&) {
        if (others.any)
            throw;
        // No room, say. The log stays in use, and nothing is lost.
    }
}

// ---- Reading

void FilePager::Impl::checkOpen() const {
    if (closed)
        throw Error(ErrorNumber::InvalidArgument, path + ": closed");
}

// Pages may be others than they were.
void FilePager::Impl::forgetDerived() {
    free.forget();
    ++version;
}

void FilePager::Impl::takeNews() {
    if (sharing->isExclusive())
        return;
    const LoggedFile::News news = stored.takeNews([this](PageNumber page) { cache.drop(page); });
    if (news == LoggedFile::News::Everything)
        cache.dropClean();
    if (news != LoggedFile::News::None)
        forgetDerived();
}

void FilePager::Impl::enter() {
    checkOpen();
    sharing->lockReading();
    try {
        takeNews();
    } catch (...) {
        if (readDepth == 0)
            sharing->unlockReading();
        throw;
    }
    ready = true;
}

void FilePager::Impl::leave() noexcept {
    sharing->unlockReading();
    ready = sharing->isExclusive();
}

PageCache::Frame& FilePager::Impl::load(PageNumber page) {
    if (page >= stored.pages())
        Damaged(page, "lies beyond the end of the file");
    PageCache::Frame& frame = cache.add(page);
    try {
        stored.read(page, frame.bytes);
    } catch (...) {
        cache.drop(page);
        throw;
    }
    return frame;
}

PageCache::Frame& FilePager::Impl::frameOf(PageNumber page) {
    if (PageCache::Frame* frame = cache.find(page); frame != nullptr) {
        cache.touch(*frame);
        return *frame;
    }
    return load(page);
}

const std::uint8_t* FilePager::read(PageNumber page) {
    Impl& d = *impl_;
    if (d.ready)
        return d.frameOf(page).bytes;
    const Reading single(*this);
    return d.frameOf(page).bytes;
}

void FilePager::beginReading() {
    if (impl_->readDepth == 0 && impl_->changes.depth() == 0)
        impl_->enter();
    ++impl_->readDepth;
}

void FilePager::endReading() noexcept {
    if (--impl_->readDepth == 0 && impl_->changes.depth() == 0)
        impl_->leave();
}

// ---- Changing

PageCache::Frame& FilePager::Impl::editFrame(PageNumber page) {
    PageCache::Frame& frame = frameOf(page);
    recent[edits++ % RecentEdits] = &frame;
    ++version;
    if (!frame.dirty) {
        makeDirty(frame);
    }
    if (changes.saving() != 0 && frame.savedIn != changes.saving()) {
        changes.save(page, frame.bytes);
        frame.savedIn = changes.saving();
    }
    return frame;
}

std::uint8_t* FilePager::edit(PageNumber page) {
    if (impl_->changes.depth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "a page is changed outside of a transaction");
    if (page == 0) // it ties the log to the file
        throw Error(ErrorNumber::InvalidArgument, "the header of a database cannot be changed in place");
    return impl_->editFrame(page).bytes;
}

void FilePager::Impl::makeDirty(PageCache::Frame& frame) {
    if (cache.dirty().size() >= cache.limit() / 4 * 3)
        spill();
    cache.makeDirty(frame);
}

PageNumber FilePager::Impl::append() {
    const PageNumber page = stored.append();
    PageCache::Frame& frame = cache.add(page);
    std::memset(frame.bytes, 0, PageSize);
    makeDirty(frame);
    return page;
}

PageNumber FilePager::allocate() {
    if (impl_->changes.depth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "a page is allocated outside of a transaction");
    const PageNumber page = impl_->free.allocate([this] { return impl_->append(); });
    std::memset(edit(page), 0, PageSize);
    return page;
}

void FilePager::release(PageNumber page) {
    impl_->free.release(page);
}

PageNumber FilePager::pageCount() {
    Impl& d = *impl_;
    if (!d.ready) {
        const Reading single(*this);
        return d.stored.pages();
    }
    return d.stored.pages();
}

std::uint64_t FilePager::version() {
    return impl_->version;
}

int FilePager::changeDepth() const {
    return static_cast<int>(impl_->changes.depth());
}

void FilePager::beginChange(bool undoable) {
    Impl& d = *impl_;
    if (d.changes.depth() > 0) {
        d.changes.begin(undoable, d.version, d.stored.pages());
        return;
    }
    d.checkOpen();
    if (!d.readOnlyReason.empty())
        throw Error(ErrorNumber::CannotUpdateReadOnly, d.path + ": " + d.readOnlyReason);
    if (!d.sharing->lockWriting())
        throw Error(ErrorNumber::RecordLocked, d.path + ": another user's transaction is running");
    try {
        d.enter(); // inside a Reading, too: a change begins at the newest state
        const auto now = std::chrono::steady_clock::now();
        if (!d.sharing->isExclusive() && now - d.foreignChecked > ForeignUserCheck) {
            if (d.sharing->hasForeignUsers()) {
                if (d.readDepth == 0)
                    d.leave();
                throw Error(ErrorNumber::FileLocked,
                            d.path + ": open in a program that does not know the write-ahead log");
            }
            d.foreignChecked = now;
        }
    } catch (...) {
        d.sharing->unlockWriting();
        throw;
    }
    d.pagesBefore = d.stored.pages();
    d.changes.begin(undoable, d.version, d.pagesBefore);
}

void FilePager::commitChange() {
    Impl& d = *impl_;
    if (d.changes.depth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    if (d.changes.innermost().broken)
        throw Error(ErrorNumber::InvalidArgument,
                    "a part of the transaction failed: it can only be rolled back");
    if (d.changes.depth() == 1) {
        d.commitOutermost();
        return;
    }
    Savepoints::Level inner = d.changes.end();
    if (inner.undoable)
        d.changes.passOn(inner);
}

void FilePager::rollbackChange() noexcept {
    Impl& d = *impl_;
    if (d.changes.depth() == 0)
        return;
    if (d.changes.depth() == 1) {
        d.rollbackOutermost();
        return;
    }
    Savepoints::Level level = d.changes.end();
    if (level.version != d.version) {
        try {
            if (level.undoable)
                d.restore(level);
            else
                d.changes.innermost().broken = true;
        } catch (const Error&) {
            d.changes.innermost().broken = true;
        }
    }
    if (level.undoable)
        d.changes.passOn(level);
}

void FilePager::Impl::restore(const Savepoints::Level& level) {
    for (const auto& [page, image] : level.before)
        if (page < level.pages)
            std::memcpy(editFrame(page).bytes, image->data(), PageSize);
    cutTo(level.pages);
}

void FilePager::Impl::cutTo(PageNumber pages) {
    for (PageNumber page = stored.pages(); page > pages; --page)
        cache.drop(page - 1);
    stored.cutTo(pages);
    forgetDerived();
}

// Puts the pages of a large transaction into the log, uncommitted.
void FilePager::Impl::spill() {
    cache.clean([this](const PageCache::Frame& frame) {
        if (std::find(recent.begin(), recent.end(), &frame) != recent.end())
            return false;
        stored.spill(frame);
        return true;
    });
}

void FilePager::Impl::commitOutermost() {
    if (const PageNumber spilled = stored.spilledPage(); spilled != 0 && cache.dirty().empty())
        editFrame(spilled);
    if (!cache.dirty().empty()) {
        stored.commit(cache.dirty());
        cache.clean([](const PageCache::Frame&) { return true; });
    }
    changes.clear();
    try {
        if (stored.logLength() >= options.logPages)
            checkpoint(BriefWait);
    } catch (const Error&) {
        // The transaction is in the log; a later commit tries again, and flush() says what is wrong.
    }
    endOutermost();
}

void FilePager::Impl::rollbackOutermost() noexcept {
    cache.dropDirty();
    stored.rollback([this](PageNumber page) { cache.drop(page); });
    cutTo(pagesBefore);
    changes.clear();
    endOutermost();
}

void FilePager::Impl::endOutermost() noexcept {
    recent.fill(nullptr);
    if (readDepth == 0)
        leave();
    sharing->unlockWriting();
}

// ---- Bringing the log into the file

// The caller holds the writing lock, and no change is running. False: others are reading.
bool FilePager::Impl::checkpoint(Sharing::Wait wait) {
    if (stored.logLength() == 0)
        return true;
    if (!sharing->lockPages(wait))
        return false;
    try {
        stored.emptyLog();
    } catch (...) {
        sharing->lockReading();
        throw;
    }
    sharing->lockReading();
    return true;
}

void FilePager::flush() {
    Impl& d = *impl_;
    d.checkOpen();
    if (d.changes.depth() > 0)
        throw Error(ErrorNumber::InvalidArgument, "flush inside a transaction");
    if (!d.readOnlyReason.empty())
        return;
    if (!d.sharing->lockWriting())
        throw Error(ErrorNumber::RecordLocked, d.path + ": another user's transaction is running");
    try {
        d.enter();
        // When readers do not let the file be written, what is in the log survives as well.
        if (!d.checkpoint(BriefWait))
            d.stored.flushLog();
    } catch (...) {
        d.endOutermost();
        throw;
    }
    d.endOutermost();
}

void FilePager::refresh() {
    Impl& d = *impl_;
    d.checkOpen();
    if (d.sharing->isExclusive() || d.changes.depth() > 0)
        return;
    const Reading now(*this);
    if (!d.sharing->hasForeignUsers())
        return;
    d.cache.dropClean();
    d.forgetDerived();
    d.stored.countPages();
}

bool FilePager::isHeldAlone() const {
    return impl_->sharing->isExclusive();
}

void FilePager::emptyLog() {
    impl_->checkOpen();
    if (impl_->sharing->isExclusive() && impl_->changes.depth() == 0)
        impl_->stored.retireLog();
}

void FilePager::close() {
    Impl& d = *impl_;
    if (d.closed)
        return;
    while (d.changes.depth() > 0)
        rollbackChange();
    d.close();
}

void FilePager::Impl::close() {
    std::exception_ptr failure;
    bool last = false;
    try {
        last = sharing->leave();
        leaveFile(last);
    } catch (const Error&) {
        failure = std::current_exception();
    }
    closed = true;
    ready = false;
    try {
        sharing->finishLeaving(last);
    } catch (const Error&) {
        // The locks go with the file, and an old entry in the lock file tells nothing.
    }
    stored.closeFiles();
    if (failure)
        std::rethrow_exception(failure);
}

// Brings what is committed into the file as far as others allow it, and to the disk in any case. Throws only
// what keeps that from being done.
void FilePager::Impl::leaveFile(bool last) {
    if (!stored.isWritable()) {
        try {
            if (last)
                stored.removeEmptyLog();
        } catch (const Error&) {
            // Who may not write need not tidy up.
        }
    } else if (last) {
        enter();
        stored.retireLog();
    } else if (readOnlyReason.empty()) {
        try {
            if (sharing->tryLockWriting()) {
                enter();
                checkpoint(BriefWait);
            }
        } catch (const Error&) {
            // The others go on with the log; that it is on the disk is what counts.
        }
        if (!stored.isFlushed())
            stored.flushLog();
    }
}

// ---- The rest

FilePager::FilePager(Storage& storage, const std::string& path, const OpenOptions& options) {
    do
        impl_ = std::make_unique<Impl>(*this, storage, path, options);
    while (!impl_->open());
}

FilePager::~FilePager() {
    try {
        close();
    } catch (const Error&) {
        // What is committed is in the log and comes back at the next opening.
    }
}

const PageZero& FilePager::header() const {
    return impl_->stored.header();
}

const std::string& FilePager::readOnlyReason() const {
    return impl_->readOnlyReason;
}

} // namespace jet
