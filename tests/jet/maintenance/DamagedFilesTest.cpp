// Whatever is damaged in a file after its first page: the check and compaction end within bounds, compaction
// succeeds, and its new file has no fault. TOLVEX_DAMAGED_FILES=20000 tests that many.
#include "jet/WholeDatabase.h"
#include "jet/maintenance/RandomDamage.h"

#include "jet/transfer/Transfer.h"

#include <cstdlib>
#include <map>

namespace jet::tests {
namespace {

int rounds() {
    constexpr int usual = 400;
    const char* wanted = std::getenv("TOLVEX_DAMAGED_FILES");
    return wanted != nullptr ? std::max(std::atoi(wanted), 1) : usual;
}

TEST(DamagedFilesTest, AreSavedWithoutFaults) {
    const Bytes sound = WholeDatabase();
    MemoryPager pager(sound);
    ASSERT_EQ(FaultsOf(pager), "");
    for (int round = 0; round < rounds(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        TryDamage(sound, static_cast<unsigned>(round));
    }
}

// Rows of each user table as text.
std::map<std::u16string, std::string> contentOf(Pager& pager) {
    const Catalog catalog(pager);
    std::map<std::u16string, std::string> content;
    for (const CatalogObject& object : catalog.tables()) {
        std::string& text = content[object.name];
        ExportRows(Filter(catalog.table(object), std::nullopt), TextFormat::JsonLines,
                   [&](std::string_view piece) { text += piece; });
    }
    return content;
}

// Each byte of each definition in turn: all other tables are rescued completely, and if it is one of the
// system's, all.
TEST(DamagedFilesTest, ABrokenDefinitionCostsNoOtherTable) {
    const Bytes sound = WholeDatabase();
    MemoryPager pager(sound);
    tests::FaultyStorage storage;
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

} // namespace
} // namespace jet::tests
