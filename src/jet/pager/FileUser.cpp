#include "jet/pager/FileUser.h"

#include "jet/base/Error.h"
#include "jet/pager/Swap.h"

namespace jet {

namespace {

constexpr std::chrono::seconds ForeignUserCheck{1};
// How long a leaving user waits for readers before emptying the log.
constexpr Sharing::Wait BriefWait{20};

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

FileUser::FileUser(Storage& storage, const std::string& path, const OpenOptions& options,
                   const PageCache& cache)
    : storage_(storage)
    , path_(path)
    , options_(options)
    // Exclusive locking needs a file that is open for writing.
    , file_(storage, path, cache, options.readOnly && !options.exclusive)
    , readOnlyReason_(whyReadOnly(options, file_.isWritable(), file_.header())) {}

// ---- Entering

bool FileUser::enter() {
    const PageZero& header = file_.header();
    if (!header.password.empty() && header.password != options_.password)
        throw Error(ErrorNumber::InvalidPassword, path_);
    sharing_ =
        std::make_unique<Sharing>(storage_, file_.file(), path_, file_.isWritable(), options_.lockWait);
    const Sharing::Others others = sharing_->join(options_.exclusive);
    file_.setShared(!isAlone());
    try {
        if (!file_.file().isNow(path_)) {
            left_ = true;
            sharing_->finishLeaving(!others.any);
            return false;
        }
        if (!others.any && file_.isWritable())
            settleSwap();
        takeOverLog(others);
        sharing_->joined();
    } catch (...) {
        sharing_->finishLeaving(!others.any);
        throw;
    }
    return true;
}

void FileUser::settleSwap() const {
    try {
        Swap::settle(storage_, path_);
    } catch (const Error&) {
        // Files left by a dead process only take up space.
    }
}

void FileUser::takeOverLog(Sharing::Others others) {
    file_.countPages();
    // A log that others write to is read under the locks of the first operation.
    if (others.writers || !file_.recoverLog() || !file_.isWritable())
        return;
    try {
        if (others.any)
            file_.publishLog();
        else
            file_.retireLog();
    } catch (const Error&) {
        if (others.any)
            throw;
        // For instance no room. The log stays in use, and nothing is lost.
    }
}

// ---- Working

void FileUser::checkHere() const {
    if (left_)
        throw Error(ErrorNumber::InvalidArgument, path_ + ": closed");
}

void FileUser::checkWritable() const {
    if (!readOnlyReason_.empty())
        throw Error(ErrorNumber::CannotUpdateReadOnly, path_ + ": " + readOnlyReason_);
}

void FileUser::lockWriting() {
    if (!sharing_->lockWriting())
        throw Error(ErrorNumber::RecordLocked, path_ + ": another user's transaction is running");
}

void FileUser::refuseForeignUsers() {
    const auto now = std::chrono::steady_clock::now();
    if (isAlone() || now - foreignChecked_ <= ForeignUserCheck)
        return;
    if (sharing_->hasForeignUsers())
        throw Error(ErrorNumber::FileLocked,
                    path_ + ": open in a program that does not know the write-ahead log");
    foreignChecked_ = now;
}

bool FileUser::checkpoint(Sharing::Wait wait) {
    if (file_.logLength() == 0)
        return true;
    if (!sharing_->lockPages(wait))
        return false;
    try {
        file_.emptyLog();
    } catch (...) {
        sharing_->lockReading();
        throw;
    }
    sharing_->lockReading();
    return true;
}

// ---- Leaving

void FileUser::leave(const std::function<void()>& catchUp) {
    std::exception_ptr failure;
    bool last = false;
    try {
        last = sharing_->leave();
        bringIn(last, catchUp);
    } catch (const Error&) {
        failure = std::current_exception();
    }
    left_ = true;
    try {
        sharing_->finishLeaving(last);
    } catch (const Error&) {
        // The locks disappear with the file, and an old entry in the lock file is harmless.
    }
    file_.closeFiles();
    if (failure)
        std::rethrow_exception(failure);
}

void FileUser::bringIn(bool last, const std::function<void()>& catchUp) {
    if (!file_.isWritable()) {
        try {
            if (last)
                file_.removeEmptyLog();
        } catch (const Error&) {
            // A user without write access need not clean up.
        }
    } else if (last) {
        catchUp();
        file_.retireLog();
    } else if (readOnlyReason_.empty()) {
        try {
            if (sharing_->tryLockWriting()) {
                catchUp();
                checkpoint(BriefWait);
            }
        } catch (const Error&) {
            // The others keep using the log; it only has to be on the disk.
        }
        if (!file_.isFlushed())
            file_.flushLog();
    }
}

} // namespace jet
