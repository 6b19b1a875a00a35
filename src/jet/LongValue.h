// Memo and OLE values. A row holds a definition of 12 bytes: the length and where the data is, which follows
// at once (short values), lies in one row of a page of long values, or in a chain of such rows.
#pragma once

#include "jet/UsageMap.h"
#include "jet/Value.h"

#include <span>

namespace jet {

inline constexpr std::size_t MaximumInlineLength = 64;

// Reads a long value piece by piece: nothing but the definition is read to begin with. The definition's bytes
// must live as long as the reader. Throws ReadVerification on a bad definition, chain or page.
class LongValueReader {
public:
    LongValueReader(Pager& pager, std::span<const std::uint8_t> definition, PageNumber page);
    std::uint32_t size() const { return length_; }
    // The row that the next piece lies in; page 0: in the definition itself, or there is none.
    RowPointer at() const { return at_; }
    // The next piece, valid until the next call or a change of pages; empty at the end.
    std::span<const std::uint8_t> next();

private:
    Pager* pager_;
    std::span<const std::uint8_t> inline_;
    RowPointer at_;
    PageNumber from_;
    std::uint32_t length_ = 0;
    std::uint32_t left_ = 0;
    bool chained_ = false;
};

// The whole value.
void ReadLongValue(Pager& pager, std::span<const std::uint8_t> definition, PageNumber page, Bytes& into);

// The rows that a value lies in, for checking; the definition's own data counts as none.
std::vector<RowPointer> LongValueRows(Pager& pager, std::span<const std::uint8_t> definition,
                                      PageNumber page);

// Stores the values of one column. Remembers nothing but where there was room last.
class LongValueStore {
public:
    LongValueStore(Pager& pager, RowPointer ownedMap, RowPointer freeMap)
        : pager_(&pager)
        , owned_(pager, ownedMap)
        , free_(pager, freeMap) {}

    // Appends the definition of a stored value to `row`. Up to MaximumInlineLength bytes follow it at once;
    // `apart`: not even those. Throws RecordTooLarge at 1 GB.
    void write(std::span<const std::uint8_t> data, bool apart, Bytes& row);
    // Frees the rows of a value and the pages that become empty.
    void remove(std::span<const std::uint8_t> definition, PageNumber page);

private:
    RowPointer put(std::span<const std::uint8_t> row);
    PageNumber newPage();

    Pager* pager_;
    UsageMap owned_;
    UsageMap free_;
    PageNumber roomy_ = 0;
};

} // namespace jet
