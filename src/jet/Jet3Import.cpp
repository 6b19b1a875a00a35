#include "jet/Jet3Import.h"

#include "jet/CreateDatabase.h"
#include "jet/Error.h"
#include "jet/Jet3File.h"
#include "jet/TableDesign.h"

namespace jet {

namespace {

struct Found {
    PageNumber page;
    std::u16string name;
};

// The user's tables. `created` gets the time of the database object.
std::vector<Found> findTables(const Jet3File& file, Date& created, std::vector<std::string>& faults) {
    const TableDefinition objects = file.definition(Catalog::ObjectsPage);
    const auto column = [&](const char16_t* name) {
        const int found = objects.findColumn(name);
        if (found < 0)
            throw Error(ErrorNumber::ReadVerification, "page 2: has no column '" + ToUtf8(name) + "'");
        return static_cast<std::size_t>(found);
    };
    const std::size_t id = column(u"Id"), name = column(u"Name"), type = column(u"Type"),
                      flags = column(u"Flags"), date = column(u"DateCreate");
    std::vector<Found> tables;
    file.forEachRow(
        objects,
        [&](std::span<Value> row) {
            const auto* kind = std::get_if<std::int16_t>(&row[type]);
            const auto* page = std::get_if<std::int32_t>(&row[id]);
            const auto* text = std::get_if<std::u16string>(&row[name]);
            const auto* bits = std::get_if<std::int32_t>(&row[flags]);
            const auto* time = std::get_if<Date>(&row[date]);
            if (kind == nullptr || page == nullptr || text == nullptr)
                return;
            if (*kind == CatalogObject::DatabaseKind && time != nullptr)
                created = *time;
            const auto system =
                static_cast<std::uint32_t>(bits == nullptr ? 0 : *bits) & CatalogObject::SystemFlags;
            if (*kind == CatalogObject::TableKind && system == 0)
                tables.push_back({static_cast<PageNumber>(*page), *text});
        },
        [&](const std::string& fault) { faults.push_back("MSysObjects: " + fault); });
    return tables;
}

TableDesign designOf(const TableDefinition& from, const std::u16string& name) {
    TableDesign design;
    design.name = name;
    for (const Column& column : from.columns) {
        FieldDesign field;
        field.name = column.name;
        field.type = column.type;
        field.size = column.size; // of texts: bytes, which are characters here
        field.autonumber = column.isAutonumber();
        field.allowZeroLength = true;
        if (column.type == ColumnType::Text || column.type == ColumnType::Binary ||
            StoredSize(column.type) != 0 || column.isLong())
            design.fields.push_back(field);
    }
    return design;
}

// Makes an index if the rows allow it: texts may be ordered otherwise here, and then not be unique.
void addIndex(Catalog& catalog, const TableDefinition& from, const LogicalIndex& logical,
              const std::u16string& table, std::vector<std::string>& faults) {
    const RealIndex& real = from.realIndexes[logical.real];
    IndexDesign index;
    index.name = logical.name;
    index.primary = logical.kind == LogicalIndex::Kind::Primary;
    index.unique = real.isUnique();
    index.ignoreNulls = real.ignoresNulls();
    for (const IndexColumn& part : real.columns)
        if (const int column = from.findColumnNumber(part.number); column >= 0)
            index.fields.push_back({from.columns[static_cast<std::size_t>(column)].name, !part.ascending});
    for (;;) {
        try {
            return AppendIndex(catalog, table, index);
        } catch (const Error& error) {
            faults.push_back(ToUtf8(table) + ", index " + ToUtf8(index.name) + ": " + error.what());
            if (error.code() != ErrorNumber::DuplicateKey && error.code() != ErrorNumber::NullNotAllowed)
                return;
            if (!index.unique && !index.primary)
                return;
            index.unique = index.primary = false;
        }
    }
}

void importTable(const Jet3File& file, const Found& found, Catalog& catalog,
                 std::vector<std::string>& faults) {
    const TableDefinition from = file.definition(found.page);
    const TableDesign design = designOf(from, found.name);
    const PageNumber page = AppendTable(catalog, design);
    Table table = catalog.table(found.name);
    const auto fault = [&](const std::string& text) { faults.push_back(ToUtf8(found.name) + ": " + text); };
    std::vector<Value> values(design.fields.size());
    file.forEachRow(
        from,
        [&](std::span<Value> row) {
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] = std::move(row[static_cast<std::size_t>(from.findColumn(design.fields[i].name))]);
            try {
                table.insert(values);
            } catch (const Error& error) {
                fault(error.what());
            }
        },
        fault);
    TableCounters::setLastAutonumber(catalog.pager(), page, from.lastAutonumber);
    for (const LogicalIndex& logical : from.logicalIndexes)
        if (logical.role == LogicalIndex::Role::None && logical.kind != LogicalIndex::Kind::Foreign)
            addIndex(catalog, from, logical, found.name, faults);
}

} // namespace

Jet3Import ImportJet3(std::span<const std::uint8_t> bytes) {
    const Jet3File file(bytes);
    Jet3Import import;
    Date created;
    const std::vector<Found> tables = findTables(file, created, import.faults);
    import.pager = std::make_unique<MemoryPager>(FreshDatabase(created));
    Catalog catalog(*import.pager);
    for (const Found& found : tables) {
        try {
            importTable(file, found, catalog, import.faults);
        } catch (const Error& error) {
            import.faults.push_back(ToUtf8(found.name) + ": " + error.what());
        }
    }
    return import;
}

} // namespace jet
