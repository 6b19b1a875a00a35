#include "jet/table/TableDesign.h"

#include "jet/base/Error.h"
#include "jet/index/ExternalSort.h"
#include "jet/index/IndexBuilder.h"
#include "jet/index/KeyEncoding.h"
#include "jet/table/DesignEditor.h"

#include <algorithm>

namespace jet {

namespace {

CatalogObject find(const Catalog& catalog, std::u16string_view table) {
    auto object = catalog.findTable(table);
    if (!object)
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(table));
    return std::move(*object);
}

int findField(const TableDefinition& definition, std::u16string_view field) {
    const int column = definition.findColumn(field);
    if (column < 0)
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(field));
    return column;
}

// An existing table during a change of its design, in a transaction.
struct Redesign {
    Redesign(Catalog& catalogue, std::u16string_view table)
        : catalog(catalogue)
        , change(catalogue.pager(), Changing::Undoable)
        , object(find(catalogue, table))
        , definition(ReadTableDefinition(catalogue.pager(), static_cast<PageNumber>(object.id)))
        , properties(catalogue.properties(object))
        , editor(catalogue.pager(), definition, properties) {
        if (object.isSystem())
            throw Error(ErrorNumber::CannotUpdateReadOnly, ToUtf8(object.name));
    }
    void save(bool withProperties) {
        editor.save();
        if (withProperties)
            catalog.setProperties(object, properties);
        else
            catalog.touch(object);
    }

    Catalog& catalog;
    Changing change;
    CatalogObject object;
    TableDefinition definition;
    PropertyBlob properties;
    DesignEditor editor;
};

// Fills the empty tree of an index from the rows of the table, and stores its counters in the definition.
void fill(const Table& table, TableDefinition& definition, int realIndex) {
    Pager& pager = table.pager();
    RealIndex& index = definition.realIndexes.at(static_cast<std::size_t>(realIndex));
    const KeyEncoder encoder(definition, index);
    ExternalSort entries;
    entries.expect(table.rowCount());
    Bytes key;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        const KeyKind kind = encoder.encodeStored(pager, row, definition.columns, key);
        if (index.isRequired() && kind != KeyKind::Plain)
            throw Error(ErrorNumber::NullNotAllowed);
        if (!index.ignoresNulls() || kind != KeyKind::AllNull)
            entries.add(key, at);
    }
    entries.sort();
    IndexBuilder builder(IndexTree(pager, index.root, definition.page, UsageMap(pager, index.pages)));
    while (entries.next())
        if (!builder.add(entries.entry()) && index.isUnique() && !encoder.isAllNull(entries.key()))
            throw Error(ErrorNumber::DuplicateKey);
    builder.finish();
    index.entriesWhenMade = builder.entryCount();
    index.distinctKeys = builder.distinctKeys();
}

// Converts rows from before a field was added to their new form, if it differs.
void updateRows(Table& table, int field) {
    const bool numbered = table.definition().columns[static_cast<std::size_t>(field)].isAutonumber();
    std::int32_t number = 0;
    std::vector<FieldChange> changes;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        if (numbered)
            changes = {{field, ++number}};
        table.update(at, changes);
    }
    if (numbered)
        TableCounters::setLastAutonumber(table.pager(), table.definition().page,
                                         static_cast<std::uint32_t>(number));
}

} // namespace

PageNumber AppendTable(Catalog& catalog, const TableDesign& design) {
    CheckName(design.name);
    if (design.fields.empty())
        throw Error(ErrorNumber::InvalidArgument, "table '" + ToUtf8(design.name) + "' has no fields");
    Pager& pager = catalog.pager();
    Changing change(pager, Changing::Undoable);
    TableDefinition definition;
    PropertyBlob properties;
    definition.page = pager.allocate();
    DesignEditor editor(pager, definition, properties);
    editor.makeMaps();
    for (const FieldDesign& field : design.fields)
        editor.addField(field);
    for (const IndexDesign& index : design.indexes)
        editor.addIndex(index);
    for (const Property& property : design.properties)
        properties.set({}, property);
    WriteTableDefinition(pager, definition);
    catalog.addTable(definition.page, design.name, properties);
    change.commit();
    return definition.page;
}

void DropTable(Catalog& catalog, std::u16string_view table) {
    Redesign design(catalog, table);
    const auto takesPart = [&](const RelationshipColumn& pair) {
        return SameName(pair.table, design.object.name) || SameName(pair.referencedTable, design.object.name);
    };
    const auto relationships = catalog.relationships();
    if (std::any_of(relationships.begin(), relationships.end(), takesPart))
        throw Error(ErrorNumber::UsedInRelationship, ToUtf8(table));
    design.editor.destroy();
    catalog.remove(design.object);
    design.change.commit();
}

void RenameTable(Catalog& catalog, std::u16string_view table, std::u16string_view name) {
    CheckName(name);
    Redesign design(catalog, table);
    catalog.rename(design.object, name);
    catalog.renameInRelationships(design.object.name, name);
    design.change.commit();
}

void AppendField(Catalog& catalog, std::u16string_view table, const FieldDesign& field) {
    Redesign design(catalog, table);
    const bool firstVariable = design.definition.variableColumns == 0;
    design.editor.addField(field);
    design.save(true);
    // Rows without any variable column lack that part; readers derive this from the definition, so all rows
    // must get it.
    if ((firstVariable && design.definition.variableColumns > 0) || field.autonumber) {
        Table rows = catalog.table(design.object);
        updateRows(rows, design.definition.findColumn(field.name));
    }
    design.change.commit();
}

void DropField(Catalog& catalog, std::u16string_view table, std::u16string_view field) {
    Redesign design(catalog, table);
    design.editor.dropField(findField(design.definition, field));
    design.save(true);
    design.change.commit();
}

void RenameField(Catalog& catalog, std::u16string_view table, std::u16string_view field,
                 std::u16string_view name) {
    Redesign design(catalog, table);
    design.editor.renameField(findField(design.definition, field), name);
    design.save(true);
    catalog.renameInRelationships(design.object.name, field, name);
    design.change.commit();
}

void AppendIndex(Catalog& catalog, std::u16string_view table, const IndexDesign& index) {
    Redesign design(catalog, table);
    const int real = design.editor.addIndex(index);
    fill(catalog.table(design.object), design.definition, real);
    design.save(false);
    design.change.commit();
}

void DropIndex(Catalog& catalog, std::u16string_view table, std::u16string_view index) {
    Redesign design(catalog, table);
    design.editor.dropIndex(index);
    design.save(false);
    design.change.commit();
}

void RenameIndex(Catalog& catalog, std::u16string_view table, std::u16string_view index,
                 std::u16string_view name) {
    Redesign design(catalog, table);
    design.editor.renameIndex(index, name);
    design.save(false);
    design.change.commit();
}

TableDesign DescribeTable(const Catalog& catalog, const CatalogObject& object) {
    const Reading reading(catalog.pager());
    const TableDefinition definition =
        ReadTableDefinition(catalog.pager(), static_cast<PageNumber>(object.id));
    const PropertyBlob properties = catalog.properties(object);
    TableDesign design;
    design.name = object.name;
    for (const int position : definition.displayOrder()) {
        const Column& column = definition.columns[static_cast<std::size_t>(position)];
        FieldDesign field;
        field.name = column.name;
        field.type = column.type;
        field.size = column.type == ColumnType::Text ? column.size / 2 : column.size;
        field.autonumber = column.isAutonumber();
        field.required = properties.flag(column.name, u"Required");
        field.allowZeroLength = properties.flag(column.name, u"AllowZeroLength");
        if (column.type == ColumnType::Numeric) {
            field.precision = column.precision();
            field.scale = column.scale();
        }
        design.fields.push_back(std::move(field));
    }
    for (const LogicalIndex& logical : definition.logicalIndexes) {
        if (logical.role != LogicalIndex::Role::None || logical.kind == LogicalIndex::Kind::Foreign)
            continue;
        const RealIndex& real = definition.realIndexes[logical.real];
        IndexDesign index;
        index.name = logical.name;
        for (const IndexColumn& part : real.columns) {
            const int position = definition.findColumnNumber(part.number);
            index.fields.push_back(
                {definition.columns[static_cast<std::size_t>(position)].name, !part.ascending});
        }
        index.unique = real.isUnique();
        index.primary = logical.kind == LogicalIndex::Kind::Primary;
        index.required = real.isRequired();
        index.ignoreNulls = real.ignoresNulls();
        design.indexes.push_back(std::move(index));
    }
    // All other properties.
    for (const PropertyBlob::Owner& owner : properties.owners) {
        auto* into = &design.properties;
        if (owner.kind == PropertyBlob::Owner::ColumnKind) {
            const auto field =
                std::find_if(design.fields.begin(), design.fields.end(),
                             [&](const FieldDesign& each) { return SameName(each.name, owner.column); });
            if (field == design.fields.end())
                continue;
            into = &field->properties;
        }
        for (const Property& property : owner.properties)
            if (into == &design.properties ||
                (!SameName(property.name, u"Required") && !SameName(property.name, u"AllowZeroLength")))
                into->push_back(property);
    }
    return design;
}

} // namespace jet
