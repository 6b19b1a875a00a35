#include "jet/pager/FilePager.h"

#include "jet/base/Damage.h"
#include "jet/page/UsageMap.h"
#include "jet/pager/FileUser.h"
#include "jet/pager/Savepoints.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {

namespace {

constexpr std::size_t LeastCache = 256;
// Pages edited last, which stay in the cache when the pages of a large transaction go to the log: code above
// may still write through their pointers.
constexpr std::size_t RecentEdits = 16;
// How long a commit waits for readers before emptying a long log; the next one tries again.
constexpr Sharing::Wait BriefWait{20};

} // namespace

struct FilePager::Impl {
    Impl(FilePager& pager, Storage& storage, const std::string& path, const OpenOptions& options)
        : logPages(options.logPages)
        , cache(std::max(options.cachePages, LeastCache))
        , user(storage, path, options, cache)
        , free(pager, user.file().header().freeMap) {}

    PageCache::Frame& load(PageNumber page);
    PageCache::Frame& frameOf(PageNumber page);
    PageCache::Frame& editFrame(PageNumber page);
    void makeDirty(PageCache::Frame& frame);
    PageNumber append();
    void spill();

    void beginOperation();
    void endOperation() noexcept;
    void takeNews();
    void forgetDerived();
    void cutTo(PageNumber pages);
    void commitOutermost();
    void rollbackOutermost() noexcept;
    void restore(const Savepoints::Level& level);
    void endOutermost() noexcept;

    std::size_t logPages;
    PageCache cache;
    FileUser user;
    LoggedFile& stored = user.file();
    FreeMap free;

    bool ready = false; // pages may be read without checking for others' changes
    int readDepth = 0;
    std::uint64_t version = 1;

    Savepoints changes;
    PageNumber pagesBefore = 0; // at the start of the transaction
    std::array<const PageCache::Frame*, RecentEdits> recent{};
    std::size_t edits = 0;
};

// ---- Reading

// Pages may have changed.
void FilePager::Impl::forgetDerived() {
    free.forget();
    ++version;
}

void FilePager::Impl::takeNews() {
    if (user.isAlone())
        return;
    const LoggedFile::News news = stored.takeNews([this](PageNumber page) { cache.drop(page); });
    if (news == LoggedFile::News::Everything)
        cache.dropClean();
    if (news != LoggedFile::News::None)
        forgetDerived();
}

void FilePager::Impl::beginOperation() {
    user.checkHere();
    user.sharing().lockReading();
    try {
        takeNews();
    } catch (...) {
        if (readDepth == 0)
            user.sharing().unlockReading();
        throw;
    }
    ready = true;
}

void FilePager::Impl::endOperation() noexcept {
    user.sharing().unlockReading();
    ready = user.isAlone();
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
        impl_->beginOperation();
    ++impl_->readDepth;
}

void FilePager::endReading() noexcept {
    if (--impl_->readDepth == 0 && impl_->changes.depth() == 0)
        impl_->endOperation();
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
    d.user.checkHere();
    d.user.checkWritable();
    d.user.lockWriting();
    try {
        d.beginOperation(); // also inside a Reading: a change begins at the newest state
        try {
            d.user.refuseForeignUsers();
        } catch (...) {
            if (d.readDepth == 0)
                d.endOperation();
            throw;
        }
    } catch (...) {
        d.user.sharing().unlockWriting();
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

// Writes the pages of a large transaction to the log, uncommitted.
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
        if (stored.logLength() >= logPages)
            user.checkpoint(BriefWait);
    } catch (const Error&) {
        // The transaction is in the log; a later commit tries again, and flush() reports the error.
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
        endOperation();
    user.sharing().unlockWriting();
}

// ---- The file as a whole

void FilePager::flush() {
    Impl& d = *impl_;
    d.user.checkHere();
    if (d.changes.depth() > 0)
        throw Error(ErrorNumber::InvalidArgument, "flush inside a transaction");
    if (!d.user.readOnlyReason().empty())
        return;
    d.user.lockWriting();
    try {
        d.beginOperation();
        // If readers prevent writing to the file, the log is durable as well.
        if (!d.user.checkpoint(BriefWait))
            d.stored.flushLog();
    } catch (...) {
        d.endOutermost();
        throw;
    }
    d.endOutermost();
}

void FilePager::refresh() {
    Impl& d = *impl_;
    d.user.checkHere();
    if (d.user.isAlone() || d.changes.depth() > 0)
        return;
    const Reading now(*this);
    if (!d.user.sharing().hasForeignUsers())
        return;
    d.cache.dropClean();
    d.forgetDerived();
    d.stored.countPages();
}

bool FilePager::isHeldAlone() const {
    return impl_->user.isAlone();
}

void FilePager::emptyLog() {
    impl_->user.checkHere();
    if (impl_->user.isAlone() && impl_->changes.depth() == 0)
        impl_->stored.retireLog();
}

FilePager::FilePager(Storage& storage, const std::string& path, const OpenOptions& options) {
    do
        impl_ = std::make_unique<Impl>(*this, storage, path, options);
    while (!impl_->user.enter());
    impl_->ready = impl_->user.isAlone();
}

void FilePager::close() {
    Impl& d = *impl_;
    if (d.user.hasLeft())
        return;
    while (d.changes.depth() > 0)
        rollbackChange();
    try {
        d.user.leave([&d] { d.beginOperation(); });
    } catch (...) {
        d.ready = false;
        throw;
    }
    d.ready = false;
}

FilePager::~FilePager() {
    try {
        close();
    } catch (const Error&) {
        // Committed data is in the log and is recovered at the next opening.
    }
}

const PageZero& FilePager::header() const {
    return impl_->stored.header();
}

const std::string& FilePager::readOnlyReason() const {
    return impl_->user.readOnlyReason();
}

} // namespace jet
