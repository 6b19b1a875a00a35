// Opening a file of the older format: its tables become an image of the present format in memory, which is
// read like any other database.
#pragma once

#include "jet/MemoryPager.h"

#include <memory>
#include <span>
#include <string>

namespace jet {

struct Jet3Import {
    std::unique_ptr<MemoryPager> pager;
    std::vector<std::string>
        faults; // what could not be read, or not kept as it was (an index in another order)
};

// Reads all user tables of a file, given as its bytes. Throws Unrecognised or, if even the catalogue cannot
// be read, ReadVerification. Cost: memory of up to some three times the file.
Jet3Import ImportJet3(std::span<const std::uint8_t> file);

} // namespace jet
