// The rows of one table: walks over them, fetches one by its pointer, and inserts, changes
// and removes rows together with their index entries, long values and counters. Reading
// and writing go directly to the pager's pages; nothing about rows is cached except a hint
// about free room, so that several Table objects on one table, and a rollback, are
// harmless. A change of the table's design makes a Table stale: open a new one.
#pragma once

#include "jet/index/IndexTree.h"
#include "jet/page/UsageMap.h"
#include "jet/record/PropertyBlob.h"
#include "jet/record/Row.h"

#include <memory>
#include <optional>

namespace jet {

struct FieldChange {
    int column = 0; // position in definition().columns
    Value value;
};

// The constraints of a column's properties on its values.
struct FieldRule {
    bool required = false;
    bool zeroLength = true; // empty text is allowed
};

class TableWriter;

class Table {
public:
    // `properties`: of the table's catalogue entry; they say which fields are required and may hold empty
    // text. Usually called by Catalog::table().
    Table(Pager& pager, PageNumber definitionPage, std::u16string name = {},
          const PropertyBlob& properties = {});
    // For saving rows of a damaged table: with a repaired definition, on these pages, in ascending order, if
    // its list of them is broken.
    Table(Pager& pager, TableDefinition definition, std::u16string name,
          std::optional<std::vector<PageNumber>> pages = std::nullopt);

    Table(Table&&) noexcept;
    Table& operator=(Table&&) noexcept;
    ~Table();

    const std::u16string& name() const { return name_; }
    const TableDefinition& definition() const { return *definition_; }
    Pager& pager() const { return *pager_; }

    // The pages of its rows. Throws ReadVerification if the list of them is broken.
    std::vector<PageNumber> pages() const;
    // Number of rows, from the table's own counter.
    std::uint32_t rowCount() const;

    // Walks over the rows in page order: moves `at` to the next (previous) live row and
    // returns a view of it; a default RowPointer begins before the first (after the last).
    // False: there is none. A moved row is visited at its slot. Rows may be inserted and
    // removed during the walk. After a damaged row or page (ReadVerification) the walk can
    // continue, unless `at` has not moved: then the list of pages is broken.
    bool next(RowPointer& at, RowView& row) const;
    bool previous(RowPointer& at, RowView& row) const;
    // The row in a slot; false if there is none (any more).
    bool fetch(RowPointer at, RowView& row) const;

    // One value of a row, into reused memory.
    void value(const RowView& row, int column, Value& into) const;
    // All values, in the order of definition().columns.
    void values(const RowView& row, std::vector<Value>& into) const;

    // Adds a row. `values` has one value per column of definition().columns; they are converted to the
    // columns' kinds; a null autonumber gets the next number. On return they are the values as stored. Throws
    // DuplicateKey, NullNotAllowed, RequiredFieldEmpty, ZeroLengthNotAllowed, FieldTooSmall, TypeConversion,
    // RecordTooLarge before anything is changed.
    RowPointer insert(std::span<Value> values);
    // Changes columns of a row; the others keep their
    // stored bytes. Throws like insert(), or RecordDeleted.
    void update(RowPointer at, std::span<const FieldChange> changes);
    void remove(RowPointer at);

    // Whether rows may be changed: throws CannotUpdateReadOnly if an index has an unknown sort order.
    void checkWritable() const;

    // One of definition().realIndexes.
    IndexTree index(int realIndex) const;

private:
    PageNumber nextPage(PageNumber from) const;
    PageNumber previousPage(PageNumber before) const;
    bool view(const std::uint8_t* page, RowPointer at, RowView& row) const;
    bool isOwn(const std::uint8_t* page) const;
    TableWriter& writer();
    template<class Prepare, class Apply>
    void change(Prepare prepare, Apply apply);

    Pager* pager_;
    std::u16string name_;
    std::unique_ptr<TableDefinition> definition_; // must not move when the table does
    std::optional<std::vector<PageNumber>> pages_;
    std::vector<FieldRule> rules_;
    std::unique_ptr<TableWriter> writer_; // made for the first change
};

} // namespace jet
