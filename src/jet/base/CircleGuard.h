// Detects when a walk along pointers of a file runs in a circle. Remembers one place at a time, and after
// twice as many steps another one (Brent's method), so a circle is detected after at most three times its
// length.
#pragma once

#include "jet/base/RowPointer.h"

#include <cstdint>

namespace jet {

class CircleGuard {
public:
    // Called with each place of the walk. True: the walk was there before.
    bool meets(RowPointer at) {
        if (at == mark_)
            return true;
        if (++steps_ == limit_) {
            mark_ = at;
            steps_ = 0;
            limit_ *= 2;
        }
        return false;
    }

private:
    RowPointer mark_; // page 0: none yet
    std::uint64_t steps_ = 0;
    std::uint64_t limit_ = 1;
};

} // namespace jet
