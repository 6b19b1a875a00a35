// A new database equals the engine's own, byte by byte, except meaningless bytes, which are zero here.
#include "jet/table/CreateDatabase.h"

#include "jet/base/Pager.h"

#include <gtest/gtest.h>

#include <bit>

namespace {

std::uint32_t crc32(const std::uint8_t* bytes, std::size_t length) {
    std::uint32_t sum = ~0u;
    for (std::size_t i = 0; i < length; ++i) {
        sum ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return ~sum;
}

} // namespace

TEST(JetCreateDatabase, EqualsTheEnginesOwn) {
    const jet::Bytes image =
        jet::FreshDatabase(jet::Date{std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3FB4E})});
    const std::uint32_t expected[] = {0x69aaabe6, 0xf627d4c0, 0xbb9cc2ec, 0x5a5da9a2, 0xcc462a2a, 0xbc028c0a,
                                      0xd2088285, 0xeaa9fde4, 0xf4c8cfc5, 0x589e9da0, 0x40ef71e4, 0x5313d8fa,
                                      0x5313d8fa, 0x5313d8fa, 0xacc06680, 0x8f1821fe};
    ASSERT_EQ(image.size(), std::size(expected) * jet::PageSize);
    for (std::size_t page = 0; page < std::size(expected); ++page)
        EXPECT_EQ(crc32(image.data() + page * jet::PageSize, jet::PageSize), expected[page])
            << "page " << page;
}
