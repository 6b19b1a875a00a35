// Whatever is damaged in a file behind its first page: the check and compaction end within bounds, compaction
// succeeds, and the file it makes has no fault. TOLVEX_DAMAGED_FILES=20000 tries that many.
#include "jet/WholeDatabase.h"

#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/Error.h"
#include "jet/FaultyStorage.h"
#include "jet/NewFile.h"
#include "jet/PageZero.h"
#include "jet/Samples.h"
#include "jet/Transfer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <map>
#include <random>

namespace jet::tests {
namespace {

// Counts the pages that are read.
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

using Random = std::mt19937;

std::uint32_t below(Random& random, std::size_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
}

// One thing that goes wrong with a file, on a page behind the first. Most pages hold rows, so that those of
// other kinds are chosen as often by themselves.
void damage(Bytes& file, Random& random) {
    const std::size_t pages = file.size() / PageSize;
    std::size_t page = 1 + below(random, pages - 1);
    const std::uint8_t kind = std::array<std::uint8_t, 4>{1, 2, 4, 0}[below(random, 4)];
    for (std::size_t tried = 0; kind != 0 && tried < pages && file[page * PageSize] != kind; ++tried)
        page = 1 + page % (pages - 1);
    std::uint8_t* at = file.data() + page * PageSize;
    // Heads and lists of slots stand at the start of a page.
    const std::size_t place = random() % 2 == 0 ? below(random, 64) : below(random, PageSize - 4);
    switch (random() % 12) {
    case 0:
        std::fill_n(at, PageSize, std::uint8_t{0});
        break;
    case 1:
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(below(random, pages) * PageSize), PageSize,
                    at);
        break;
    case 2:
    case 3:
        Store32(at + place, std::array<std::uint32_t, 4>{0, 0xFFFFFFFF, 0x7FFFFFFF, 1}[below(random, 4)]);
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

std::string faultsOf(Pager& pager) {
    std::string text;
    CheckDatabase(pager, [&](const Fault& fault) {
        if (!fault.harmless)
            text += "page " + std::to_string(fault.page) + " [" + ToUtf8(fault.table) + "] " + fault.reason +
                    "\n";
    });
    return text;
}

int rounds() {
    constexpr int usual = 400;
    const char* wanted = std::getenv("TOLVEX_DAMAGED_FILES");
    return wanted != nullptr ? std::max(std::atoi(wanted), 1) : usual;
}

void tryDamage(const Bytes& sound, unsigned seed) {
    Random random(seed);
    Bytes file = sound;
    for (unsigned hits = 1 + below(random, 3); hits > 0; --hits)
        damage(file, random);
    // Pages read for each page that there is, by the check and by two passes of compaction.
    const std::uint64_t most = 3000 * (file.size() / PageSize);
    CountingPager source(file);
    faultsOf(source);
    EXPECT_LT(source.reads, most);
    source.reads = 0;
    test::FaultyStorage storage;
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
    EXPECT_EQ(faultsOf(made), "") << "losses:\n" << losses;
}

TEST(DamagedFilesTest, AreSavedWithoutFaults) {
    const Bytes sound = WholeDatabase();
    MemoryPager pager(sound);
    ASSERT_EQ(faultsOf(pager), "");
    for (int round = 0; round < rounds(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        tryDamage(sound, static_cast<unsigned>(round));
    }
}

// Rows of each table of the user as text.
std::map<std::u16string, std::string> contentOf(Pager& pager) {
    const Catalog catalog(pager);
    std::map<std::u16string, std::string> content;
    for (const CatalogObject& object : catalog.tables()) {
        std::string& text = content[object.name];
        ExportRows(Selection(catalog.table(object), std::nullopt), TextFormat::JsonLines,
                   [&](std::string_view piece) { text += piece; });
    }
    return content;
}

// Each byte of each definition in turn: all other tables are saved whole, and if it is one of the system's,
// all.
TEST(DamagedFilesTest, ABrokenDefinitionCostsNoOtherTable) {
    const Bytes sound = WholeDatabase();
    MemoryPager pager(sound);
    test::FaultyStorage storage;
    const auto compacted = [&](Pager& from, const std::string& name) {
        const auto target = storage.open(name, Storage::Open::CreateNew);
        NewFile made(*target, PageZero());
        CompactPages(from, made, [](const Fault&) {});
        return contentOf(made);
    };
    const auto expected = compacted(pager, "sound");
    ASSERT_EQ(expected.size(), 3u);
    const std::size_t step = rounds() > 400 ? 1 : 17;
    std::size_t tried = 0, whole = 0;
    for (const CatalogObject& object : Catalog(pager).objects()) {
        if (!object.isTable())
            continue;
        const auto page = static_cast<PageNumber>(object.id);
        const std::size_t length = TableDefinitionLength(pager, page);
        for (std::size_t at = 0; at < length; at += step) {
            SCOPED_TRACE(ToUtf8(object.name) + " byte " + std::to_string(at));
            Bytes file = sound;
            std::uint8_t& byte = file[std::size_t{page} * PageSize + at];
            byte = at % 3 == 0 ? 0xFF : static_cast<std::uint8_t>(byte ^ 1u << at % 8);
            MemoryPager damaged(file);
            auto content = compacted(damaged, ToUtf8(object.name) + std::to_string(at));
            ++tried;
            whole += content == expected ? 1u : 0u;
            if (object.isSystem()) {
                EXPECT_EQ(content, expected);
            }
            for (const auto& [name, text] : expected) {
                EXPECT_TRUE(name == object.name || content[name] == text) << ToUtf8(name);
            }
        }
    }
    EXPECT_GT(whole, tried / 2) << tried; // what follows from the rest of a definition is not lost
}

TEST(DamagedFilesTest, OfTheEngineAreSavedWithoutFaults) {
    NEED_SAMPLES();
    for (const char* name : Jet4Samples) {
        const Bytes sound = ReadSample(name);
        for (int round = 0; round < rounds() / 10; ++round) {
            SCOPED_TRACE(std::string(name) + " seed " + std::to_string(round));
            tryDamage(sound, static_cast<unsigned>(round));
        }
    }
}

} // namespace
} // namespace jet::tests
