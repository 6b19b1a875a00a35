// A database file with only a header and a map of free pages, for tests of pages without tables.
#pragma once

#include "jet/base/Value.h"
#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"
#include "jet/page/UsageMap.h"

#include <cstring>

namespace jet::tests {

// Pages 0 and 1, then `pages` empty ones in use.
inline Bytes RawFile(PageNumber pages = 2, const PageZero& header = {}) {
    Bytes image(static_cast<std::size_t>(pages + 2) * PageSize, 0);
    EncodePageZero(header, {image.data(), PageSize});
    datapage::Format(image.data() + PageSize, 1);
    Bytes map(UsageMapRowLength, 0);
    for (PageNumber page = pages + 2; page < 512; ++page)
        map[5 + page / 8] = static_cast<std::uint8_t>(map[5 + page / 8] | 1u << page % 8);
    datapage::Add(image.data() + PageSize, map);
    return image;
}

// Fills a page from its second byte on with a number, and reads that number back; -1: torn.
inline void Fill(std::uint8_t* page, std::uint32_t value) {
    for (std::size_t at = 0; at < PageSize; at += 4)
        Store32(page + at, value);
}

inline std::int64_t FilledWith(const std::uint8_t* page) {
    for (std::size_t at = 4; at < PageSize; at += 4)
        if (std::memcmp(page + at, page, 4) != 0)
            return -1;
    return Load32(page);
}

} // namespace jet::tests
