// The engine's own files in tests/data/jet.
#pragma once

#include "jet/Jet3Import.h"
#include "jet/MemoryPager.h"

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

inline std::string SampleFolder() {
    return TOLVEX_SOURCE_DIR "/tests/data/jet/";
}

inline Bytes ReadSample(const std::string& name) {
    return ReadFile(SampleFolder() + name + ".mdb");
}

} // namespace jet::tests
