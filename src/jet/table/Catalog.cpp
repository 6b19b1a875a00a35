#include "jet/table/Catalog.h"

#include "jet/base/Damage.h"
#include "jet/record/LongValue.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

namespace jet {

namespace {

constexpr const char16_t* Id = u"Id";
constexpr const char16_t* ParentId = u"ParentId";
constexpr const char16_t* Name = u"Name";
constexpr const char16_t* Type = u"Type";
constexpr const char16_t* DateCreate = u"DateCreate";
constexpr const char16_t* DateUpdate = u"DateUpdate";
constexpr const char16_t* Owner = u"Owner";
constexpr const char16_t* Flags = u"Flags";
constexpr const char16_t* LvProp = u"LvProp";
// Permissions.
constexpr const char16_t* ObjectId = u"ObjectId";
constexpr const char16_t* SecurityId = u"SID";
constexpr const char16_t* AccessMask = u"ACM";
constexpr const char16_t* Inheritable = u"FInheritable";
// Relationships.
constexpr const char16_t* Relationship = u"szRelationship";
constexpr const char16_t* ReferencingTable = u"szObject";
constexpr const char16_t* ReferencingColumn = u"szColumn";
constexpr const char16_t* ReferencedTable = u"szReferencedObject";
constexpr const char16_t* ReferencedColumn = u"szReferencedColumn";

int columnOf(const Table& table, const char16_t* name) {
    const int found = table.definition().findColumn(name);
    if (found < 0)
        Damaged(table.definition().page, "has no column '" + ToUtf8(name) + "'");
    return found;
}

// The value of a column, or the default if it is null.
template<class T>
T get(const Table& table, const RowView& row, int column, T absent = {}) {
    Value value;
    table.value(row, column, value);
    if (T* held = std::get_if<T>(&value))
        return std::move(*held);
    return absent;
}

// A row of nulls except for the given values.
void insertRow(Table& table, std::initializer_list<std::pair<const char16_t*, Value>> fields) {
    std::vector<Value> values(table.definition().columns.size());
    for (const auto& [name, value] : fields)
        values[static_cast<std::size_t>(columnOf(table, name))] = value;
    table.insert(values);
}

[[noreturn]] void throwDamage(PageNumber, const Error& error) {
    throw Error(error);
}

// The security identifiers that engines write when nothing else is known: of the administrator, and of the
// placeholder for the creator of an object. Both are stored under a key of the file, so the second is derived
// from the first by their difference.
const Bytes DefaultAdministrator{0x64, 0x8B};
const Bytes DefaultCreator{0x65, 0x8E};

} // namespace

Date LocalTime() {
    const std::time_t time = std::time(nullptr);
    const std::tm* local = std::localtime(&time);
    const std::chrono::sys_days day = std::chrono::year(local->tm_year + 1900) /
                                      std::chrono::month(static_cast<unsigned>(local->tm_mon + 1)) /
                                      std::chrono::day(static_cast<unsigned>(local->tm_mday));
    constexpr std::chrono::sys_days epoch = std::chrono::year(1899) / 12 / 30;
    constexpr double secondsOfDay = 86400;
    return {static_cast<double>((day - epoch).count()) +
            (local->tm_hour * 3600 + local->tm_min * 60 + local->tm_sec) / secondsOfDay};
}

std::vector<CatalogObject> ReadObjects(const Table& table, const OnDamage& damaged) {
    const Reading reading(table.pager());
    const int id = columnOf(table, Id), parent = columnOf(table, ParentId), name = columnOf(table, Name),
              type = columnOf(table, Type), created = columnOf(table, DateCreate),
              updated = columnOf(table, DateUpdate), owner = columnOf(table, Owner),
              flags = columnOf(table, Flags);
    std::vector<CatalogObject> all;
    const auto visit = [&](RowPointer at, const RowView& row) {
        CatalogObject object;
        std::int32_t bits = 0;
        const auto take = [&](int column, auto& into) {
            return DespiteDamage(at.page, damaged, [&] { into = get(table, row, column, into); });
        };
        object.row = at;
        if (!take(id, object.id) || !take(type, object.kind))
            return; // it could be anything
        take(parent, object.parent);
        take(name, object.name);
        take(created, object.created);
        take(updated, object.updated);
        take(owner, object.owner);
        take(flags, bits);
        object.flags = static_cast<std::uint32_t>(bits);
        all.push_back(std::move(object));
    };
    WalkReadable(table, visit, damaged);
    return all;
}

std::vector<RelationshipColumn> ReadRelationships(const Table& table, const OnDamage& damaged) {
    const Reading reading(table.pager());
    const int name = columnOf(table, Relationship), referencing = columnOf(table, ReferencingTable),
              column = columnOf(table, ReferencingColumn), referenced = columnOf(table, ReferencedTable),
              referencedColumn = columnOf(table, ReferencedColumn);
    std::vector<RelationshipColumn> all;
    const auto visit = [&](RowPointer at, const RowView& row) {
        RelationshipColumn& pair = all.emplace_back();
        pair.row = at;
        const auto take = [&](int from, std::u16string& into) {
            DespiteDamage(at.page, damaged, [&] { into = get(table, row, from, into); });
        };
        take(name, pair.name);
        take(referencing, pair.table);
        take(column, pair.column);
        take(referenced, pair.referencedTable);
        take(referencedColumn, pair.referencedColumn);
    };
    WalkReadable(table, visit, damaged);
    return all;
}

Bytes SecurityIdOf(const Bytes& sid, const Bytes& administrator) {
    Bytes own = sid;
    for (std::size_t i = 0; i < own.size() && administrator.size() == DefaultAdministrator.size(); ++i)
        own[i] ^= static_cast<std::uint8_t>(DefaultAdministrator[i] ^ administrator[i]);
    return own;
}

// Objects that the catalogue counts but that are missing are damage, too: a missing table must not be
// mistaken for one that does not exist.
std::vector<CatalogObject> Catalog::readObjects(const OnDamage& damaged) const {
    const Reading reading(*pager_);
    const Table table(*pager_, ObjectsPage);
    std::vector<CatalogObject> found = ReadObjects(table, damaged);
    const auto count = [&] {
        if (found.size() < table.rowCount())
            Damaged(ObjectsPage, "counts " + std::to_string(table.rowCount()) + " objects, of which " +
                                     std::to_string(found.size()) + " are found");
    };
    DespiteDamage(ObjectsPage, damaged, count);
    return found;
}

std::vector<CatalogObject> Catalog::objects() const {
    return readObjects(throwDamage);
}

std::vector<CatalogObject> Catalog::tables() const {
    std::vector<CatalogObject> all = objects();
    std::erase_if(all, [](const CatalogObject& object) { return !object.isTable() || object.isSystem(); });
    return all;
}

std::optional<CatalogObject> Catalog::findTable(std::u16string_view name) const {
    std::optional<Error> damage;
    const auto damaged = [&](PageNumber, const Error& error) { damage = error; };
    for (CatalogObject& object : readObjects(damaged))
        if (object.isTable() && SameName(object.name, name))
            return std::move(object);
    if (damage)
        throw Error(*damage); // it may be the missing table's
    return std::nullopt;
}

Table Catalog::table(std::u16string_view name) const {
    const Reading reading(*pager_);
    const auto object = findTable(name);
    if (!object)
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(name));
    return table(*object);
}

Table Catalog::table(const CatalogObject& object) const {
    const Reading reading(*pager_);
    if (!object.isTable())
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(object.name));
    return Table(*pager_, static_cast<PageNumber>(object.id), object.name, properties(object));
}

PropertyBlob Catalog::properties(const CatalogObject& object) const {
    const Reading reading(*pager_);
    const Table system(*pager_, ObjectsPage);
    RowView row;
    if (!system.fetch(object.row, row))
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(object.name));
    return DecodeProperties(get<Bytes>(system, row, columnOf(system, LvProp)));
}

void Catalog::updateObject(const CatalogObject& object,
                           std::initializer_list<std::pair<const char16_t*, Value>> fields) {
    Table system(*pager_, ObjectsPage);
    std::vector<FieldChange> changes{{columnOf(system, DateUpdate), LocalTime()}};
    for (const auto& [name, value] : fields)
        changes.push_back({columnOf(system, name), value});
    system.update(object.row, changes);
}

void Catalog::setProperties(const CatalogObject& object, const PropertyBlob& properties) {
    Value value;
    if (!properties.empty())
        value = EncodeProperties(properties);
    updateObject(object, {{LvProp, std::move(value)}});
}

bool Catalog::hasSibling(std::int32_t parent, std::u16string_view name, std::int32_t except) const {
    const std::vector<CatalogObject> all = objects();
    return std::any_of(all.begin(), all.end(), [&](const CatalogObject& object) {
        return object.parent == parent && object.id != except && SameName(object.name, name);
    });
}

void Catalog::rename(const CatalogObject& object, std::u16string_view name) {
    Changing change(*pager_, Changing::Undoable);
    if (hasSibling(object.parent, name, object.id))
        throw Error(ErrorNumber::TableExists, ToUtf8(name));
    updateObject(object, {{Name, std::u16string(name)}});
    change.commit();
}

void Catalog::touch(const CatalogObject& object) {
    updateObject(object, {});
}

void Catalog::addTable(PageNumber definition, std::u16string_view name, const PropertyBlob& properties,
                       std::uint32_t flags) {
    Changing change(*pager_, Changing::Undoable);
    if (hasSibling(TablesContainer, name, 0))
        throw Error(ErrorNumber::TableExists, ToUtf8(name));
    const auto id = static_cast<std::int32_t>(definition);
    const Date created = LocalTime();
    Table system(*pager_, ObjectsPage);
    insertRow(system, {{Id, id},
                       {ParentId, TablesContainer},
                       {Name, std::u16string(name)},
                       {Type, static_cast<std::int16_t>(CatalogObject::TableKind)},
                       {DateCreate, created},
                       {DateUpdate, created},
                       {Owner, administrator()},
                       {Flags, static_cast<std::int32_t>(flags)},
                       {LvProp, properties.empty() ? Value() : Value(EncodeProperties(properties))}});
    inheritPermissions(id, TablesContainer);
    change.commit();
}

Bytes Catalog::administrator() const {
    for (const CatalogObject& object : objects())
        if (object.kind == CatalogObject::DatabaseKind && !object.owner.empty())
            return object.owner;
    return DefaultAdministrator;
}

void Catalog::inheritPermissions(std::int32_t object, std::int32_t container) {
    Changing change(*pager_, Changing::Undoable);
    Table permissions(*pager_, PermissionsPage);
    const int id = columnOf(permissions, ObjectId), sid = columnOf(permissions, SecurityId),
              mask = columnOf(permissions, AccessMask), inheritable = columnOf(permissions, Inheritable);
    std::vector<std::pair<Bytes, std::int32_t>> inherited;
    RowPointer at;
    for (RowView row; permissions.next(at, row);)
        if (get<std::int32_t>(permissions, row, id) == container && get<bool>(permissions, row, inheritable))
            inherited.emplace_back(get<Bytes>(permissions, row, sid),
                                   get<std::int32_t>(permissions, row, mask));
    const Bytes owner = administrator();
    const Bytes creator = SecurityIdOf(DefaultCreator, owner);
    for (auto& [who, what] : inherited)
        insertRow(permissions, {{ObjectId, object},
                                {SecurityId, who == creator ? owner : who},
                                {AccessMask, what},
                                {Inheritable, false}});
    change.commit();
}

void Catalog::remove(const CatalogObject& object) {
    Changing change(*pager_, Changing::Undoable);
    Table permissions(*pager_, PermissionsPage);
    const int id = columnOf(permissions, ObjectId);
    RowPointer at;
    for (RowView row; permissions.next(at, row);)
        if (get<std::int32_t>(permissions, row, id) == object.id)
            permissions.remove(at);
    Table(*pager_, ObjectsPage).remove(object.row);
    change.commit();
}

std::vector<RelationshipColumn> Catalog::relationships() const {
    return ReadRelationships(Table(*pager_, RelationshipsPage), throwDamage);
}

void Catalog::renameInRelationships(std::u16string_view table, std::u16string_view name) {
    Changing change(*pager_, Changing::Undoable);
    Table system(*pager_, RelationshipsPage);
    const Value changed = std::u16string(name);
    for (const RelationshipColumn& pair : relationships()) {
        if (SameName(pair.table, table))
            system.update(pair.row, std::array{FieldChange{columnOf(system, ReferencingTable), changed}});
        if (SameName(pair.referencedTable, table))
            system.update(pair.row, std::array{FieldChange{columnOf(system, ReferencedTable), changed}});
    }
    change.commit();
}

void Catalog::renameInRelationships(std::u16string_view table, std::u16string_view column,
                                    std::u16string_view name) {
    Changing change(*pager_, Changing::Undoable);
    Table system(*pager_, RelationshipsPage);
    const Value changed = std::u16string(name);
    for (const RelationshipColumn& pair : relationships()) {
        if (SameName(pair.table, table) && SameName(pair.column, column))
            system.update(pair.row, std::array{FieldChange{columnOf(system, ReferencingColumn), changed}});
        if (SameName(pair.referencedTable, table) && SameName(pair.referencedColumn, column))
            system.update(pair.row, std::array{FieldChange{columnOf(system, ReferencedColumn), changed}});
    }
    change.commit();
}

} // namespace jet
