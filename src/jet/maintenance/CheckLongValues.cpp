#include "jet/maintenance/CheckLongValues.h"

#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"
#include "jet/record/LongValue.h"

namespace jet {

namespace {

constexpr std::size_t chainPointer = 4; // before the data of each piece of a chain

} // namespace

LongValueCheck::LongValueCheck(CheckContext& context, const TableDefinition& definition, const Column& column)
    : context_(context)
    , column_(&column)
    , name_("long values of column '" + ToUtf8(column.name) + "'") {
    pages_ = context.claimMaps(column.ownedMap, column.freeMap, definition.page, name_);
    std::erase_if(pages_.pages,
                  [&](PageNumber page) { return !context_.checkDataPage(page, datapage::LongValueOwner); });
}

void LongValueCheck::check(const RowView& row) {
    const auto definition = row.bytes(*column_);
    LongValueReader reader(context_.pager, definition, row.page());
    const bool single = definition.size() >= chainPointer && (definition[3] & 0x40) != 0;
    const bool apart = reader.at().page != 0;
    std::uint64_t stored = 0;
    bool compressed = false;
    bool first = true;
    while (reader.at().page != 0) {
        const RowPointer at = reader.at();
        if (!context_.ledger.isOwn(at.page, pages_.owner))
            Damaged(at.page, "holds a value of the " + name_ + " but is not listed among them");
        if (!used_.add(at))
            Damaged(at.page, "row " + std::to_string(at.row) + " is part of two of the " + name_);
        const auto slot = datapage::Find(context_.pager.read(at.page), at.page, at.row);
        stored += static_cast<std::size_t>(slot.length) - (single ? 0 : chainPointer);
        const auto piece = reader.next();
        if (first)
            compressed = piece.size() >= 2 && piece[0] == 0xFF && piece[1] == 0xFE;
        first = false;
        if (piece.empty())
            break;
    }
    if (!apart) {
        const auto piece = reader.next();
        compressed = piece.size() >= 2 && piece[0] == 0xFF && piece[1] == 0xFE;
        stored = piece.size();
    }
    if (stored != reader.size())
        Damaged(row.page(), "a value of the " + name_ + " is " + std::to_string(stored) +
                                " bytes long but says " + std::to_string(reader.size()));
    if (column_->type == ColumnType::Memo && !compressed && reader.size() % 2 != 0)
        Damaged(row.page(), "a value of the " + name_ + " is no text");
}

void LongValueCheck::finish() {
    for (const PageNumber page : pages_.pages) {
        context_.faults.guard(page, [&] {
            const int slots = datapage::SlotCount(context_.pager.read(page));
            for (int row = 0; row < slots; ++row) {
                const auto slot = datapage::Find(context_.pager.read(page), page, row);
                if (!slot.deleted() && !used_.contains({page, static_cast<std::uint8_t>(row)}))
                    context_.faults.fault(page, "row " + std::to_string(row) +
                                                    " is part of no value of the " + name_);
            }
        });
    }
}

} // namespace jet
