// Files that the original engine wrote, where there are any: the folder that TOLVEX_JET_SAMPLES names. They
// are not part of the project; tests that want them are skipped without.
#pragma once

#include "jet/Jet3Import.h"
#include "jet/MemoryPager.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace jet::tests {

inline constexpr const char* Jet4Samples[] = {"big-index",    "composite-index", "deleted-columns",
                                              "deleted-rows", "moved-rows",      "long-values",
                                              "relationships"};
inline constexpr const char* Jet3Samples[] = {"jet3-deleted-rows", "jet3-long-values"};

inline Bytes ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// With its ending slash; empty when there are no samples.
inline std::string SampleFolder() {
    const char* folder = std::getenv("TOLVEX_JET_SAMPLES");
    return folder && *folder ? std::string(folder) + '/' : std::string();
}

#define NEED_SAMPLES()                                                                                       \
    if (jet::tests::SampleFolder().empty())                                                                  \
    GTEST_SKIP() << "TOLVEX_JET_SAMPLES names no folder of the engine's own files"

inline Bytes ReadSample(const std::string& name) {
    return ReadFile(SampleFolder() + name + ".mdb");
}

} // namespace jet::tests
