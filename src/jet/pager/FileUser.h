// One user of a database file: how it enters among the others and takes over what a dead session left, the
// locks that it works under, how it brings the log into the file, and how it leaves. docs/formats/jet.md
// states the protocol. What the pages hold is the business of the pager above.
#pragma once

#include "jet/pager/LoggedFile.h"
#include "jet/pager/OpenOptions.h"
#include "jet/pager/Sharing.h"

#include <functional>

namespace jet {

class FileUser {
public:
    // Opens the file, not yet entered. `cache`: pages that need not be read to be copied. Throws
    // FileNotFound, CannotOpenFile, Unrecognised.
    FileUser(Storage& storage, const std::string& path, const OpenOptions& options, const PageCache& cache);

    // Enters and takes over the log. False: the file was replaced before this user was in, by one that is to
    // be opened in its place. Throws InvalidPassword, FileLocked, CannotStart.
    bool enter();
    // Leaves: brings what is committed into the file as far as others allow it, and to the disk in any case.
    // `catchUp` begins an operation that reads: whoever brings the log into the file has seen all of it.
    // Throws what keeps that from being done; the user has left all the same.
    void leave(const std::function<void()>& catchUp);
    bool hasLeft() const { return left_; }

    LoggedFile& file() { return file_; }
    const LoggedFile& file() const { return file_; }
    Sharing& sharing() { return *sharing_; }
    const std::string& path() const { return path_; }
    // Nobody else can enter.
    bool isAlone() const { return sharing_->isExclusive(); }
    // Empty: pages may be changed. Otherwise why not.
    const std::string& readOnlyReason() const { return readOnlyReason_; }

    // Throws InvalidArgument when the user has left.
    void checkHere() const;
    // Throws CannotUpdateReadOnly.
    void checkWritable() const;
    // Takes the writing lock. Throws RecordLocked when another user's transaction lasts longer than
    // OpenOptions::lockWait.
    void lockWriting();
    // Throws FileLocked while a program has the file open that does not know the write-ahead log. Looks at
    // most once a second.
    void refuseForeignUsers();
    // Brings the log into the file. The writing lock is held, and no change is running. False: others are
    // reading, and still were after that time.
    bool checkpoint(Sharing::Wait wait);

private:
    void settleSwap() const;
    void takeOverLog(Sharing::Others others);
    void bringIn(bool last, const std::function<void()>& catchUp);

    Storage& storage_;
    std::string path_;
    OpenOptions options_;
    LoggedFile file_;
    std::string readOnlyReason_;
    std::unique_ptr<Sharing> sharing_;
    bool left_ = false;
    std::chrono::steady_clock::time_point foreignChecked_{};
};

} // namespace jet
