// Sets of pages compared with std::set, through all the forms of a map as the file grows.
#include "jet/page/UsageMap.h"

#include "jet/base/Error.h"
#include "jet/page/DataPage.h"
#include "jet/pager/MemoryPager.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace jet;

namespace {

RowPointer newMap(MemoryPager& pager) {
    const PageNumber page = pager.allocate();
    datapage::Format(pager.edit(page), 0);
    datapage::Add(pager.edit(page), Bytes(UsageMapRowLength, 0));
    return {page, datapage::Add(pager.edit(page), Bytes(UsageMapRowLength, 0))};
}

// A file of `pages` pages, all in use, in the engine's layout.
Bytes fileWithFreeMap(PageNumber pages) {
    Bytes image(pages * PageSize, 0);
    std::uint8_t* page = image.data() + PageSize;
    datapage::Format(page, 1);
    Bytes map(UsageMapRowLength, 0);
    for (PageNumber bit = pages; bit < 512; ++bit)
        map[5 + bit / 8] |= static_cast<std::uint8_t>(1 << bit % 8);
    datapage::Add(page, map);
    datapage::Add(page, Bytes(UsageMapRowLength, 0));
    return image;
}

// For any end of the file.
std::vector<PageNumber> pagesOf(const UsageMap& map) {
    std::vector<PageNumber> pages;
    for (PageNumber page = map.next(0); page != 0; page = map.next(page + 1))
        pages.push_back(page);
    return pages;
}

} // namespace

TEST(JetUsageMap, HoldsAnySetOfPages) {
    for (const PageNumber range : {400u, 3000u, 200000u}) {
        MemoryPager pager(2);
        UsageMap map(pager, newMap(pager));
        std::set<PageNumber> model;
        std::mt19937 random(range);
        const PageNumber base = random() % 5000 + 1;
        for (int step = 0; step < 3000; ++step) {
            const PageNumber page = base + random() % range;
            if (random() % 3 != 0) {
                map.add(page);
                model.insert(page);
            } else {
                map.remove(page);
                model.erase(page);
            }
            EXPECT_EQ(map.contains(page), model.count(page) == 1);
        }
        EXPECT_EQ(pagesOf(map), std::vector<PageNumber>(model.begin(), model.end()));
        std::vector<PageNumber> backwards;
        for (PageNumber page = map.previous(~0u); page != 0; page = map.previous(page))
            backwards.push_back(page);
        EXPECT_EQ(backwards, std::vector<PageNumber>(model.rbegin(), model.rend()));
        EXPECT_EQ(map.bitmapPages().empty(), range == 400);
        map.clear();
        EXPECT_EQ(map.next(0), 0u);
    }
}

TEST(JetUsageMap, WindowOfAnInlineMapFollowsItsPages) {
    MemoryPager pager(2);
    UsageMap map(pager, newMap(pager));
    for (PageNumber page : {100001u, 100300u, 99990u})
        map.add(page);
    EXPECT_TRUE(map.bitmapPages().empty());
    EXPECT_EQ(pagesOf(map), (std::vector<PageNumber>{99990, 100001, 100300}));
}

// A list with pages beyond the end of the file ends with an error there, however long it is: 17 times the
// same bitmap would be half a million pages, and a first page near 2^32 wraps around to 0.
TEST(JetUsageMap, EndsWithTheFile) {
    MemoryPager pager(10);
    const RowPointer row = newMap(pager);
    UsageMap map(pager, row);
    for (const PageNumber page : {3u, 9u})
        map.add(page);
    EXPECT_EQ(map.pages(), (std::vector<PageNumber>{3, 9}));
    map.add(pager.pageCount());
    EXPECT_THROW(map.pages(), Error);

    std::uint8_t* bytes =
        pager.edit(row.page) + datapage::Find(pager.read(row.page), row.page, row.row).offset;
    Store32(bytes + 1, 0xFFFFFFF8);
    EXPECT_THROW(map.next(0), Error);
    EXPECT_THROW(map.contains(5), Error);

    bytes[0] = 1;
    const PageNumber bitmap = pager.allocate();
    pager.edit(bitmap)[0] = 5;
    pager.edit(bitmap)[4] = 8;
    for (int entry = 0; entry < 17; ++entry)
        Store32(bytes + 1 + 4 * entry, bitmap);
    EXPECT_EQ(map.next(0), 3u);
    EXPECT_THROW(map.pages(), Error);
}

TEST(JetFreeMap, GrowsWithTheFileAndGivesBackWhatWasFreed) {
    MemoryPager pager(fileWithFreeMap(16));
    const auto rowLength = [&] { return datapage::Find(pager.read(1), 1, 0).length; };
    const auto bitOf = [&](PageNumber page) { return FreeMap(pager, {1, 0}).isFree(page); };

    // The engine's lengths of the map at these sizes.
    for (PageNumber next = 16; next < 512; ++next)
        EXPECT_EQ(pager.allocate(), next);
    EXPECT_EQ(rowLength(), 69);
    while (pager.pageCount() < 538)
        pager.allocate();
    EXPECT_EQ(rowLength(), 73);
    EXPECT_TRUE(bitOf(543));
    while (pager.pageCount() < 746)
        pager.allocate();
    EXPECT_EQ(rowLength(), 101);
    EXPECT_EQ(datapage::Find(pager.read(1), 1, 1).length, 69);

    std::set<PageNumber> freed{20, 21, 300, 745};
    for (const PageNumber page : freed)
        pager.release(page);
    EXPECT_THROW(pager.release(20), Error);
    while (!freed.empty())
        EXPECT_EQ(freed.erase(pager.allocate()), 1u);
    EXPECT_EQ(pager.pageCount(), 746u);

    // When it outgrows its page the map gets pages of its own, which are not free themselves.
    std::set<PageNumber> given;
    while (pager.pageCount() < 66000)
        EXPECT_TRUE(given.insert(pager.allocate()).second);
    EXPECT_EQ(pager.read(1)[datapage::Find(pager.read(1), 1, 0).offset], 1);
    for (const PageNumber bitmap : UsageMap(pager, {1, 0}).bitmapPages()) {
        EXPECT_EQ(given.count(bitmap), 0u);
        EXPECT_FALSE(bitOf(bitmap));
    }
    for (PageNumber page = 0; page < pager.pageCount(); ++page)
        EXPECT_FALSE(bitOf(page)) << page;
    pager.release(40000);
    pager.release(5000);
    EXPECT_EQ(pager.allocate(), 5000u);
    EXPECT_EQ(pager.allocate(), 40000u);
}
