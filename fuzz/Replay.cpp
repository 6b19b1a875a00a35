// Replays a fuzz target's seed corpus if no fuzzer is linked: every seed whole, cut at many lengths, and with
// bytes damaged reproducibly. A crash or a hang fails the test; nothing else is compared.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

#ifndef TOLVEX_VARIANTS
#define TOLVEX_VARIANTS 400
#endif

// Cuts and damages tried per seed; large seeds get fewer so that the whole replay stays short.
constexpr std::size_t maxVariants = TOLVEX_VARIANTS;

void tryBytes(const std::vector<std::uint8_t>& bytes) {
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

void replay(const std::vector<std::uint8_t>& seed) {
    tryBytes(seed);
    const std::size_t variants = seed.size() > 65536 ? maxVariants / 20 : maxVariants;
    const std::size_t step = seed.size() / variants + 1;
    for (std::size_t length = 0; length < seed.size(); length += step)
        tryBytes({seed.begin(), seed.begin() + static_cast<std::ptrdiff_t>(length)});
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed.size() + 1));
    for (std::size_t i = 0; i < variants && !seed.empty(); ++i) {
        std::vector<std::uint8_t> damaged = seed;
        for (unsigned n = random() % 4 + 1; n > 0; --n)
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        tryBytes(damaged);
    }
}

} // namespace

int main(int argc, char** argv) {
    std::size_t seeds = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (!entry.is_regular_file())
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            replay({std::istreambuf_iterator<char>(file), {}});
            ++seeds;
        }
    }
    std::printf("%zu seeds replayed\n", seeds);
    return seeds > 0 ? 0 : 1;
}
