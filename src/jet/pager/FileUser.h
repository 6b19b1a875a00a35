// One user of a database file: how it joins the others and recovers what a dead session left, the locks it
// works under, how it brings the log into the file, and how it leaves. docs/formats/jet.md describes the
// protocol. The pager above interprets the pages.
#pragma once

#include "jet/pager/LoggedFile.h"
#include "jet/pager/OpenOptions.h"
#include "jet/pager/Sharing.h"

#include <functional>

namespace jet {

class FileUser {
public:
    // Opens the file without joining. `cache`: pages that need not be read to be copied. Throws FileNotFound,
    // CannotOpenFile, Unrecognised.
    FileUser(Storage& storage, const std::string& path, const OpenOptions& options, const PageCache& cache);

    // Joins and takes over the log. False: the file was replaced before this user had joined; the new one
    // must be opened instead. Throws InvalidPassword, FileLocked, CannotStart.
    bool enter();
    // Leaves: brings committed data into the file as far as others allow it, and to the disk in any case.
    // `catchUp` begins an operation that reads: whoever brings the log into the file has read all of it.
    // Throws the errors of that; the user has left all the same.
    void leave(const std::function<void()>& catchUp);
    bool hasLeft() const { return left_; }

    LoggedFile& file() { return file_; }
    const LoggedFile& file() const { return file_; }
    Sharing& sharing() { return *sharing_; }
    const std::string& path() const { return path_; }
    // Nobody else can join.
    bool isAlone() const { return sharing_->isExclusive(); }
    // Empty: pages may be changed. Otherwise the reason why not.
    const std::string& readOnlyReason() const { return readOnlyReason_; }

    // Throws InvalidArgument if the user has left.
    void checkHere() const;
    // Throws CannotUpdateReadOnly.
    void checkWritable() const;
    // Takes the writing lock. Throws RecordLocked if another user's transaction takes longer than
    // OpenOptions::lockWait.
    void lockWriting();
    // Throws FileLocked while a program that does not know the write-ahead log has the file open. Checks at
    // most once a second.
    void refuseForeignUsers();
    // Brings the log into the file. Needs the writing lock, and no open change. False: others were still
    // reading after that time.
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
