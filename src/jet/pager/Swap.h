// Replaces a database with a new file while its user holds the database exclusively. Its name always leads to
// the old or the new file, complete; in the end the old one has another name.
//
// A note beside the database ("<database>-swap") names the files that are being made. It is written before
// the first of them and removed after the last, so that the next opening recognises what a dead process left:
// whoever swaps holds the database, so the process must be dead.
#pragma once

#include "jet/base/Storage.h"

#include <functional>

namespace jet {

class Swap {
public:
    // `copy`: the path for the new file, beside the database; it must be free. `storage` outlives this.
    Swap(Storage& storage, std::string database, std::string copy);
    // Removes what was made if it was not put in place.
    ~Swap();
    Swap(const Swap&) = delete;
    Swap& operator=(const Swap&) = delete;

    // The new file, which nobody else can open before the swap is over.
    StorageFile& file() { return *file_; }
    // The new file is complete and flushed: gives it the owner, the group
    // and the mode of the old one, keeps the old one under the first free
    // name of backup(1), backup(2) ..., and puts the new one in its place.
    void finish(const std::function<std::string(int)>& backup);

    // As the only user of a database: removes what an unfinished swap left. The database stays as it is; a
    // second name of it is removed, since that would not be a backup of later writes.
    static void settle(Storage& storage, const std::string& database);

private:
    void note(const std::string& key, const std::string& path);
    bool keepOld(const std::string& backup);

    Storage& storage_;
    std::string database_;
    std::string copy_;
    std::unique_ptr<StorageFile> note_;
    std::uint64_t noted_ = 0; // bytes
    std::unique_ptr<StorageFile> file_;
};

} // namespace jet
