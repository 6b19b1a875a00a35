// Who uses a database file at the same time: the locks that
// coordinate users of this engine, and the lock file (.LDB)
// in which users of every engine are listed.
#pragma once

#include "jet/base/Storage.h"

#include <chrono>
#include <vector>

namespace jet {

class Sharing {
public:
    using Wait = std::chrono::milliseconds;

    // `file`: the open database. `writable`: it is open for writing; otherwise no exclusive lock is possible,
    // and the user can only be one of several readers.
    Sharing(Storage& storage, StorageFile& file, const std::string& path, bool writable, Wait wait);

    // The other users of this engine.
    struct Others {
        bool any = false;
        bool writers = false; // with the file open for writing
    };
    // Joins the others. Throws CannotStart (exclusive, and there are others) or FileLocked (another user is
    // exclusive). Until joined() is called nobody else joins or leaves.
    Others join(bool exclusive);
    void joined();
    // Begins leaving; until finishLeaving() nobody else joins or leaves. True: this is the last user.
    bool leave();
    void finishLeaving(bool last);

    bool isExclusive() const { return exclusive_; }

    // Held through an operation that reads: no page of the file changes meanwhile.
    void lockReading();
    void unlockReading() noexcept;
    // Used instead of lockReading() by the holder of the writing lock: nobody reads meanwhile. False: there
    // are readers.
    bool lockPages(Wait wait);
    // Held through a transaction. False: another user holds it for longer than `wait`.
    bool lockWriting();
    bool tryLockWriting();
    void unlockWriting() noexcept;

    // Whether anyone who does not use this engine, and so knows neither these locks nor the log, has the file
    // open.
    bool hasForeignUsers();

    // Whether another user of this engine has the file open, alone or not.
    bool isInUse();

    // Locks a file that is still unknown to others as its only user. Closing opens it to them.
    static void holdAlone(StorageFile& file);
    // Locks a file under construction against others who would take it over. Users of a database ignore this
    // lock. False: another process holds it.
    static bool lockDraft(StorageFile& file, bool wait);

    static std::string LockFileOf(const std::string& database);
    // The computers in the lock file whose users are connected, except this one.
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
