// Checks the integrity of a whole database: header, usage maps, every table with its rows, long values and
// indexes, and the catalogue. It always ends, and its memory depends on the number of pages.
#pragma once

#include "jet/base/Fault.h"

#include <cstdint>
#include <functional>

namespace jet {

class Database;

struct CheckResult {
    std::uint32_t pages = 0;
    std::uint32_t tables = 0; // including system tables
    std::uint64_t rows = 0;
    std::uint64_t faults = 0; // without the harmless ones
};

// Reports each fault when it is found. Reads everything; throws only the errors of reading itself (DiskIo).
// Cost: each page a few times, each index key built once.
CheckResult CheckDatabase(Pager& pager, const std::function<void(const Fault&)>& report);

// The same for an open database. A file in the older format was read completely on opening: reports what
// could not be read then, and as harmless what is not converted.
CheckResult CheckDatabase(Database& database, const std::function<void(const Fault&)>& report);

} // namespace jet
