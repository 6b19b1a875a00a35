#include "jet/maintenance/CheckCatalog.h"

#include "jet/text/Collation.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace jet {

namespace {

constexpr std::int32_t rootId = 0x0F000000;

void checkNames(CheckContext& context, const std::vector<CatalogObject>& objects) {
    std::vector<const CatalogObject*> sorted;
    sorted.reserve(objects.size());
    for (const CatalogObject& object : objects)
        sorted.push_back(&object);
    std::sort(sorted.begin(), sorted.end(), [](const CatalogObject* a, const CatalogObject* b) {
        return a->parent != b->parent ? a->parent < b->parent : CompareTexts(a->name, b->name) < 0;
    });
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i]->parent == sorted[i - 1]->parent && SameText(sorted[i]->name, sorted[i - 1]->name))
            context.faults.fault(sorted[i]->row.page,
                                 "two objects are named '" + ToUtf8(sorted[i]->name) + "'");
    }
}

// Everything lies below the root, which has no row.
void checkParents(CheckContext& context, const std::vector<CatalogObject>& objects) {
    std::set<std::int32_t> ids{rootId};
    for (const CatalogObject& object : objects)
        ids.insert(object.id);
    for (const CatalogObject& object : objects)
        if (ids.count(object.parent) == 0)
            context.faults.fault(object.row.page, "holds object '" + ToUtf8(object.name) +
                                                      "', which belongs to an object that is not there");
}

void checkProperties(CheckContext& context, const Catalog& catalog,
                     const std::vector<CatalogObject>& objects) {
    for (const CatalogObject& object : objects) {
        try {
            static_cast<void>(catalog.properties(object));
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            context.faults.fault(object.row.page, "the properties of '" + ToUtf8(object.name) +
                                                      "' cannot be read: " + error.what());
        }
    }
}

void checkPermissions(CheckContext& context, const Catalog& catalog,
                      const std::vector<CatalogObject>& objects) {
    std::set<std::int32_t> ids;
    for (const CatalogObject& object : objects)
        ids.insert(object.id);
    const Table table(catalog.pager(), Catalog::PermissionsPage, u"MSysACEs");
    const int column = table.definition().findColumn(u"ObjectId");
    const auto visit = [&](RowPointer at, const RowView& row) {
        Value id;
        if (column >= 0)
            table.value(row, column, id);
        const auto* number = std::get_if<std::int32_t>(&id);
        if (number == nullptr || ids.count(*number) == 0)
            context.faults.fault(at.page, "row " + std::to_string(at.row) +
                                              " gives permissions for an object that is not there");
    };
    WalkReadable(table, visit, [](PageNumber, const Error&) {});
}

// Whether a table has a column; each table's definition is read once.
class Columns {
public:
    Columns(Pager& pager, const std::vector<CatalogObject>& objects)
        : pager_(pager)
        , objects_(objects) {}

    bool has(std::u16string_view table, std::u16string_view column) {
        for (const CatalogObject& object : objects_) {
            if (!SameName(object.name, table) || object.kind == CatalogObject::RelationshipKind)
                continue;
            if (!object.isTable())
                return true; // linked tables and queries have their columns elsewhere
            const auto& definition = definitionOf(static_cast<PageNumber>(object.id));
            return !definition || definition->findColumn(column) >= 0;
        }
        return false;
    }

private:
    // Nothing if it is unreadable, which is reported with the table.
    const std::optional<TableDefinition>& definitionOf(PageNumber page) {
        const auto added = definitions_.try_emplace(page);
        std::optional<TableDefinition>& definition = added.first->second;
        const auto damaged = [](PageNumber, const Error&) {};
        if (added.second)
            DespiteDamage(page, damaged, [&] { definition = ReadTableDefinition(pager_, page); });
        return definition;
    }

    Pager& pager_;
    const std::vector<CatalogObject>& objects_;
    std::map<PageNumber, std::optional<TableDefinition>> definitions_;
};

void checkRelationships(CheckContext& context, const std::vector<CatalogObject>& objects) {
    Columns columns(context.pager, objects);
    const Table table(context.pager, Catalog::RelationshipsPage, u"MSysRelationships");
    for (const RelationshipColumn& pair : ReadRelationships(table, [](PageNumber, const Error&) {}))
        for (const auto& [name, column] :
             {std::pair(&pair.table, &pair.column), std::pair(&pair.referencedTable, &pair.referencedColumn)})
            if (!columns.has(*name, *column))
                context.faults.fault(pair.row.page, "relationship '" + ToUtf8(pair.name) +
                                                        "' names column '" + ToUtf8(*column) +
                                                        "' of table '" + ToUtf8(*name) +
                                                        "', which is not there");
}

} // namespace

void CheckCatalog(CheckContext& context, const Catalog& catalog, const std::vector<CatalogObject>& objects) {
    context.faults.setTable(u"MSysObjects");
    checkNames(context, objects);
    checkParents(context, objects);
    checkProperties(context, catalog, objects);
    context.faults.setTable(u"MSysACEs");
    context.faults.guard(Catalog::PermissionsPage, [&] { checkPermissions(context, catalog, objects); });
    context.faults.setTable(u"MSysRelationships");
    context.faults.guard(Catalog::RelationshipsPage, [&] { checkRelationships(context, objects); });
}

} // namespace jet
