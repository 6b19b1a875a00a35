#include "jet/pager/LoggedFile.h"

#include "jet/base/Damage.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {

namespace {

constexpr PageNumber PagesPerWrite = 64;

} // namespace

LoggedFile::LoggedFile(Storage& storage, const std::string& path, const PageCache& cache, bool readOnly)
    : storage_(storage)
    , path_(path)
    , cache_(cache)
    , writable_(!readOnly) {
    try {
        file_ = storage.open(path, readOnly ? Storage::Open::ReadOnly : Storage::Open::ReadWrite);
    } catch (const Error& error) {
        if (readOnly || error.code() != ErrorNumber::CannotOpenFile)
            throw;
        file_ = storage.open(path, Storage::Open::ReadOnly);
        writable_ = false;
    }
    std::array<std::uint8_t, PageSize> page{};
    const std::size_t length = file_->read(0, page.data(), page.size());
    header_ = DecodePageZero({page.data(), length});
    if (header_.version != PageZero::Jet4)
        throw Error(ErrorNumber::Unrecognised, path + ": of an older version");
    identity_ = WriteAheadLog::IdentityOf(page.data());
}

PageNumber LoggedFile::pagesInFile() {
    return static_cast<PageNumber>(std::min<std::uint64_t>(file_->size() / PageSize, MaximumPages));
}

PageNumber LoggedFile::append() {
    if (pages_ >= MaximumPages)
        throw Error(ErrorNumber::FileTooLarge, path_);
    return pages_++;
}

void LoggedFile::countPages() {
    if (logLength() == 0)
        pages_ = pagesInFile();
}

void LoggedFile::read(PageNumber page, std::uint8_t* into) {
    if (page < frameOf_.size() && frameOf_[page] != 0) {
        log_->read(frameOf_[page] - 1, into);
        return;
    }
    if (file_->read(static_cast<std::uint64_t>(page) * PageSize, into, PageSize) != PageSize)
        Damaged(page, "is cut off");
    if (header_.databaseKey != 0 && page != 0)
        CryptPage(header_.databaseKey, page, {into, PageSize});
}

// ---- What other users, or an earlier session, have written to the log

bool LoggedFile::findLog() {
    log_ = WriteAheadLog::open(storage_, WriteAheadLog::PathFor(path_), !writable_, identity_);
    if (log_ != nullptr)
        log_->setShared(shared_);
    return log_ != nullptr;
}

bool LoggedFile::recoverLog() {
    if (!findLog())
        return false;
    log_->recover();
    takeFrames(0, [](PageNumber) {});
    return true;
}

LoggedFile::News LoggedFile::takeNews(const OnPage& changed) {
    if (log_ == nullptr) {
        if (!findLog())
            return News::None;
        log_->refresh();
        takeFrames(0, changed);
        return News::Everything;
    }
    const WriteAheadLog::State known = log_->state();
    if (!log_->refresh())
        return News::None;
    const WriteAheadLog::State& now = log_->state();
    const bool emptied = now.generation != known.generation;
    const bool sawAll = now.generation == known.generation + 1 && now.previousFrames == known.frames;
    takeFrames(emptied ? 0 : known.frames, changed);
    return emptied && !sawAll ? News::Everything : News::Pages;
}

// A log that cannot be read is closed, so that nothing of it gets into the file: the next operation opens it
// again, and reports the same unless it was repaired.
void LoggedFile::takeFrames(std::uint32_t from, const OnPage& changed) {
    if (from == 0)
        forgetFrames();
    try {
        log_->pagesOf(from, log_->state().frames, [&](std::uint32_t frame, PageNumber page) {
            changed(page);
            setFrame(page, frame);
        });
        const PageNumber before = std::max(pages_, pagesInFile());
        if (log_->state().pages != 0)
            pages_ = std::min(log_->state().pages, MaximumPages);
        for (PageNumber page = before; page < pages_; ++page)
            if (page >= frameOf_.size() || frameOf_[page] == 0)
                throw Error(ErrorNumber::Corrupt,
                            path_ + ": the write-ahead log lacks page " + std::to_string(page));
    } catch (...) {
        forgetFrames();
        log_.reset();
        pages_ = pagesInFile();
        throw;
    }
}

void LoggedFile::forgetFrames() {
    for (const PageNumber page : logged_)
        frameOf_[page] = 0;
    logged_.clear();
}

void LoggedFile::setFrame(PageNumber page, std::uint32_t frame) {
    if (page == 0 || page >= MaximumPages)
        throw Error(ErrorNumber::Corrupt, path_ + ": the write-ahead log names page " + std::to_string(page));
    if (page >= frameOf_.size())
        frameOf_.resize(page + page / 8 + 64);
    if (frameOf_[page] == 0)
        logged_.push_back(page);
    frameOf_[page] = frame + 1;
}

// ---- A transaction

void LoggedFile::ensureLog() {
    if (log_ == nullptr) // without the pages appended by this transaction: others must not see them yet
        log_ = WriteAheadLog::create(storage_, WriteAheadLog::PathFor(path_), identity_, pagesInFile());
    log_->setShared(shared_);
}

void LoggedFile::spill(const PageCache::Frame& frame) {
    ensureLog();
    const std::uint32_t at = log_->end();
    log_->append(frame.page, frame.bytes, 0);
    const std::uint32_t before = frame.page < frameOf_.size() ? frameOf_[frame.page] : 0;
    spilled_.emplace_back(frame.page, before);
    setFrame(frame.page, at);
}

void LoggedFile::commit(const std::vector<PageCache::Frame*>& rest) {
    ensureLog();
    std::uint32_t at = log_->end();
    for (const PageCache::Frame* frame : rest)
        log_->append(frame->page, frame->bytes, frame == rest.back() ? pages_ : 0);
    log_->publish(pages_);
    flushed_ = false;
    for (const PageCache::Frame* frame : rest)
        setFrame(frame->page, at++);
    spilled_.clear();
}

void LoggedFile::rollback(const OnPage& dropped) {
    for (auto one = spilled_.rbegin(); one != spilled_.rend(); ++one) {
        dropped(one->first);
        frameOf_[one->first] = one->second;
    }
    if (!spilled_.empty())
        std::erase_if(logged_, [this](PageNumber page) { return frameOf_[page] == 0; });
    spilled_.clear();
    if (log_ != nullptr)
        log_->rollback();
}

// ---- Bringing the log into the file

void LoggedFile::flushLog() {
    if (log_ != nullptr)
        log_->flush();
    else if (!flushed_)
        throw Error(ErrorNumber::Corrupt,
                    path_ + ": the write-ahead log with the latest changes cannot be read");
    flushed_ = true;
}

void LoggedFile::writePages() {
    log_->flush();
    std::sort(logged_.begin(), logged_.end());
    while (!logged_.empty() && logged_.back() >= pages_) { // appended and discarded again
        frameOf_[logged_.back()] = 0;
        logged_.pop_back();
    }
    std::vector<std::uint8_t> buffer;
    for (std::size_t first = 0; first < logged_.size();) {
        std::size_t end = first;
        buffer.clear();
        while (end < logged_.size() && end - first < PagesPerWrite &&
               logged_[end] - logged_[first] == end - first) {
            buffer.resize(buffer.size() + PageSize);
            std::uint8_t* at = buffer.data() + buffer.size() - PageSize;
            if (const PageCache::Frame* frame = cache_.find(logged_[end]); frame != nullptr)
                std::memcpy(at, frame->bytes, PageSize);
            else
                log_->read(frameOf_[logged_[end]] - 1, at);
            ++end;
        }
        file_->write(static_cast<std::uint64_t>(logged_[first]) * PageSize, buffer.data(), buffer.size());
        first = end;
    }
    file_->flush();
    flushed_ = true;
    forgetFrames();
}

void LoggedFile::emptyLog() {
    writePages();
    log_->reset(pages_);
}

void LoggedFile::retireLog() {
    if (log_ == nullptr)
        return;
    if (logLength() != 0)
        writePages();
    try {
        storage_.remove(WriteAheadLog::PathFor(path_));
    } catch (const Error&) {
        log_->reset(pages_); // a full one, if found again, could destroy later writes of other programs
    }
    log_.reset();
}

void LoggedFile::removeEmptyLog() {
    if (log_ != nullptr && logLength() == 0)
        storage_.remove(WriteAheadLog::PathFor(path_));
}

void LoggedFile::closeFiles() {
    log_.reset();
    file_.reset();
}

} // namespace jet
