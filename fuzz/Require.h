// What a target holds to be true of every input: a breach ends the run where the fuzzer sees it.
#pragma once

#include <cstdlib>

inline void require(bool holds) {
    if (!holds)
        std::abort();
}
