// The address of a row: its page and its slot there. The slot never changes while the row lives.
#pragma once

#include "jet/base/LittleEndian.h"
#include "jet/base/Pager.h"

#include <compare>

namespace jet {

struct RowPointer {
    PageNumber page = 0; // 0: none
    std::uint8_t row = 0;
    auto operator<=>(const RowPointer&) const = default; // NOLINT(modernize-use-nullptr)
};

// As stored in four bytes: row in the low byte, page above it.
inline RowPointer LoadRowPointer(const std::uint8_t* at) {
    return {Load32(at) >> 8, at[0]};
}

inline void StoreRowPointer(std::uint8_t* at, RowPointer pointer) {
    Store32(at, pointer.page << 8 | pointer.row);
}

} // namespace jet
