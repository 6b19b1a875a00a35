// Files with random damage, reproducible by seed, and the
// conditions that must still hold.
#pragma once

#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/FaultyStorage.h"
#include "jet/base/Error.h"
#include "jet/page/PageZero.h"
#include "jet/pager/MemoryPager.h"
#include "jet/pager/NewFile.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace jet::tests {

// Counts page reads.
class CountingPager final : public Pager {
public:
    explicit CountingPager(const Bytes& image)
        : pages_(image) {}
    const std::uint8_t* read(PageNumber page) override {
        ++reads;
        return pages_.read(page);
    }
    std::uint8_t* edit(PageNumber page) override { return pages_.edit(page); }
    PageNumber allocate() override { return pages_.allocate(); }
    void release(PageNumber page) override { pages_.release(page); }
    PageNumber pageCount() override { return pages_.pageCount(); }

    std::uint64_t reads = 0;

private:
    MemoryPager pages_;
};

inline std::uint32_t Below(std::mt19937& random, std::size_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
}

// One random fault in a file, on a page after the first. Most pages hold rows, so pages of other kinds are
// chosen separately just as often.
inline void Damage(Bytes& file, std::mt19937& random) {
    const std::size_t pages = file.size() / PageSize;
    std::size_t page = 1 + Below(random, pages - 1);
    const std::uint8_t kind = std::array<std::uint8_t, 4>{1, 2, 4, 0}[Below(random, 4)];
    for (std::size_t tried = 0; kind != 0 && tried < pages && file[page * PageSize] != kind; ++tried)
        page = 1 + page % (pages - 1);
    std::uint8_t* at = file.data() + page * PageSize;
    // Heads and lists of slots stand at the start of a page.
    const std::size_t place = random() % 2 == 0 ? Below(random, 64) : Below(random, PageSize - 4);
    switch (random() % 12) {
    case 0:
        std::fill_n(at, PageSize, std::uint8_t{0});
        break;
    case 1:
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(std::size_t{Below(random, pages)} * PageSize),
                    PageSize, at);
        break;
    case 2:
    case 3:
        Store32(at + place, std::array<std::uint32_t, 4>{0, 0xFFFFFFFF, 0x7FFFFFFF, 1}[Below(random, 4)]);
        break;
    case 4:
    case 5:
        Store16(at + place, static_cast<std::uint32_t>(random()));
        break;
    case 6:
    case 7:
        at[place] = static_cast<std::uint8_t>(random());
        break;
    default:
        at[place] = static_cast<std::uint8_t>(at[place] ^ 1u << random() % 8);
    }
}

// One per line; harmless ones are left out.
inline std::string FaultsOf(Pager& pager) {
    std::string text;
    CheckDatabase(pager, [&](const Fault& fault) {
        if (!fault.harmless)
            text += "page " + std::to_string(fault.page) + " [" + ToUtf8(fault.table) + "] " + fault.reason +
                    "\n";
    });
    return text;
}

// Damages a file, checks and compacts it; the bounds count page reads, and the new file has no fault.
inline void TryDamage(const Bytes& sound, unsigned seed) {
    std::mt19937 random(seed);
    Bytes file = sound;
    for (unsigned hits = 1 + Below(random, 3); hits > 0; --hits)
        Damage(file, random);
    // Page reads per page, by the check and by two passes of compaction.
    const std::uint64_t most = 3000 * (file.size() / PageSize);
    CountingPager source(file);
    FaultsOf(source);
    EXPECT_LT(source.reads, most);
    source.reads = 0;
    tests::FaultyStorage storage;
    const auto target = storage.open("b.mdb", Storage::Open::CreateNew);
    NewFile made(*target, PageZero());
    std::string losses;
    try {
        CompactPages(source, made, [&](const Fault& loss) {
            losses +=
                "page " + std::to_string(loss.page) + " [" + ToUtf8(loss.table) + "] " + loss.reason + "\n";
        });
    } catch (const Error& error) {
        ADD_FAILURE() << error.what() << "\nlosses:\n" << losses;
        return;
    }
    made.finish();
    EXPECT_LT(source.reads, most);
    EXPECT_LT(made.pageCount(), source.pageCount() + 20);
    EXPECT_EQ(FaultsOf(made), "") << "losses:\n" << losses;
}

} // namespace jet::tests
