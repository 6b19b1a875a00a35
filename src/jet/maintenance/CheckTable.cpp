#include "jet/maintenance/CheckTable.h"

#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"

namespace jet {

namespace {

std::string rowText(RowPointer at) {
    return "row " + std::to_string(at.row);
}

} // namespace

TableCheck::TableCheck(CheckContext& context, const Table& table)
    : context_(context)
    , table_(table)
    , indexes_(context, table) {}

void TableCheck::run() {
    const TableDefinition& definition = table_.definition();
    pages_ = context_.claimMaps(definition.ownedMap, definition.freeMap, definition.page, "rows");
    for (const Column& column : definition.columns) {
        if (column.isLong())
            longValues_.emplace_back(context_, definition, column);
    }
    for (const PageNumber page : pages_.pages)
        checkPage(page);
    moved_.forEachNotIn(targets_, [&](RowPointer at) {
        context_.faults.fault(at.page, rowText(at) + " was moved here, but no row points to it");
    });
    for (LongValueCheck& check : longValues_)
        check.finish();
    if (rows_ != definition.rowCount)
        context_.faults.fault(definition.page, "says that the table has " +
                                                   std::to_string(definition.rowCount) + " rows instead of " +
                                                   std::to_string(rows_));
    indexes_.run();
}

void TableCheck::checkPage(PageNumber page) {
    if (!context_.checkDataPage(page, table_.definition().page))
        return;
    const int slots = datapage::SlotCount(context_.pager.read(page));
    for (int row = 0; row < slots; ++row) {
        const RowPointer at{page, static_cast<std::uint8_t>(row)};
        context_.faults.guard(page, [&] { checkSlot(context_.pager.read(page), at); });
    }
}

void TableCheck::checkSlot(const std::uint8_t* page, RowPointer at) {
    const datapage::Slot slot = datapage::Find(page, at.page, at.row);
    if (slot.deleted())
        return;
    if (slot.hidden) {
        moved_.add(at);
        return;
    }
    ++rows_;
    if (slot.pointer && slot.length >= 4) {
        const RowPointer target = LoadRowPointer(page + slot.offset);
        if (!context_.ledger.isOwn(target.page, pages_.owner))
            Damaged(at.page, rowText(at) + " points to page " + std::to_string(target.page) +
                                 ", which is none of the table");
        if (!targets_.add(target))
            Damaged(at.page, rowText(at) + " points to the same row as another one");
    }
    RowView row;
    if (table_.fetch(at, row))
        checkRow(at, row);
}

void TableCheck::checkValue(RowPointer at, const Column& column, const RowView& row) {
    DecodeStored(column, row.bytes(column), row.page(), value_);
    std::size_t length = 0;
    if (const auto* text = std::get_if<std::u16string>(&value_))
        length = text->size() * 2;
    else if (column.type == ColumnType::Binary)
        length = row.bytes(column).size();
    if (length > column.size)
        Damaged(at.page, rowText(at) + " holds more in column '" + ToUtf8(column.name) + "' than its size");
}

void TableCheck::checkRow(RowPointer at, RowView row) {
    const TableDefinition& definition = table_.definition();
    // Reading long values may push the row's page out of the cache.
    copy_.assign(row.all().begin(), row.all().end());
    row = RowView(copy_, row.page(), definition.variableColumns > 0);
    const int count = Load16(copy_.data());
    if (count > definition.columnNumbers)
        context_.faults.fault(at.page, rowText(at) + " has " + std::to_string(count) + " columns");
    for (const Column& column : definition.columns) {
        context_.faults.guard(at.page, [&] {
            if (!column.isLong() && column.type != ColumnType::Boolean && !row.isNull(column))
                checkValue(at, column, row);
        });
    }
    for (LongValueCheck& check : longValues_) {
        context_.faults.guard(at.page, [&] {
            if (!row.isNull(check.column()))
                check.check(row);
        });
    }
    indexes_.addRow(at, row);
}

} // namespace jet
