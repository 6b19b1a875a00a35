#include "jet/jet3/Jet3Import.h"

#include "jet/base/Damage.h"
#include "jet/jet3/Jet3File.h"
#include "jet/record/DefinitionFaults.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

#include <set>

namespace jet {

namespace {

struct Found {
    PageNumber page;
    std::u16string name;
};

constexpr std::int32_t databasesContainer = 0x0F000002;

const char* nameOf(std::int16_t kind) {
    switch (kind) {
    case CatalogObject::QueryKind:
        return "query";
    case CatalogObject::LinkedServerKind:
    case CatalogObject::LinkedTableKind:
        return "linked table";
    case CatalogObject::RelationshipKind:
        return "relationship";
    default:
        return "object of another program";
    }
}

// The user's tables. `created` gets the time of the database object.
std::vector<Found> findTables(const Jet3File& file, Date& created, std::vector<Fault>& faults) {
    const TableDefinition objects = file.definition(Catalog::ObjectsPage);
    const auto column = [&](const char16_t* name) {
        const int found = objects.findColumn(name);
        if (found < 0)
            Damaged(Catalog::ObjectsPage, "has no column '" + ToUtf8(name) + "'");
        return static_cast<std::size_t>(found);
    };
    const std::size_t id = column(u"Id"), parent = column(u"ParentId"), name = column(u"Name"),
                      type = column(u"Type"), flags = column(u"Flags"), date = column(u"DateCreate");
    std::vector<Found> tables;
    const auto visit = [&](std::span<Value> row) {
        const auto* kind = std::get_if<std::int16_t>(&row[type]);
        const auto* page = std::get_if<std::int32_t>(&row[id]);
        const auto* within = std::get_if<std::int32_t>(&row[parent]);
        const auto* text = std::get_if<std::u16string>(&row[name]);
        const auto* bits = std::get_if<std::int32_t>(&row[flags]);
        const auto* time = std::get_if<Date>(&row[date]);
        if (kind == nullptr || page == nullptr || text == nullptr)
            return;
        const auto system =
            static_cast<std::uint32_t>(bits == nullptr ? 0 : *bits) & CatalogObject::SystemFlags;
        if (*kind == CatalogObject::DatabaseKind && time != nullptr)
            created = *time;
        else if (*kind == CatalogObject::TableKind && system == 0)
            tables.push_back({static_cast<PageNumber>(*page), *text});
        else if (*kind != CatalogObject::TableKind && *kind != CatalogObject::DatabaseKind &&
                 *kind != CatalogObject::ContainerKind && system == 0 &&
                 (within == nullptr || *within != databasesContainer)) // which says what it is about
            faults.push_back({Catalog::ObjectsPage,
                              {},
                              "names the " + std::string(nameOf(*kind)) + " '" + ToUtf8(*text) +
                                  "', which is not taken over",
                              true});
    };
    file.forEachRow(objects, visit, [&](const Error& error) {
        faults.push_back(FaultOf(error, Catalog::ObjectsPage, u"MSysObjects"));
    });
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

// One table during its import.
class TableImport {
public:
    TableImport(const Jet3File& file, const Found& found, Catalog& catalog, Jet3Contents& contents)
        : file_(file)
        , found_(found)
        , catalog_(catalog)
        , contents_(contents)
        , from_(file.definition(found.page)) {}

    void run() {
        const PageNumber page = AppendTable(catalog_, designOf(from_, found_.name));
        ++contents_.tables;
        copyRows();
        TableCounters::setLastAutonumber(catalog_.pager(), page, from_.lastAutonumber);
        for (const LogicalIndex& logical : from_.logicalIndexes)
            if (logical.role == LogicalIndex::Role::None && logical.kind != LogicalIndex::Kind::Foreign)
                addIndex(logical);
    }

private:
    void fault(const std::string& reason, bool harmless) {
        contents_.faults.push_back({found_.page, found_.name, reason, harmless});
    }

    void copyRows() {
        Table table = catalog_.table(found_.name);
        std::vector<std::size_t> places;
        for (const Column& column : table.definition().columns)
            places.push_back(static_cast<std::size_t>(from_.findColumn(column.name)));
        std::vector<Value> values(places.size());
        std::uint64_t rows = 0;
        const auto damaged = [&](const Error& error) {
            contents_.faults.push_back(FaultOf(error, found_.page, found_.name));
        };
        const auto visit = [&](std::span<Value> row) {
            ++rows;
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] = std::move(row[places[i]]);
            try {
                table.insert(values);
                ++contents_.rows;
            } catch (const Error& error) {
                damaged(error);
            }
        };
        file_.forEachRow(from_, visit, damaged);
        if (rows != from_.rowCount)
            fault("says that the table has " + std::to_string(from_.rowCount) + " rows instead of " +
                      std::to_string(rows),
                  false);
    }

    // Makes an index if the rows allow it: texts are ordered differently here and may not be unique.
    void addIndex(const LogicalIndex& logical) {
        const RealIndex& real = from_.realIndexes[logical.real];
        IndexDesign index;
        index.name = logical.name;
        index.primary = logical.kind == LogicalIndex::Kind::Primary;
        index.unique = real.isUnique();
        index.ignoreNulls = real.ignoresNulls();
        if (const char* lack = FaultOfIndex(from_, real); lack != nullptr)
            return fault("describes index '" + ToUtf8(index.name) + "', which is not made: it " + lack,
                         false);
        for (const IndexColumn& part : real.columns) {
            const auto column = static_cast<std::size_t>(from_.findColumnNumber(part.number));
            index.fields.push_back({from_.columns[column].name, !part.ascending});
        }
        for (;;) {
            try {
                AppendIndex(catalog_, found_.name, index);
                return;
            } catch (const Error& error) {
                const bool unique = index.unique || index.primary;
                const bool plainInstead = unique && (error.code() == ErrorNumber::DuplicateKey ||
                                                     error.code() == ErrorNumber::NullNotAllowed);
                fault("describes index '" + ToUtf8(index.name) + "', which is " +
                          (plainInstead ? "made without being unique: " : "not made: ") + error.what(),
                      true);
                if (!plainInstead)
                    return;
                index.unique = index.primary = false;
            }
        }
    }

    const Jet3File& file_;
    const Found& found_;
    Catalog& catalog_;
    Jet3Contents& contents_;
    TableDefinition from_;
};

} // namespace

Jet3Import ImportJet3(std::span<const std::uint8_t> bytes) {
    const Jet3File file(bytes);
    Jet3Import import;
    Jet3Contents& contents = import.contents;
    contents.pages = static_cast<std::uint32_t>(bytes.size() / Jet3File::PageSize3);
    Date created;
    const std::vector<Found> tables = findTables(file, created, contents.faults);
    import.pager = std::make_unique<MemoryPager>(FreshDatabase(created));
    Catalog catalog(*import.pager);
    std::set<PageNumber> taken;
    for (const Found& found : tables) {
        try {
            if (!taken.insert(found.page).second)
                Damaged(found.page, "is named as the definition of two tables");
            TableImport(file, found, catalog, contents).run();
        } catch (const Error& error) {
            contents.faults.push_back(FaultOf(error, found.page, found.name));
        }
    }
    return import;
}

} // namespace jet
