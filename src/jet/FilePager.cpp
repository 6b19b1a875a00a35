#include "jet/FilePager.h"

#include "jet/Damage.h"
#include "jet/PageCache.h"
#include "jet/RedoLog.h"
#include "jet/Sharing.h"
#include "jet/UsageMap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>

namespace jet {

namespace {

constexpr std::size_t LeastCache = 256;
constexpr PageNumber MaximumPages = 0x80000000 / PageSize; // files end at 2 GB
constexpr PageNumber PagesPerWrite = 64;
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
    using Image = std::array<std::uint8_t, PageSize>;
    // A change that has begun; the first one is the transaction.
    struct Level {
        bool undoable = false;
        bool broken = false; // holds parts of an inner change that was given up
        std::uint64_t serial = 0;
        std::uint64_t version = 0; // when it began
        PageNumber pages = 0;
        std::unordered_map<PageNumber, std::unique_ptr<Image>> before;
    };

    Impl(FilePager& pager, Storage& storageUsed, const std::string& databasePath, const OpenOptions& wanted)
        : owner(pager)
        , storage(storageUsed)
        , path(databasePath)
        , options(wanted)
        , cache(std::max(wanted.cachePages, LeastCache))
        , free(pager, {1, 0}) {}

    void open();
    void readHeader();
    PageNumber pagesInFile();
    void takeOverLog(Sharing::Others others);
    void retireLog();

    PageCache::Frame& load(PageNumber page);
    PageCache::Frame& frameOf(PageNumber page);
    PageCache::Frame& editFrame(PageNumber page);
    void saveBefore(PageCache::Frame& frame);
    PageNumber append();
    void spill();

    void checkOpen() const;
    void enter();
    void leave() noexcept;
    void takeNews();
    void takeFrames(std::uint32_t from, bool forget);
    void setLogFrame(PageNumber page, std::uint32_t frame);
    void ensureLog();
    void commitOutermost();
    void rollbackOutermost() noexcept;
    void restore(const Level& level);
    void passOn(Level& inner);
    void endOutermost() noexcept;
    bool checkpoint(Sharing::Wait wait);
    void writePages();
    void close();

    FilePager& owner;
    Storage& storage;
    std::string path;
    OpenOptions options;
    std::unique_ptr<StorageFile> file;
    std::unique_ptr<Sharing> sharing;
    std::unique_ptr<RedoLog> log; // null: there is none yet
    bool fileWritable = false;
    bool closed = false;
    PageZero header;
    std::string readOnlyReason;
    std::uint64_t identity = 0;

    PageCache cache;
    FreeMap free;
    bool ready = false; // pages may be read without asking for others' changes
    int readDepth = 0;
    std::uint64_t version = 1;
    PageNumber pages = 0;                // of the file as the running operation sees it
    std::vector<std::uint32_t> logFrame; // per page: 1 + its newest frame in the log, 0: it is in the file
    std::vector<PageNumber> logged;      // pages whose entry is not 0
    std::chrono::steady_clock::time_point foreignChecked{};

    std::vector<Level> levels;
    std::uint64_t serial = 0;   // of the last level made
    std::uint64_t saving = 0;   // of the innermost undoable level inside the transaction; 0: none
    PageNumber pagesBefore = 0; // as the transaction began
    // Pages of the transaction that are in the log already, with their entry of logFrame before.
    std::vector<std::pair<PageNumber, std::uint32_t>> spilled;
    std::array<const PageCache::Frame*, RecentEdits> recent{};
    std::size_t edits = 0;
};

// ---- Opening

void FilePager::Impl::open() {
    try {
        file = storage.open(path, Storage::Open::ReadWrite);
        fileWritable = true;
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::CannotOpenFile)
            throw;
        file = storage.open(path, Storage::Open::ReadOnly);
    }
    readHeader();
    sharing = std::make_unique<Sharing>(storage, *file, path, fileWritable, options.lockWait);
    const Sharing::Others others = sharing->join(options.exclusive);
    try {
        pages = pagesInFile();
        log = RedoLog::open(storage, RedoLog::PathFor(path), !fileWritable, identity);
        if (log != nullptr)
            takeOverLog(others);
        sharing->joined();
    } catch (...) {
        sharing->finishLeaving(!others.any);
        throw;
    }
    ready = sharing->isExclusive();
}

PageNumber FilePager::Impl::pagesInFile() {
    return static_cast<PageNumber>(std::min<std::uint64_t>(file->size() / PageSize, MaximumPages));
}

void FilePager::Impl::readHeader() {
    Image page{};
    const std::size_t length = file->read(0, page.data(), page.size());
    header = DecodePageZero({page.data(), length});
    if (header.version != PageZero::Jet4)
        throw Error(ErrorNumber::Unrecognised, path + ": of an older version");
    if (!header.password.empty() && header.password != options.password)
        throw Error(ErrorNumber::InvalidPassword, path);
    identity = RedoLog::IdentityOf(page.data());
    readOnlyReason = whyReadOnly(options, fileWritable, header);
    free = FreeMap(owner, header.freeMap);
}

void FilePager::Impl::takeOverLog(Sharing::Others others) {
    log->setShared(!sharing->isExclusive());
    // Without a living writer the session that left this log died, perhaps with the power: only what the
    // frames' checksums prove is true.
    if (!others.writers)
        log->recover();
    takeFrames(0, true);
    if (others.writers || !fileWritable)
        return;
    try {
        if (others.any)
            log->publish(pages);
        else
            retireLog();
    } catch (const Error&) {
        if (others.any)
            throw;
        // No room, say. The log stays in use, and nothing is lost.
    }
}

// Nobody else is here: brings the log into the file and removes it.
void FilePager::Impl::retireLog() {
    if (log->state().frames != 0)
        writePages();
    try {
        storage.remove(RedoLog::PathFor(path));
    } catch (const Error&) {
        log->reset(pages); // a full one that is found again could spoil what other programs write meanwhile
    }
    log.reset();
}

// ---- What other users, or an earlier session, have put into the log

void FilePager::Impl::setLogFrame(PageNumber page, std::uint32_t frame) {
    if (page == 0 || page >= MaximumPages)
        throw Error(ErrorNumber::Corrupt, path + ": the redo log names page " + std::to_string(page));
    if (page >= logFrame.size())
        logFrame.resize(page + page / 8 + 64);
    if (logFrame[page] == 0)
        logged.push_back(page);
    logFrame[page] = frame + 1;
}

void FilePager::Impl::takeFrames(std::uint32_t from, bool forget) {
    if (forget)
        cache.dropClean();
    if (from == 0) {
        for (const PageNumber page : logged)
            logFrame[page] = 0;
        logged.clear();
    }
    log->pagesOf(from, log->state().frames, [this](std::uint32_t frame, PageNumber page) {
        cache.drop(page);
        setLogFrame(page, frame);
    });
    const PageNumber before = std::max(pages, pagesInFile());
    pages = log->state().pages != 0 ? std::min(log->state().pages, MaximumPages) : pages;
    for (PageNumber page = before; page < pages; ++page)
        if (page >= logFrame.size() || logFrame[page] == 0)
            throw Error(ErrorNumber::Corrupt, path + ": the redo log lacks page " + std::to_string(page));
    free.forget();
    ++version;
}

void FilePager::Impl::takeNews() {
    if (sharing->isExclusive())
        return;
    if (log == nullptr) {
        log = RedoLog::open(storage, RedoLog::PathFor(path), !fileWritable, identity);
        if (log == nullptr)
            return;
        log->setShared(true);
        log->refresh();
        takeFrames(0, true);
        return;
    }
    const RedoLog::State known = log->state();
    if (!log->refresh())
        return;
    const RedoLog::State& now = log->state();
    const bool emptied = now.generation != known.generation;
    const bool sawAll = now.generation == known.generation + 1 && now.previousFrames == known.frames;
    takeFrames(emptied ? 0 : known.frames, emptied && !sawAll);
}

// ---- Reading

void FilePager::Impl::checkOpen() const {
    if (closed)
        throw Error(ErrorNumber::InvalidArgument, path + ": closed");
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
    if (page >= pages)
        Damaged(page, "lies beyond the end of the file");
    PageCache::Frame& frame = cache.add(page);
    try {
        if (page < logFrame.size() && logFrame[page] != 0) {
            log->read(logFrame[page] - 1, frame.bytes);
        } else {
            if (file->read(static_cast<std::uint64_t>(page) * PageSize, frame.bytes, PageSize) != PageSize)
                Damaged(page, "is cut off");
            if (header.databaseKey != 0 && page != 0)
                CryptPage(header.databaseKey, page, frame.bytes);
        }
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
    if (impl_->readDepth == 0 && impl_->levels.empty())
        impl_->enter();
    ++impl_->readDepth;
}

void FilePager::endReading() noexcept {
    if (--impl_->readDepth == 0 && impl_->levels.empty())
        impl_->leave();
}

// ---- Changing

void FilePager::Impl::saveBefore(PageCache::Frame& frame) {
    const auto level = std::find_if(levels.rbegin(), levels.rend(),
                                    [this](const Level& one) { return one.serial == saving; });
    auto& image = level->before[frame.page];
    if (image == nullptr) {
        image = std::make_unique<Image>();
        std::memcpy(image->data(), frame.bytes, PageSize);
    }
    frame.savedIn = saving;
}

PageCache::Frame& FilePager::Impl::editFrame(PageNumber page) {
    PageCache::Frame& frame = frameOf(page);
    recent[edits++ % RecentEdits] = &frame;
    ++version;
    if (!frame.dirty) {
        if (cache.dirty().size() >= cache.limit() / 4 * 3)
            spill();
        cache.makeDirty(frame);
    }
    if (saving != 0 && frame.savedIn != saving)
        saveBefore(frame);
    return frame;
}

std::uint8_t* FilePager::edit(PageNumber page) {
    if (impl_->levels.empty())
        throw Error(ErrorNumber::InvalidArgument, "a page is changed outside of a transaction");
    if (page == 0) // it ties the log to the file
        throw Error(ErrorNumber::InvalidArgument, "the header of a database cannot be changed in place");
    return impl_->editFrame(page).bytes;
}

PageNumber FilePager::Impl::append() {
    if (pages >= MaximumPages)
        throw Error(ErrorNumber::FileTooLarge, path);
    PageCache::Frame& frame = cache.add(pages);
    std::memset(frame.bytes, 0, PageSize);
    cache.makeDirty(frame);
    return pages++;
}

PageNumber FilePager::allocate() {
    if (impl_->levels.empty())
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
        return d.pages;
    }
    return d.pages;
}

std::uint64_t FilePager::version() {
    return impl_->version;
}

int FilePager::changeDepth() const {
    return static_cast<int>(impl_->levels.size());
}

void FilePager::beginChange(bool undoable) {
    Impl& d = *impl_;
    if (!d.levels.empty()) {
        d.levels.push_back({undoable, false, ++d.serial, d.version, d.pages, {}});
        if (undoable)
            d.saving = d.serial;
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
                            d.path + ": open in a program that does not know the redo log");
            }
            d.foreignChecked = now;
        }
    } catch (...) {
        d.sharing->unlockWriting();
        throw;
    }
    d.pagesBefore = d.pages;
    d.levels.push_back({undoable, false, ++d.serial, d.version, d.pages, {}});
}

void FilePager::commitChange() {
    Impl& d = *impl_;
    if (d.levels.empty())
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    Impl::Level& level = d.levels.back();
    if (level.broken)
        throw Error(ErrorNumber::InvalidArgument,
                    "a part of the transaction failed: it can only be rolled back");
    if (d.levels.size() == 1) {
        d.commitOutermost();
        return;
    }
    Impl::Level inner = std::move(level);
    d.levels.pop_back();
    if (inner.undoable)
        d.passOn(inner);
}

void FilePager::rollbackChange() noexcept {
    Impl& d = *impl_;
    if (d.levels.empty())
        return;
    if (d.levels.size() == 1) {
        d.rollbackOutermost();
        return;
    }
    Impl::Level level = std::move(d.levels.back());
    d.levels.pop_back();
    if (level.version == d.version)
        return;
    if (!level.undoable) {
        d.levels.back().broken = true;
        return;
    }
    try {
        d.restore(level);
    } catch (const Error&) {
        d.levels.back().broken = true;
    }
    d.passOn(level);
}

void FilePager::Impl::restore(const Level& level) {
    saving = 0;
    for (const auto& [page, image] : level.before)
        if (page < level.pages)
            std::memcpy(editFrame(page).bytes, image->data(), PageSize);
    while (pages > level.pages)
        cache.drop(--pages);
    free.forget();
    ++version;
}

// A level has ended: its copies serve the undoable change around it, if there is one.
void FilePager::Impl::passOn(Level& inner) {
    saving = 0;
    const auto outer =
        std::find_if(levels.rbegin(), levels.rend() - 1, [](const Level& one) { return one.undoable; });
    if (outer == levels.rend() - 1)
        return;
    saving = outer->serial;
    for (auto& [page, image] : inner.before)
        outer->before.try_emplace(page, std::move(image));
}

// Puts the pages of a large transaction into the log, uncommitted, so that memory stays bounded.
void FilePager::Impl::spill() {
    ensureLog();
    cache.clean([this](const PageCache::Frame& frame) {
        if (std::find(recent.begin(), recent.end(), &frame) != recent.end())
            return false;
        const std::uint32_t before = frame.page < logFrame.size() ? logFrame[frame.page] : 0;
        spilled.emplace_back(frame.page, before);
        setLogFrame(frame.page, log->end());
        log->append(frame.page, frame.bytes, 0);
        return true;
    });
}

void FilePager::Impl::ensureLog() {
    if (log == nullptr)
        log = RedoLog::create(storage, RedoLog::PathFor(path), identity, pages);
    log->setShared(!sharing->isExclusive());
}

void FilePager::Impl::commitOutermost() {
    if (!spilled.empty() && cache.dirty().empty())
        editFrame(spilled.back().first);
    const std::vector<PageCache::Frame*>& dirty = cache.dirty();
    if (!dirty.empty()) {
        ensureLog();
        std::uint32_t at = log->end();
        for (const PageCache::Frame* frame : dirty)
            log->append(frame->page, frame->bytes, frame == dirty.back() ? pages : 0);
        log->publish(pages);
        for (const PageCache::Frame* frame : dirty)
            setLogFrame(frame->page, at++);
        cache.clean([](const PageCache::Frame&) { return true; });
        spilled.clear();
    }
    levels.clear();
    saving = 0;
    try {
        if (log != nullptr && log->state().frames >= options.logPages)
            checkpoint(BriefWait);
    } catch (const Error&) {
        // The transaction is in the log; a later commit tries again, and flush() says what is wrong.
    }
    endOutermost();
}

void FilePager::Impl::rollbackOutermost() noexcept {
    cache.dropDirty();
    for (auto one = spilled.rbegin(); one != spilled.rend(); ++one) {
        cache.drop(one->first);
        logFrame[one->first] = one->second;
    }
    if (!spilled.empty())
        std::erase_if(logged, [this](PageNumber page) { return logFrame[page] == 0; });
    spilled.clear();
    if (log != nullptr)
        log->rollback();
    while (pages > pagesBefore)
        cache.drop(--pages);
    levels.clear();
    saving = 0;
    free.forget();
    ++version;
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
    if (log == nullptr || log->state().frames == 0)
        return true;
    if (!sharing->lockPages(wait))
        return false;
    try {
        writePages();
        log->reset(pages);
    } catch (...) {
        sharing->lockReading();
        throw;
    }
    sharing->lockReading();
    return true;
}

void FilePager::Impl::writePages() {
    log->flush();
    std::sort(logged.begin(), logged.end());
    while (!logged.empty() && logged.back() >= pages) { // appended and given up again
        logFrame[logged.back()] = 0;
        logged.pop_back();
    }
    std::vector<std::uint8_t> buffer;
    for (std::size_t first = 0; first < logged.size();) {
        std::size_t end = first;
        buffer.clear();
        while (end < logged.size() && end - first < PagesPerWrite &&
               logged[end] - logged[first] == end - first) {
            buffer.resize(buffer.size() + PageSize);
            std::uint8_t* at = buffer.data() + buffer.size() - PageSize;
            if (const PageCache::Frame* frame = cache.find(logged[end]); frame != nullptr)
                std::memcpy(at, frame->bytes, PageSize);
            else
                log->read(logFrame[logged[end]] - 1, at);
            ++end;
        }
        file->write(static_cast<std::uint64_t>(logged[first]) * PageSize, buffer.data(), buffer.size());
        first = end;
    }
    file->flush();
    for (const PageNumber page : logged)
        logFrame[page] = 0;
    logged.clear();
}

void FilePager::flush() {
    Impl& d = *impl_;
    d.checkOpen();
    if (!d.levels.empty())
        throw Error(ErrorNumber::InvalidArgument, "flush inside a transaction");
    if (!d.readOnlyReason.empty())
        return;
    if (!d.sharing->lockWriting())
        throw Error(ErrorNumber::RecordLocked, d.path + ": another user's transaction is running");
    try {
        d.enter();
        // When readers do not let the file be written, what is in the log survives as well.
        if (!d.checkpoint(BriefWait))
            d.log->flush();
    } catch (...) {
        d.endOutermost();
        throw;
    }
    d.endOutermost();
}

void FilePager::refresh() {
    Impl& d = *impl_;
    d.checkOpen();
    if (d.sharing->isExclusive() || !d.levels.empty())
        return;
    const Reading now(*this);
    if (!d.sharing->hasForeignUsers())
        return;
    d.cache.dropClean();
    d.free.forget();
    ++d.version;
    if (d.log == nullptr || d.log->state().frames == 0)
        d.pages = d.pagesInFile();
}

void FilePager::close() {
    Impl& d = *impl_;
    if (d.closed)
        return;
    while (!d.levels.empty())
        rollbackChange();
    d.close();
}

void FilePager::Impl::close() {
    const bool last = sharing->leave();
    std::exception_ptr failure;
    try {
        if (last && fileWritable) {
            enter();
            if (log != nullptr)
                retireLog();
        } else if (fileWritable && readOnlyReason.empty() && sharing->tryLockWriting()) {
            enter();
            checkpoint(BriefWait);
        } else if (last && log != nullptr && log->state().frames == 0) {
            storage.remove(RedoLog::PathFor(path));
        }
    } catch (const Error&) {
        // Others go on with the log, and who could not write need not tidy up.
        if (last && fileWritable)
            failure = std::current_exception();
    }
    closed = true;
    ready = false;
    sharing->finishLeaving(last);
    log.reset();
    file.reset();
    if (failure)
        std::rethrow_exception(failure);
}

// ---- The rest

FilePager::FilePager(Storage& storage, const std::string& path, const OpenOptions& options)
    : impl_(std::make_unique<Impl>(*this, storage, path, options)) {
    impl_->open();
}

FilePager::~FilePager() {
    try {
        close();
    } catch (const Error&) {
        // What is committed is in the log and comes back at the next opening.
    }
}

const PageZero& FilePager::header() const {
    return impl_->header;
}

const std::string& FilePager::readOnlyReason() const {
    return impl_->readOnlyReason;
}

} // namespace jet
