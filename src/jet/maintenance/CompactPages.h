// Compaction between pagers: all that can be read of the tables and objects of one database, made anew in
// another.
#pragma once

#include "jet/base/Fault.h"
#include "jet/base/Pager.h"

#include <functional>

namespace jet {

struct CompactResult {
    std::uint32_t tables = 0; // those of the system included
    std::uint64_t rows = 0;
    std::uint64_t losses = 0;
};

// Reports what could not be saved: a table, a row, or a column of one, with the page of the source.
using OnLoss = std::function<void(const Fault&)>;

// `target`: a NewFile or one like it, of which pages 0 and 1 are made.
CompactResult CompactPages(Pager& source, Pager& target, const OnLoss& lost);

} // namespace jet
