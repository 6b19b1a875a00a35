#include "jet/table/Table.h"

#include "jet/base/Damage.h"
#include "jet/index/KeyEncoding.h"
#include "jet/page/DataPage.h"
#include "jet/table/TableWriter.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint8_t LastSlot = 254;
constexpr int PointerLength = 4;

} // namespace

Table::Table(Pager& pager, PageNumber definitionPage, std::u16string name, const PropertyBlob& properties)
    : pager_(&pager)
    , name_(std::move(name)) {
    const Reading reading(pager);
    definition_ = std::make_unique<TableDefinition>(ReadTableDefinition(pager, definitionPage));
    const bool isSystem = definition_->type == TableDefinition::SystemTable;
    for (const Column& column : definition_->columns)
        rules_.push_back({properties.flag(column.name, u"Required"),
                          isSystem || !column.isText() || properties.flag(column.name, u"AllowZeroLength")});
}

Table::Table(Pager& pager, TableDefinition definition, std::u16string name,
             std::optional<std::vector<PageNumber>> pages)
    : pager_(&pager)
    , name_(std::move(name))
    , definition_(std::make_unique<TableDefinition>(std::move(definition)))
    , pages_(std::move(pages))
    , rules_(definition_->columns.size()) {}

Table::Table(Table&&) noexcept = default;
Table& Table::operator=(Table&&) noexcept = default;
Table::~Table() = default;

bool Table::isOwn(const std::uint8_t* page) const {
    return datapage::IsDataPage(page) && datapage::Owner(page) == definition_->page;
}

// The row in a slot of a page of this table; false if there is none.
bool Table::view(const std::uint8_t* page, RowPointer at, RowView& row) const {
    datapage::Slot slot = datapage::Find(page, at.page, at.row);
    if (slot.hidden)
        return false;
    PageNumber number = at.page;
    if (slot.pointer) {
        if (slot.length < PointerLength)
            Damaged(number, "row " + std::to_string(at.row) + " is no pointer");
        const RowPointer target = LoadRowPointer(page + slot.offset);
        number = target.page;
        page = pager_->read(number);
        if (!isOwn(page))
            Damaged(at.page, "row " + std::to_string(at.row) + " points to a page of something else");
        slot = datapage::Find(page, number, target.row);
        if (!slot.hidden || slot.pointer)
            Damaged(at.page, "row " + std::to_string(at.row) + " points to no row");
    }
    row.moveTo(datapage::BytesOf(page, slot), number, definition_->variableColumns > 0);
    return true;
}

std::vector<PageNumber> Table::pages() const {
    return pages_ ? *pages_ : UsageMap(*pager_, definition_->ownedMap).pages();
}

// The lowest page from `from` on, and the highest one below `before`; 0: there is none.
PageNumber Table::nextPage(PageNumber from) const {
    if (!pages_)
        return UsageMap(*pager_, definition_->ownedMap).next(from);
    const auto page = std::lower_bound(pages_->begin(), pages_->end(), from);
    return page == pages_->end() ? 0 : *page;
}

PageNumber Table::previousPage(PageNumber before) const {
    if (!pages_)
        return UsageMap(*pager_, definition_->ownedMap).previous(before);
    const auto page = std::lower_bound(pages_->begin(), pages_->end(), before);
    return page == pages_->begin() ? 0 : *(page - 1);
}

std::uint32_t Table::rowCount() const {
    return TableCounters::rowCount(*pager_, definition_->page);
}

bool Table::next(RowPointer& at, RowView& row) const {
    const Reading reading(*pager_);
    PageNumber number = at.page;
    int slot = at.row + 1;
    bool entering = false;
    for (;;) {
        if (number == 0 || entering) {
            number = nextPage(number + 1);
            if (number == 0)
                return false;
            slot = 0;
            if (number >= pager_->pageCount()) // and so does all that follows
                Damaged(number, "of table '" + ToUtf8(name_) + "' lies beyond the end of the file");
            at = {number, LastSlot}; // if the page is damaged the walk continues after it
        }
        const std::uint8_t* page = pager_->read(number);
        if (isOwn(page)) {
            if (slot == 0 && datapage::ClaimedSlots(page) > datapage::MaximumSlots)
                datapage::RefuseSlot(page, number, slot);
            for (const int slots = datapage::SlotCount(page); slot < slots; ++slot) {
                at = {number, static_cast<std::uint8_t>(slot)};
                if (view(page, at, row))
                    return true;
            }
        } else if (slot == 0) {
            Damaged(number, "is no page of table '" + ToUtf8(name_) + "'");
        } // else it was freed since the walk came to it
        entering = true;
    }
}

bool Table::previous(RowPointer& at, RowView& row) const {
    const Reading reading(*pager_);
    PageNumber number = at.page;
    int slot = at.row - 1;
    bool entering = number == 0;
    for (;;) {
        if (entering) {
            number = previousPage(number == 0 ? pager_->pageCount() : number);
            if (number == 0)
                return false;
            at = {number, 0};
        }
        const std::uint8_t* page = pager_->read(number);
        if (isOwn(page)) {
            if (entering) {
                if (datapage::ClaimedSlots(page) > datapage::MaximumSlots)
                    datapage::RefuseSlot(page, number, 0);
                slot = datapage::SlotCount(page) - 1;
            }
            for (; slot >= 0; --slot) {
                at = {number, static_cast<std::uint8_t>(slot)};
                if (view(page, at, row))
                    return true;
            }
        } else if (entering) {
            Damaged(number, "is no page of table '" + ToUtf8(name_) + "'");
        }
        entering = true;
    }
}

bool Table::fetch(RowPointer at, RowView& row) const {
    const Reading reading(*pager_);
    if (at.page == 0 || at.page >= pager_->pageCount())
        return false;
    const std::uint8_t* page = pager_->read(at.page);
    return isOwn(page) && view(page, at, row);
}

void Table::value(const RowView& row, int column, Value& into) const {
    DecodeColumn(*pager_, row, definition_->columns[static_cast<std::size_t>(column)], into);
}

void Table::values(const RowView& row, std::vector<Value>& into) const {
    into.resize(definition_->columns.size());
    for (std::size_t i = 0; i < into.size(); ++i)
        DecodeColumn(*pager_, row, definition_->columns[i], into[i]);
}

IndexTree Table::index(int realIndex) const {
    const RealIndex& index = definition_->realIndexes.at(static_cast<std::size_t>(realIndex));
    return IndexTree(*pager_, index.root, definition_->page, UsageMap(*pager_, index.pages));
}

void Table::checkWritable() const {
    for (const RealIndex& index : definition_->realIndexes) {
        const KeyEncoder encoder(*definition_, index); // throws if it names a missing column
        for (const KeyEncoder::Part& part : encoder.parts()) {
            const Column& column = definition_->columns[static_cast<std::size_t>(part.column)];
            if (!IsOrderKnown(column))
                throw Error(ErrorNumber::CannotUpdateReadOnly,
                            "table '" + ToUtf8(name_) + "' has an index on '" + ToUtf8(column.name) +
                                "' in an order that is not known here");
        }
    }
}

TableWriter& Table::writer() {
    if (writer_ == nullptr) {
        checkWritable();
        writer_ = std::make_unique<TableWriter>(*pager_, *definition_, rules_);
    }
    return *writer_;
}

// Runs the two halves of a change as one transaction. If the first one refuses, nothing has changed yet, and
// a transaction around this one continues.
template<class Prepare, class Apply>
void Table::change(Prepare prepare, Apply apply) {
    Changing change(*pager_);
    try {
        prepare(writer());
    } catch (const Error&) {
        change.commit();
        throw;
    }
    apply(writer());
    change.commit();
}

RowPointer Table::insert(std::span<Value> values) {
    RowPointer at;
    change([&](TableWriter& writer) { writer.prepareInsert(values); },
           [&](TableWriter& writer) { at = writer.insert(); });
    return at;
}

void Table::update(RowPointer at, std::span<const FieldChange> changes) {
    change(
        [&](TableWriter& writer) {
            RowView row;
            if (!fetch(at, row))
                throw Error(ErrorNumber::RecordDeleted);
            writer.prepareUpdate(row, changes);
        },
        [&](TableWriter& writer) { writer.update(at); });
}

void Table::remove(RowPointer at) {
    change(
        [&](TableWriter& writer) {
            RowView row;
            if (!fetch(at, row))
                throw Error(ErrorNumber::RecordDeleted);
            writer.prepareRemove(row);
        },
        [&](TableWriter& writer) { writer.remove(at); });
}

} // namespace jet
