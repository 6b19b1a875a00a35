#include "jet/maintenance/CompactCatalog.h"

#include "jet/maintenance/DefinitionRepair.h"
#include "jet/table/Salvage.h"
#include "jet/text/Collation.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::int32_t RootId = 0x0F000000; // everything lies below it; it has no row
constexpr std::int32_t DatabasesContainer = 0x0F000002;

// The parent of an object whose own parent does not exist.
std::int32_t usualParent(std::int16_t kind) {
    switch (kind) {
    case CatalogObject::ContainerKind:
        return RootId;
    case CatalogObject::DatabaseKind:
        return DatabasesContainer;
    case CatalogObject::RelationshipKind:
        return Catalog::RelationshipsContainer;
    default:
        return Catalog::TablesContainer;
    }
}

bool isSystemPage(std::int32_t id) {
    return id >= static_cast<std::int32_t>(Catalog::ObjectsPage) &&
           id <= static_cast<std::int32_t>(Catalog::RelationshipsPage);
}

std::size_t columnOf(const Table& table, const char16_t* name) {
    return static_cast<std::size_t>(table.definition().findColumn(name));
}

// A column of a row; null if it is damaged.
Value readable(const Table& table, const RowView& row, std::size_t column) {
    Value value;
    const auto damaged = [&](PageNumber, const Error&) { value = Value{}; };
    DespiteDamage(row.page(), damaged, [&] { table.value(row, static_cast<int>(column), value); });
    return value;
}

} // namespace

CompactCatalog::CompactCatalog(const Table& objects, const Table& permissions, const Table& queries,
                               const Table& relationships, Pager& empty, const OnLoss& lost)
    : objectsTable_(objects)
    , permissions_(permissions)
    , queries_(queries)
    , relationshipsTable_(relationships)
    , empty_(empty)
    , lost_(lost)
    // Damage is reported when the rows are copied.
    , objects_(ReadObjects(objects, [this](PageNumber, const Error&) { damaged_ = true; }))
    , relationships_(lost) {}

void CompactCatalog::report(PageNumber page, std::u16string table, const std::string& reason) {
    lost_({page, std::move(table), reason, false});
}

void CompactCatalog::add(const CatalogObject& object, TableDefinition definition) {
    const auto id = static_cast<std::int32_t>(definition.page);
    newIds_[object.id] = id;
    Kept& kept = kept_[object.row];
    kept.object = object;
    kept.object.id = id;
    relationships_.add(static_cast<PageNumber>(object.id), object.name, std::move(definition));
}

void CompactCatalog::settle() {
    relationships_.settle(relationshipsTable_, objects_);
    keepObjects();
    giveParents();
    giveNames();
    noteChanges();
}

void CompactCatalog::keepObjects() {
    std::set<std::int32_t> taken;
    for (const auto& [row, kept] : kept_)
        taken.insert(kept.object.id);
    for (const CatalogObject& object : objects_) {
        if (kept_.count(object.row) != 0)
            continue;
        const bool keep = object.kind == CatalogObject::RelationshipKind
                              ? relationships_.holds(object.name)
                              : !object.isTable() || isSystemPage(object.id);
        if (!keep)
            continue;
        if (!taken.insert(object.id).second) {
            report(object.row.page, u"MSysObjects",
                   "names object '" + ToUtf8(object.name) + "' with the number of another");
            continue;
        }
        newIds_[object.id] = object.id;
        kept_[object.row].object = object;
    }
    // A standard object with a damaged number is identified by its name.
    for (const CatalogObject& standard : Catalog(empty_).objects()) {
        const auto isIt = [&](const auto& one) {
            return one.second.object.kind == standard.kind && SameName(one.second.object.name, standard.name);
        };
        const auto same = std::find_if(kept_.begin(), kept_.end(), isIt);
        if (taken.count(standard.id) == 0 && same != kept_.end()) {
            newIds_[same->second.object.id] = standard.id;
            same->second.object.id = standard.id;
            taken.insert(standard.id);
        }
        if (taken.count(standard.id) == 0)
            missing_.push_back(standard);
        newIds_[standard.id] = standard.id;
    }
}

void CompactCatalog::giveParents() {
    for (auto& [row, kept] : kept_) {
        std::int32_t& parent = kept.object.parent;
        const auto found = newIds_.find(parent);
        if (found != newIds_.end())
            parent = found->second;
        else if (parent != RootId)
            parent = usualParent(kept.object.kind);
    }
}

// Names are unique below each parent; the first of two keeps its own.
void CompactCatalog::giveNames() {
    using Place = std::pair<std::int32_t, std::u16string>;
    const auto before = [](const Place& a, const Place& b) {
        return a.first != b.first ? a.first < b.first : CompareTexts(a.second, b.second) < 0;
    };
    std::set<Place, decltype(before)> taken(before);
    for (const CatalogObject& standard : missing_)
        taken.emplace(standard.parent, standard.name);
    NamesBeside beside;
    for (auto& [row, kept] : kept_) {
        CatalogObject& object = kept.object;
        if (object.name.empty())
            object.name = u"Recovered";
        if (taken.emplace(object.parent, object.name).second)
            continue;
        const std::int32_t parent = object.parent;
        std::u16string name = beside.next(object.name, [&](std::u16string_view one) {
            return taken.count({parent, std::u16string(one)}) != 0;
        });
        report(row.page, u"MSysObjects",
               "names two objects '" + ToUtf8(object.name) + "', one of which is '" + ToUtf8(name) + "' now");
        object.name = std::move(name);
        taken.emplace(parent, object.name);
    }
}

// Changes to the rows of the kept objects.
void CompactCatalog::noteChanges() {
    const std::size_t id = columnOf(objectsTable_, u"Id"), parent = columnOf(objectsTable_, u"ParentId"),
                      name = columnOf(objectsTable_, u"Name"), type = columnOf(objectsTable_, u"Type"),
                      properties = columnOf(objectsTable_, u"LvProp");
    for (const CatalogObject& old : objects_) {
        const auto found = kept_.find(old.row);
        if (found == kept_.end())
            continue;
        const CatalogObject& now = found->second.object;
        auto& changes = found->second.changes;
        if (now.id != old.id)
            changes.emplace_back(id, now.id);
        if (now.parent != old.parent)
            changes.emplace_back(parent, now.parent);
        if (now.name != old.name)
            changes.emplace_back(name, now.name);
        if (now.kind != old.kind)
            changes.emplace_back(type, now.kind);
        RowView row;
        if (!objectsTable_.fetch(old.row, row))
            continue;
        try {
            const Value value = readable(objectsTable_, row, properties);
            if (const auto* bytes = std::get_if<Bytes>(&value))
                DecodeProperties(*bytes);
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
            report(old.row.page, u"MSysObjects", "lost the properties of '" + ToUtf8(now.name) + '\'');
            changes.emplace_back(properties, Value());
        }
    }
}

RowChange CompactCatalog::changeOf(PageNumber systemTable) {
    using Fields = std::span<RowEncoder::Field>;
    if (systemTable == Catalog::ObjectsPage)
        return [this](RowPointer at, const RowView&, Fields fields) {
            const auto kept = kept_.find(at);
            if (kept == kept_.end())
                return false;
            for (const auto& [column, value] : kept->second.changes)
                fields[column] = {&value, nullptr};
            return true;
        };
    if (systemTable == Catalog::RelationshipsPage)
        return [this](RowPointer, const RowView& row, Fields) {
            const std::size_t column = columnOf(relationshipsTable_, u"szRelationship");
            const Value name = readable(relationshipsTable_, row, column);
            const auto* text = std::get_if<std::u16string>(&name);
            return text != nullptr && relationships_.holds(*text);
        };
    const Table& table = systemTable == Catalog::PermissionsPage ? permissions_ : queries_;
    return [this, &table](RowPointer, const RowView& row, Fields fields) {
        const std::size_t column = columnOf(table, u"ObjectId");
        id_ = readable(table, row, column);
        const auto* id = std::get_if<std::int32_t>(&id_);
        const auto object = id == nullptr ? newIds_.end() : newIds_.find(*id);
        if (object == newIds_.end()) {
            rightsLost_ = rightsLost_ || &table == &permissions_;
            return false;
        }
        if (&table == &permissions_)
            withRights_.insert(object->second);
        if (object->second != *id) {
            id_ = object->second;
            fields[column] = {&id_, nullptr};
        }
        return true;
    };
}

void CompactCatalog::complete(Pager& target, bool rightsLost) {
    relationships_.write(target, newIds_);
    addStandardObjects(target);
    if (rightsLost || rightsLost_)
        addRights(target);
}

// The rows of an empty database for objects that every database has.
void CompactCatalog::addStandardObjects(Pager& target) {
    const Bytes owner = administrator();
    for (const CatalogObject& standard : missing_)
        copyFresh(target, Catalog::ObjectsPage, standard.row, owner);
}

// The owner's security identifier as stored in this file; empty if nothing states it.
Bytes CompactCatalog::administrator() const {
    for (const auto& [row, kept] : kept_)
        if (kept.object.kind == CatalogObject::DatabaseKind)
            return kept.object.owner;
    return {};
}

// Copies a row of an empty database's catalogue.
void CompactCatalog::copyFresh(Pager& target, PageNumber table, RowPointer row, const Bytes& administrator) {
    const Table from(empty_, table);
    Table to(target, table);
    RowView view;
    from.fetch(row, view);
    std::vector<Value> values;
    from.values(view, values);
    std::vector<Value> added(to.definition().columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = from.definition().columns[i];
        auto* sid = std::get_if<Bytes>(&values[i]);
        if (sid != nullptr && (column.flags & Column::OwnerKey) != 0)
            *sid = SecurityIdOf(*sid, administrator);
        added[columnOf(to, column.name.c_str())] = std::move(values[i]);
    }
    to.insert(added);
}

// Objects that have lost all their rights get those of new ones: standard objects first, as the others
// inherit from them.
void CompactCatalog::addRights(Pager& target) {
    const Bytes owner = administrator();
    const Table rights(empty_, Catalog::PermissionsPage);
    std::set<std::int32_t> given;
    RowPointer at;
    for (RowView row; rights.next(at, row);) {
        const Value id = readable(rights, row, columnOf(rights, u"ObjectId"));
        if (withRights_.count(std::get<std::int32_t>(id)) != 0)
            continue;
        copyFresh(target, Catalog::PermissionsPage, at, owner);
        given.insert(std::get<std::int32_t>(id));
    }
    withRights_.merge(given);
    Catalog catalog(target);
    for (const auto& [row, kept] : kept_) {
        const CatalogObject& object = kept.object;
        if (withRights_.count(object.id) != 0)
            continue;
        report(row.page, u"MSysACEs",
               "lost the rights of '" + ToUtf8(object.name) + "', which has those of a new one");
        catalog.inheritPermissions(object.id, object.kind == CatalogObject::RelationshipKind
                                                  ? Catalog::RelationshipsContainer
                                                  : Catalog::TablesContainer);
    }
}

} // namespace jet
