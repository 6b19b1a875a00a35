// Opens a file of the older format: converts its tables to an image of the present format in memory, which is
// read like any other database.
#pragma once

#include "jet/base/Fault.h"
#include "jet/pager/MemoryPager.h"

#include <memory>
#include <span>
#include <vector>

namespace jet {

// The findings about the file.
struct Jet3Contents {
    std::uint32_t pages = 0; // of 2048 bytes
    std::uint32_t tables = 0;
    std::uint64_t rows = 0;
    // Everything that could not be read. Harmless: things not converted (queries, relationships) or changed
    // (an index that is not unique in the order of this format).
    std::vector<Fault> faults;
};

struct Jet3Import {
    std::unique_ptr<MemoryPager> pager;
    Jet3Contents contents;
};

// Reads all user tables of a file, given as its bytes. Throws Unrecognised or, if even the catalogue is
// unreadable, ReadVerification. Cost: memory of up to about three times the file.
Jet3Import ImportJet3(std::span<const std::uint8_t> file);

} // namespace jet
