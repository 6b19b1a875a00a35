// Options for opening a database file.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace jet {

struct OpenOptions {
    bool readOnly = false;         // reads what a session left in the log, and leaves it there
    bool exclusive = false;        // no other program may open the file; saves all checks for their changes
    std::u16string password;       // of the database, if it has one
    std::size_t cachePages = 4096; // limit of the page cache (at least 256); a transaction's pages count too
    // A write-ahead log longer than this is brought into the file at the next commit.
    std::size_t logPages = 4096;
    std::chrono::milliseconds lockWait{10000}; // how long to wait for another program's transaction
};

} // namespace jet
