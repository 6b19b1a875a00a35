// Who has a database open, without opening it: for those who want to say whom they wait for.
#pragma once

#include "jet/Storage.h"

#include <vector>

namespace jet {

struct DatabaseUsers {
    bool any = false;
    // Computers by the lock file, of this engine and of others; none are known of a user who holds the
    // database alone, or in a folder that takes no lock file.
    std::vector<std::string> computers;
};

// Counts whatever the caller itself has open, too. Takes no lock. Throws FileNotFound, CannotOpenFile. Cost:
// opens the two files and asks for some locks.
DatabaseUsers FindDatabaseUsers(Storage& storage, const std::string& path);

} // namespace jet
