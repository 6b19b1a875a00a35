// Memo and OLE values. A row holds a definition of 12 bytes: the length and the place of the data, which
// follows directly (short values), lies in one row of a page of long values, or in a chain of such rows.
#pragma once

#include "jet/base/CircleGuard.h"
#include "jet/base/Value.h"
#include "jet/page/RowSpace.h"

#include <optional>
#include <span>

namespace jet {

inline constexpr std::size_t MaximumInlineLength = 64;
inline constexpr std::size_t LongValueDefinitionLength = 12;

// A value that directly follows its definition; nothing if it lies elsewhere or the definition is bad.
std::optional<std::span<const std::uint8_t>> InlineValue(std::span<const std::uint8_t> definition);

// Reads a long value piece by piece: initially only the definition is read. The definition's bytes must
// outlive the reader. Throws ReadVerification on a bad definition, chain or page.
class LongValueReader {
public:
    LongValueReader(Pager& pager, std::span<const std::uint8_t> definition, PageNumber page);
    std::uint32_t size() const { return length_; }
    // The row of the next piece; page 0: it is in the definition itself, or there is none.
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
    CircleGuard guard_;
};

// Appends a short value (up to MaximumInlineLength bytes) to a row: its definition and the data.
void AppendInlineValue(std::span<const std::uint8_t> data, Bytes& row);

// Stores the values of one column apart from their rows.
class LongValueStore {
public:
    LongValueStore(Pager& pager, RowPointer ownedMap, RowPointer freeMap);

    // Stores a value and writes its definition (LongValueDefinitionLength bytes). Throws RecordTooLarge at 1
    // GB.
    void write(std::span<const std::uint8_t> data, std::uint8_t* definition);
    // Frees the rows of a value and the pages that become empty.
    void remove(std::span<const std::uint8_t> definition, PageNumber page);

private:
    Pager* pager_;
    RowSpace space_;
};

} // namespace jet
