// A program's view of rows, one of which is current: a table in the order of one of its indexes, or the
// result of a query. Moves, seeks, finds, adds, edits and removes rows under the names that programs of the
// suite know.
//
// Values that were read stay as they are until the recordset moves, whatever others do; update() refuses to
// overwrite what others have changed since edit().
#pragma once

#include "jet/sql/RowCursor.h"

#include <memory>
#include <optional>

namespace jet {

class Catalog;
class Database;
class Filter;

enum class SeekComparison { Equal, Greater, GreaterOrEqual, Less, LessOrEqual };

// "=", ">", ">=", "<", "<="; throws InvalidArgument for anything else.
SeekComparison ParseSeekComparison(std::string_view text);

class Recordset {
public:
    // Table: all rows of one table, in the order of its pages or of an index. Dynaset: the rows that a query
    // selected, by their pointers: values are read on request, rows may be changed. Snapshot: the rows as
    // they were on opening, all in memory, read-only.
    enum class Kind { Table, Dynaset, Snapshot };

    // Opens the table of this name or, unless the kind is Table, the result of a SELECT. The first row, if
    // any, is current. The database outlives the recordset. Throws TableNotFound and the errors of parsing
    // and selecting.
    static Recordset open(Database& database, std::u16string_view source, Kind kind = Kind::Table);
    static Recordset open(const Catalog& catalog, std::u16string_view source, Kind kind = Kind::Table,
                          bool updatable = true);

    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    Kind kind() const { return kind_; }
    // Of the table.
    const std::u16string& name() const { return table_->name(); }
    // Whether rows can be added, edited and removed.
    bool updatable() const { return updatable_; }

    // Fields are counted from 0, in the order in which they were requested or are displayed.
    int fieldCount() const { return static_cast<int>(fields_.size()); }
    const Column& column(int field) const;
    // Declared size: characters of Text, bytes of Binary; 0 for all others.
    int size(int field) const;
    // Position of a field; throws ItemNotFound with the name.
    int field(std::u16string_view name) const;

    // Table kind only (others throw InvalidArgument): the index that orders the rows; an empty name restores
    // the order of pages. Moves to the first row. Throws IndexNotFound.
    void setIndex(std::u16string_view name);
    const std::u16string& index() const { return indexName_; }
    // Goes to the first row (Less and LessOrEqual: the last row), in index order, whose key compares in this
    // way with the given values; fewer values than index fields compare the leading fields. If there is none,
    // noMatch() is true and no row is current. In a descending index "greater" means after. Throws
    // NoIndexSet, TypeConversion. Cost: one page per level of the index.
    void seek(SeekComparison comparison, std::span<const Value> values);
    void seek(SeekComparison comparison, const Value& value) { seek(comparison, {&value, 1}); }

    // Goes to the first, last, next or previous row, from the current one, that satisfies a predicate (the
    // text after WHERE). If there is none, noMatch() is true and the current row stays. Throws the errors of
    // parsing and evaluating the predicate. Cost: looks at one row after the other.
    void findFirst(std::u16string_view predicate);
    void findLast(std::u16string_view predicate);
    void findNext(std::u16string_view predicate);
    void findPrevious(std::u16string_view predicate);
    // Whether the last seek() or find...() found nothing.
    bool noMatch() const { return noMatch_; }

    // Cost in a shared file: a check for others' changes (a few system calls) per move, unless a Reading of
    // the pager surrounds the walk. Moving discards an edit that was not saved. first and last throw
    // NoCurrentRecord if there are no rows, next at eof(), previous at bof(), and both after a seek() that
    // found nothing.
    void moveFirst();
    void moveLast();
    void moveNext();
    void movePrevious();
    bool bof() const { return place_ == Place::Before || place_ == Place::Empty; }
    bool eof() const { return place_ == Place::Behind || place_ == Place::Empty; }
    // Table: the number of rows. Otherwise the rows selected and added, minus those removed, by it.
    std::uint32_t recordCount() const;

    // The current row's value or, between addNew() or edit() and update(), the value set so far. Throws
    // NoCurrentRecord, or RecordDeleted if the row is gone.
    Value value(int field);
    Value value(std::u16string_view name) { return value(field(name)); }
    // Throws NoEdit outside addNew() and edit(), TypeConversion for a value that the field's kind cannot
    // hold. Size and rules are checked by update().
    void set(int field, Value value);
    void set(std::u16string_view name, Value value) { set(field(name), std::move(value)); }

    // Both throw CannotUpdateReadOnly.
    void addNew();
    void edit();
    // Saves the new or edited row. The current row stays current; if there was
    // none, the added row becomes current. Throws the errors of Table::insert()
    // and update(), RecordChanged if others have changed the row since edit(),
    // RecordDeleted. If it throws, the values set so far are kept for another try.
    void update();
    void cancelUpdate();
    // Removes the current row. No row is current until the next move, which goes to its neighbour.
    void remove();

    // Where the current row lies, for returning to it; throws NoCurrentRecord.
    RowPointer bookmark() const;
    // Throws NoCurrentRecord if that row is gone.
    void setBookmark(RowPointer at);
    // The row that update() saved last.
    RowPointer lastModified() const { return lastModified_; }

private:
    enum class Place { Empty, Before, On, Removed, Nowhere, Behind };
    enum class Editing { No, Adding, Changing };
    using Step = bool (RowCursor::*)();

    explicit Recordset(Table table);
    void fillSnapshot(const Filter& filter);
    void setOrder(std::unique_ptr<RowCursor> order);
    void leave();
    void move(Step step, Place end, Place otherEnd, Step enter);
    void find(std::u16string_view predicate, Step start, Step step);
    std::size_t columnOf(int field) const;
    void loadRow();
    Value storedValue(std::size_t column);
    void checkUpdatable() const;
    void begin(Editing editing);
    void saveNew();
    void saveChanged();
    void checkUnchanged(RowPointer at);

    Kind kind_ = Kind::Table;
    bool updatable_ = true;
    std::unique_ptr<Table> table_; // must not move when the recordset does
    std::vector<int> fields_;      // positions of the columns
    std::unique_ptr<RowCursor> order_;
    IndexRowCursor* indexOrder_ = nullptr; // order_, if it is one
    ListCursor* listOrder_ = nullptr;
    std::u16string indexName_;
    std::vector<std::vector<Value>> snapshot_; // per row, its fields
    Place place_ = Place::Empty;
    bool noMatch_ = false;

    Bytes bytes_; // of the current row, when loaded_
    RowView row_;
    bool loaded_ = false;

    Editing editing_ = Editing::No;
    std::vector<Value> values_; // of the row being added or edited
    std::vector<bool> set_;     // which of them were set
    std::vector<Value> longs_;  // long values as edit() read them
    std::vector<FieldChange> changes_;
    Bytes key_;
    RowPointer lastModified_;
};

} // namespace jet
