// A program's view of rows, one of which is current: a table in the order of one of its indexes, or what a
// query selects. Moving, seeking, finding, adding, editing and removing rows under the names that programs
// of the suite know.
#pragma once

#include "jet/IndexTree.h"
#include "jet/KeyEncoding.h"
#include "jet/Table.h"

#include <optional>

namespace jet {

enum class Comparison { Equal, Greater, GreaterOrEqual, Less, LessOrEqual };

// "=", ">", ">=", "<", "<="; throws InvalidArgument for anything else.
Comparison ParseComparison(std::string_view text);

class Recordset {
public:
    // Table: all rows of one table, in the order of its pages or of an index. Dynaset: the rows that a query
    // selected, by their pointers: values are read when they are asked for, rows may be changed. Snapshot:
    // the rows as they were when it was opened, for reading.
    enum class Kind { Table, Dynaset, Snapshot };

    // A table; the first row is current, if there is one.
    explicit Recordset(Table table);

    Kind kind() const { return kind_; }
    // Whether rows can be added, edited and removed.
    bool updatable() const;
    const Table& table() const { return table_; }
    // Position of a field; throws ItemNotFound with the name.
    int field(std::u16string_view name) const;

    // Table kind only: the index that orders the rows; an empty name goes back to the order of pages. Moves
    // to the first row. Throws IndexNotFound.
    void setIndex(std::u16string_view name);
    // Goes to the first row (last row for Less and LessOrEqual), in the order of the index, whose key
    // compares so with the given values; fewer values than the index has fields compare the leading ones. If
    // there is none noMatch() is true and no row is current. Throws NoIndexSet.
    void seek(Comparison comparison, std::span<const Value> values);
    bool noMatch() const { return noMatch_; }

    // Each throws NoCurrentRecord when it starts from no row (first and last: when there is none at all).
    void moveFirst();
    void moveLast();
    void moveNext();
    void movePrevious();
    bool bof() const { return place_ == Place::Before || place_ == Place::Empty; }
    bool eof() const { return place_ == Place::Behind || place_ == Place::Empty; }
    // Table: the number of rows. Otherwise the number of rows selected that were not removed through here.
    std::uint32_t recordCount() const;

    // The current row's value, or, between addNew() or edit() and update(), the value set so far. Throws
    // NoCurrentRecord, or RecordDeleted if the row is gone.
    Value value(int field);
    Value value(std::u16string_view name) { return value(field(name)); }
    // Throws NoEdit outside addNew() or edit(). Converted to the field's kind, checked when the row is saved.
    void set(int field, Value value);
    void set(std::u16string_view name, Value value) { set(field(name), std::move(value)); }

    void addNew();
    void edit();
    // Saves the new or edited row; the row that was current stays current. If it throws, the values set so
    // far are kept for another try.
    void update();
    void cancelUpdate();
    // Removes the current row. No row is current until the next move, which goes to its neighbour.
    void remove();

    // Where the current row lies, to come back to it; setBookmark() throws NoCurrentRecord if it is gone.
    RowPointer bookmark() const;
    void setBookmark(RowPointer at);
    // The row that update() saved last.
    RowPointer lastModified() const { return lastModified_; }

private:
    enum class Place { Empty, Before, On, Behind, Nowhere };
    enum class Editing { No, Adding, Changing };

    Kind kind_ = Kind::Table;
    Table table_;
    std::optional<IndexCursor> cursor_;
    KeyEncoder encoder_;
    RowPointer at_;
    Place place_ = Place::Empty;
    bool noMatch_ = false;
    Editing editing_ = Editing::No;
    std::vector<Value> values_;
    std::vector<FieldChange> changes_;
    RowPointer lastModified_;
};

} // namespace jet
