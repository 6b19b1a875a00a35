// Changes the design of a database: adds, drops and renames tables, fields and indexes, on empty tables and
// on filled ones. Properties, permissions, relationships and objects of other programs are kept. Open Table
// objects of a changed table are stale.
#pragma once

#include "jet/table/Catalog.h"

namespace jet {

struct FieldDesign {
    std::u16string name;
    ColumnType type = ColumnType::Long;
    int size = 0;            // Text: characters; Binary: bytes; 0 means 255. Ignored for other kinds
    bool autonumber = false; // Long only
    bool required = false;
    bool allowZeroLength = false; // Text and Memo
    int precision = 18;           // Numeric
    int scale = 0;
    std::vector<Property> properties = {}; // others ("DefaultValue", "Description", ...)
};

struct IndexField {
    std::u16string name;
    bool descending = false;
};

struct IndexDesign {
    std::u16string name;
    std::vector<IndexField> fields;
    bool unique = false;
    bool primary = false;     // unique and without nulls
    bool required = false;    // no nulls
    bool ignoreNulls = false; // rows whose fields are all null have no entry
};

struct TableDesign {
    std::u16string name;
    std::vector<FieldDesign> fields;
    std::vector<IndexDesign> indexes;
    std::vector<Property> properties; // of the table itself
};

// Each of these is one transaction, or an undoable part of the running one.

// Throws TableExists, FieldExists, IndexExists, TooManyFields, TooManyIndexes, ItemNotFound (a field of an
// index), or InvalidArgument (name or size). Returns the page of the definition.
PageNumber AppendTable(Catalog& catalog, const TableDesign& design);
// A table that takes part in a relationship cannot be dropped: UsedInRelationship.
void DropTable(Catalog& catalog, std::u16string_view table);
void RenameTable(Catalog& catalog, std::u16string_view table, std::u16string_view name);

// Existing rows have null in a new field, or false, or are numbered in an autonumber.
void AppendField(Catalog& catalog, std::u16string_view table, const FieldDesign& field);
// A field that an index uses cannot be dropped: UsedInIndex.
void DropField(Catalog& catalog, std::u16string_view table, std::u16string_view field);
void RenameField(Catalog& catalog, std::u16string_view table, std::u16string_view field,
                 std::u16string_view name);

// On a filled table the index is built from its rows; DuplicateKey or NullNotAllowed leave the table
// unchanged.
void AppendIndex(Catalog& catalog, std::u16string_view table, const IndexDesign& index);
// An index that a relationship uses cannot be dropped: UsedInRelationship.
void DropIndex(Catalog& catalog, std::u16string_view table, std::u16string_view index);
void RenameIndex(Catalog& catalog, std::u16string_view table, std::u16string_view index,
                 std::u16string_view name);

// The design of a table: fields in display order, without
// the indexes that belong to relationships.
TableDesign DescribeTable(const Catalog& catalog, const CatalogObject& table);

} // namespace jet
