// Who uses a database file at the same time: the locks that keep users of this engine apart, and the lock
// file
// (.LDB) in which users of every engine enter themselves.
#pragma once

#include "jet/base/Storage.h"

#include <chrono>
#include <vector>

namespace jet {

class Sharing {
public:
    using Wait = std::chrono::milliseconds;

    // `file`: the open database. `writable`: it is open for writing; without that no exclusive lock can be
    // held, and the user can only ever be one of several readers.
    Sharing(Storage& storage, StorageFile& file, const std::string& path, bool writable, Wait wait);

    // Which other users of this engine are here.
    struct Others {
        bool any = false;
        bool writers = false; // with the file open for writing
    };
    // Enters the user. Throws CannotStart (exclusive and others are there) or FileLocked (another one is
    // there exclusively). Until joined() is called nobody else enters or leaves.
    Others join(bool exclusive);
    void joined();
    // Begins leaving; until finishLeaving() nobody else enters or leaves. True: this is the last user.
    bool leave();
    void finishLeaving(bool last);

    bool isExclusive() const { return exclusive_; }

    // Held through an operation that reads: no page of the file changes meanwhile.
    void lockReading();
    void unlockReading() noexcept;
    // In place of lockReading(), by the holder of the writing lock: nobody reads meanwhile. False: somebody
    // does.
    bool lockPages(Wait wait);
    // Held through a transaction. False: another one holds it for longer than `wait`.
    bool lockWriting();
    bool tryLockWriting();
    void unlockWriting() noexcept;

    // Whether somebody has the file open who is no user of this engine and knows neither these locks nor the
    // log.
    bool hasForeignUsers();

    // Whether another user of this engine has the file open, alone or not.
    bool isInUse();

    // Locks a file that others do not know yet as its only user does. It is open to them when it is closed.
    static void holdAlone(StorageFile& file);
    // Locks a file that is being made, against others who would take it over. No user of a database minds
    // this lock. False: another holds it.
    static bool lockDraft(StorageFile& file, bool wait);

    static std::string LockFileOf(const std::string& database);
    // The computers entered in the lock file by users who are there now, but for this one.
    std::vector<std::string> otherUsers();

private:
    void enterLockFile();
    bool takeSlot(std::uint64_t slot);
    std::vector<int> otherSlots();
    std::string describeOthers();

    Storage& storage_;
    StorageFile& file_;
    std::string path_;
    std::string lockPath_;
    bool writable_;
    Wait wait_;
    bool exclusive_ = false;
    std::unique_ptr<StorageFile> lockFile_; // null: none could be made
    int slot_ = 0;                          // 1..255; 0: none
};

} // namespace jet
