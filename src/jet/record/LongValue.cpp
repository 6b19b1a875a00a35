#include "jet/record/LongValue.h"

#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint32_t LengthMask = 0x3FFFFFFF;
constexpr std::uint32_t InlineKind = 0x80000000;
constexpr std::uint32_t SingleKind = 0x40000000;
constexpr std::size_t MaximumSingle = 3800; // longer ones become a chain
constexpr std::size_t PointerLength = 4;
constexpr std::size_t ChunkData = 4072; // of each row of a chain but the last
constexpr int StampField = 8;           // in the head of the first page of a chain
const char* const circular = "a long value runs in a circle";

struct Definition {
    std::uint32_t length = 0;
    bool isInline = false;
    bool isSingle = false;
    RowPointer first;
};

Definition parse(std::span<const std::uint8_t> bytes, PageNumber page) {
    if (bytes.size() < LongValueDefinitionLength)
        Damaged(page, "a long value has no definition");
    const std::uint32_t head = Load32(bytes.data());
    Definition definition{head & LengthMask, (head & InlineKind) != 0, (head & SingleKind) != 0,
                          LoadRowPointer(bytes.data() + 4)};
    if (definition.isInline && definition.length > bytes.size() - LongValueDefinitionLength)
        Damaged(page, "a long value is longer than its row");
    return definition;
}

std::span<const std::uint8_t> rowAt(Pager& pager, RowPointer at) {
    const std::uint8_t* page = pager.read(at.page);
    if (!datapage::IsDataPage(page) || datapage::Owner(page) != datapage::LongValueOwner)
        Damaged(at.page, "holds no long values");
    const datapage::Slot slot = datapage::Find(page, at.page, at.row);
    if (slot.hidden || slot.pointer)
        Damaged(at.page, "row " + std::to_string(at.row) + " holds no long value");
    return datapage::BytesOf(page, slot);
}

// Where a piece of a chain refers to the next one.
RowPointer followingPiece(std::span<const std::uint8_t> piece, RowPointer at) {
    if (piece.size() <= PointerLength)
        Damaged(at.page, "row " + std::to_string(at.row) + " holds no piece of a long value");
    return LoadRowPointer(piece.data());
}

// The rows that hold a value; none if it follows its definition.
std::vector<RowPointer> rowsOf(Pager& pager, std::span<const std::uint8_t> definition, PageNumber page) {
    const Definition parsed = parse(definition, page);
    std::vector<RowPointer> rows;
    if (parsed.isInline || parsed.first.page == 0)
        return rows;
    CircleGuard guard;
    for (RowPointer at = parsed.first; at.page != 0;) {
        if (guard.meets(at))
            Damaged(at.page, circular);
        rows.push_back(at);
        const auto bytes = rowAt(pager, at);
        at = parsed.isSingle ? RowPointer{} : followingPiece(bytes, at);
    }
    return rows;
}

void putDefinition(std::uint8_t* at, std::uint32_t head, RowPointer first, std::uint32_t stamp) {
    Store32(at, head);
    StoreRowPointer(at + 4, first);
    Store32(at + 8, stamp);
}

} // namespace

std::optional<std::span<const std::uint8_t>> InlineValue(std::span<const std::uint8_t> definition) {
    if (definition.size() < LongValueDefinitionLength)
        return std::nullopt;
    const std::uint32_t head = Load32(definition.data());
    const auto data = definition.subspan(LongValueDefinitionLength);
    if ((head & InlineKind) == 0 || (head & LengthMask) > data.size())
        return std::nullopt;
    return data.first(head & LengthMask);
}

LongValueReader::LongValueReader(Pager& pager, std::span<const std::uint8_t> definition, PageNumber page)
    : pager_(&pager)
    , from_(page) {
    const Definition parsed = parse(definition, page);
    length_ = left_ = parsed.length;
    if (parsed.isInline) {
        inline_ = definition.subspan(LongValueDefinitionLength, length_);
        return;
    }
    at_ = parsed.first;
    chained_ = !parsed.isSingle;
    if (length_ / PageSize > pager.pageCount())
        Damaged(page, "a long value is longer than the file");
}

std::span<const std::uint8_t> LongValueReader::next() {
    if (left_ == 0)
        return {};
    if (!inline_.empty()) {
        left_ = 0;
        return inline_;
    }
    if (at_.page == 0)
        Damaged(from_, "a long value ends too early");
    const RowPointer at = at_;
    from_ = at.page;
    std::span<const std::uint8_t> piece = rowAt(*pager_, at);
    at_ = {};
    if (chained_) {
        if (guard_.meets(at))
            Damaged(at.page, circular);
        at_ = followingPiece(piece, at);
        piece = piece.subspan(PointerLength);
    }
    piece = piece.first(std::min<std::size_t>(piece.size(), left_));
    left_ -= static_cast<std::uint32_t>(piece.size());
    if (piece.empty())
        Damaged(at.page, "a long value ends too early");
    return piece;
}

void AppendInlineValue(std::span<const std::uint8_t> data, Bytes& row) {
    const std::size_t at = row.size();
    row.resize(at + LongValueDefinitionLength);
    putDefinition(row.data() + at, static_cast<std::uint32_t>(data.size()) | InlineKind, {}, 0);
    row.insert(row.end(), data.begin(), data.end());
}

LongValueStore::LongValueStore(Pager& pager, RowPointer ownedMap, RowPointer freeMap)
    : pager_(&pager)
    , space_(pager, datapage::LongValueOwner, ownedMap, freeMap) {}

void LongValueStore::write(std::span<const std::uint8_t> data, std::uint8_t* definition) {
    if (data.size() > LengthMask)
        throw Error(ErrorNumber::RecordTooLarge);
    const auto length = static_cast<std::uint32_t>(data.size());
    if (data.size() <= MaximumSingle)
        return putDefinition(definition, length | SingleKind, space_.put(data, 0), 0);

    // Every piece except the last fills a page alone; the pages are allocated in reading order.
    const std::size_t pieces = (data.size() + ChunkData - 1) / ChunkData;
    std::vector<PageNumber> pages;
    for (std::size_t piece = 0; piece < pieces; ++piece)
        pages.push_back(space_.newPage());
    Bytes chunk;
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        const auto part =
            data.subspan(piece * ChunkData, std::min(ChunkData, data.size() - piece * ChunkData));
        const PageNumber following = piece + 1 < pieces ? pages[piece + 1] : 0;
        chunk.resize(PointerLength);
        StoreRowPointer(chunk.data(), {following, 0});
        chunk.insert(chunk.end(), part.begin(), part.end());
        datapage::Add(pager_->edit(pages[piece]), chunk);
    }
    // The first page and the definition carry the same stamp; the page's number is used, as no two values
    // share it.
    Store32(pager_->edit(pages.front()) + StampField, pages.front());
    if (pieces > 1)
        space_.noteRoom(pages.back());
    putDefinition(definition, length, {pages.front(), 0}, pages.front());
}

void LongValueStore::remove(std::span<const std::uint8_t> definition, PageNumber page) {
    for (const RowPointer at : rowsOf(*pager_, definition, page))
        space_.remove(at);
}

} // namespace jet
