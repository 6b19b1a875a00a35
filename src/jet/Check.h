// The integrity of a whole database: header, usage maps, every table with its rows, long values and indexes,
// and the catalogue. Whatever the file holds, the check ends, and takes memory by the number of pages.
#pragma once

#include "jet/base/Fault.h"

#include <cstdint>
#include <functional>

namespace jet {

class Database;

struct CheckResult {
    std::uint32_t pages = 0;
    std::uint32_t tables = 0; // those of the system included
    std::uint64_t rows = 0;
    std::uint64_t faults = 0; // without the harmless ones
};

// Reports each fault when it is met. Reads everything; throws only what reading itself throws (DiskIo). Cost:
// each page a few times, each index key built once.
CheckResult CheckDatabase(Pager& pager, const std::function<void(const Fault&)>& report);

// The same for an open database. Of a file in the older format every row was read on opening: reports what
// could not be read then, and as harmless what is not taken over.
CheckResult CheckDatabase(Database& database, const std::function<void(const Fault&)>& report);

} // namespace jet
