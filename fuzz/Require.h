// A condition that must hold for every input: a violation ends the run, where the fuzzer sees it.
#pragma once

#include <cstdlib>

inline void require(bool holds) {
    if (!holds)
        std::abort();
}
