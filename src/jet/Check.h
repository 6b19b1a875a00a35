// The integrity of a whole database: header, usage maps, every table with its rows, long values and indexes,
// and the catalogue. Whatever the file holds, the check ends, and takes memory by the number of pages.
#pragma once

#include "jet/Pager.h"

#include <cstdint>
#include <functional>
#include <string>

namespace jet {

struct Fault {
    PageNumber page = 0;
    std::u16string table;  // empty: of no table
    std::string reason;    // what is wrong with the page, as the end of a sentence: "page 12 ..."
    bool harmless = false; // only a remark: nothing is lost or wrong by it
};

struct CheckResult {
    std::uint32_t pages = 0;
    std::uint32_t tables = 0; // those of the system included
    std::uint64_t rows = 0;
    std::uint64_t faults = 0; // without the harmless ones
};

// Reports each fault when it is met. Reads everything; throws only what reading itself throws (DiskIo). Cost:
// each page a few times, each index key built once.
CheckResult CheckDatabase(Pager& pager, const std::function<void(const Fault&)>& report);

} // namespace jet
