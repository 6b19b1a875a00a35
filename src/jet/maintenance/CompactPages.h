// Compaction between pagers: recreates all readable tables
// and objects of one database in another.
#pragma once

#include "jet/base/Fault.h"
#include "jet/base/Pager.h"

#include <functional>

namespace jet {

struct CompactResult {
    std::uint32_t tables = 0; // including system tables
    std::uint64_t rows = 0;
    std::uint64_t losses = 0;
};

// Reports what could not be saved: a table, a row, or a column of one, with the page of the source.
using OnLoss = std::function<void(const Fault&)>;

// `target`: a NewFile or similar, with pages 0 and 1 made.
CompactResult CompactPages(Pager& source, Pager& target, const OnLoss& lost);

} // namespace jet
