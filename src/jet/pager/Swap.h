// Puts a new file in the place of a database, while its user holds the database alone. At every moment there
// is the old or the new one under its name, whole, and when it is over the old one has another name.
//
// A note beside the database ("<database>-swap") names the files that are being made. It is written before
// the first of them and removed after the last, so that what a dead process has left is known at the next
// opening, and is known to be dead: whoever swaps holds the database.
#pragma once

#include "jet/base/Storage.h"

#include <functional>

namespace jet {

class Swap {
public:
    // `copy`: where the new file is made, beside the database; nothing is there. `storage` outlives this.
    Swap(Storage& storage, std::string database, std::string copy);
    // Takes away what was made if it was not put in place.
    ~Swap();
    Swap(const Swap&) = delete;
    Swap& operator=(const Swap&) = delete;

    // The new file, which nobody else can open before the swap is over.
    StorageFile& file() { return *file_; }
    // The new file is whole and flushed: gives it the owner, the group and the mode of the old one, keeps
    // that under the first of the names backup(1), backup(2) ... that is free, and puts the new one in its
    // place.
    void finish(const std::function<std::string(int)>& backup);

    // As the only user of a database: takes away what a swap has left that was never finished. The database
    // stays as it is; a second name of it goes, since that would be no backup of what is written to it.
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
