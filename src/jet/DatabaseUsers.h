// Who has a database open, without opening it: for telling a user whom they are waiting for.
#pragma once

#include "jet/Storage.h"

#include <vector>

namespace jet {

struct DatabaseUsers {
    bool any = false;
    // Computers in the lock file, of this engine and of others; empty if a user holds the database
    // exclusively, or if its folder accepts no lock file.
    std::vector<std::string> computers;
};

// Also counts what the caller itself has open. Takes no lock. Throws FileNotFound, CannotOpenFile. Cost:
// opens the two files and queries some locks.
DatabaseUsers FindDatabaseUsers(Storage& storage, const std::string& path);

} // namespace jet
