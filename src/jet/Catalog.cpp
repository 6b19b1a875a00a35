#include "jet/Catalog.h"

#include "jet/Damage.h"
#include "jet/LongValue.h"

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

// Columns of a system table by their names.
class SystemTable {
public:
    SystemTable(Pager& pager, PageNumber page)
        : table(pager, page) {}

    int column(const char16_t* name) const {
        const int found = table.definition().findColumn(name);
        if (found < 0)
            Damaged(table.definition().page, "has no column '" + ToUtf8(name) + "'");
        return found;
    }
    // The value of a column, or the default if it is null.
    template<class T>
    T get(const RowView& row, int column, T absent = {}) const {
        Value value;
        table.value(row, column, value);
        if (T* held = std::get_if<T>(&value))
            return std::move(*held);
        return absent;
    }

    // A row of null values but for the given ones.
    void insert(std::initializer_list<std::pair<const char16_t*, Value>> fields) {
        std::vector<Value> values(table.definition().columns.size());
        for (const auto& [name, value] : fields)
            values[static_cast<std::size_t>(column(name))] = value;
        table.insert(values);
    }

    Table table;
};

// The security identifiers as engines write them when nothing else is known: of the administrator, and of the
// one that stands for whoever made an object. Both are stored under a key of the file, so the second is found
// from the first by what they differ in.
const Bytes DefaultAdministrator{0x64, 0x8B};
constexpr std::uint8_t CreatorDifference[] = {0x01, 0x05};

Bytes creatorOf(const Bytes& administrator) {
    Bytes creator = administrator;
    for (std::size_t i = 0; i < creator.size() && creator.size() == std::size(CreatorDifference); ++i)
        creator[i] ^= CreatorDifference[i];
    return creator;
}

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

std::vector<CatalogObject> Catalog::objects() const {
    return readableObjects([](PageNumber, const Error& error) { throw error; });
}

std::vector<CatalogObject> Catalog::readableObjects(const OnDamage& damaged) const {
    const Reading reading(*pager_);
    const SystemTable system(*pager_, ObjectsPage);
    const int id = system.column(Id), parent = system.column(ParentId), name = system.column(Name),
              type = system.column(Type), created = system.column(DateCreate),
              updated = system.column(DateUpdate), owner = system.column(Owner), flags = system.column(Flags);
    std::vector<CatalogObject> all;
    const auto visit = [&](RowPointer at, const RowView& row) {
        CatalogObject object;
        std::int32_t bits = 0;
        const auto take = [&](int column, auto& into) {
            return DespiteDamage(at.page, damaged, [&] { into = system.get(row, column, into); });
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
    WalkReadable(system.table, visit, damaged);
    return all;
}

std::vector<CatalogObject> Catalog::tables() const {
    std::vector<CatalogObject> all = objects();
    std::erase_if(all, [](const CatalogObject& object) { return !object.isTable() || object.isSystem(); });
    return all;
}

std::optional<CatalogObject> Catalog::findTable(std::u16string_view name) const {
    std::optional<Error> damage;
    for (CatalogObject& object : readableObjects([&](PageNumber, const Error& error) { damage = error; }))
        if (object.isTable() && SameName(object.name, name))
            return std::move(object);
    if (damage)
        throw Error(*damage); // it may be the table's
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
    const SystemTable system(*pager_, ObjectsPage);
    RowView row;
    if (!system.table.fetch(object.row, row))
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(object.name));
    return DecodeProperties(system.get<Bytes>(row, system.column(LvProp)));
}

void Catalog::updateObject(const CatalogObject& object,
                           std::initializer_list<std::pair<const char16_t*, Value>> fields) {
    SystemTable system(*pager_, ObjectsPage);
    std::vector<FieldChange> changes{{system.column(DateUpdate), LocalTime()}};
    for (const auto& [name, value] : fields)
        changes.push_back({system.column(name), value});
    system.table.update(object.row, changes);
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
    const std::vector<CatalogObject> all = objects();
    const auto database = std::find_if(all.begin(), all.end(), [](const CatalogObject& object) {
        return object.kind == CatalogObject::DatabaseKind && !object.owner.empty();
    });
    const Bytes administrator = database == all.end() ? DefaultAdministrator : database->owner;
    const auto id = static_cast<std::int32_t>(definition);
    const Date created = LocalTime();
    SystemTable system(*pager_, ObjectsPage);
    system.insert({{Id, id},
                   {ParentId, TablesContainer},
                   {Name, std::u16string(name)},
                   {Type, static_cast<std::int16_t>(CatalogObject::TableKind)},
                   {DateCreate, created},
                   {DateUpdate, created},
                   {Owner, administrator},
                   {Flags, static_cast<std::int32_t>(flags)},
                   {LvProp, properties.empty() ? Value() : Value(EncodeProperties(properties))}});

    // What the container of tables hands down; an entry for whoever makes an object goes to the owner.
    SystemTable permissions(*pager_, PermissionsPage);
    const int object = permissions.column(ObjectId), sid = permissions.column(SecurityId),
              mask = permissions.column(AccessMask), inheritable = permissions.column(Inheritable);
    std::vector<std::pair<Bytes, std::int32_t>> inherited;
    RowPointer at;
    for (RowView row; permissions.table.next(at, row);)
        if (permissions.get<std::int32_t>(row, object) == TablesContainer &&
            permissions.get<bool>(row, inheritable))
            inherited.emplace_back(permissions.get<Bytes>(row, sid),
                                   permissions.get<std::int32_t>(row, mask));
    const Bytes creator = creatorOf(administrator);
    for (auto& [who, what] : inherited)
        permissions.insert({{ObjectId, id},
                            {SecurityId, who == creator ? administrator : who},
                            {AccessMask, what},
                            {Inheritable, false}});
    change.commit();
}

void Catalog::remove(const CatalogObject& object) {
    Changing change(*pager_, Changing::Undoable);
    SystemTable permissions(*pager_, PermissionsPage);
    const int id = permissions.column(ObjectId);
    RowPointer at;
    for (RowView row; permissions.table.next(at, row);)
        if (permissions.get<std::int32_t>(row, id) == object.id)
            permissions.table.remove(at);
    Table(*pager_, ObjectsPage).remove(object.row);
    change.commit();
}

std::vector<Catalog::RelationshipColumn> Catalog::relationships() const {
    const Reading reading(*pager_);
    const SystemTable system(*pager_, RelationshipsPage);
    const int name = system.column(Relationship), table = system.column(ReferencingTable),
              column = system.column(ReferencingColumn), referencedTable = system.column(ReferencedTable),
              referencedColumn = system.column(ReferencedColumn);
    const auto text = [&](const RowView& row, int at) { return system.get<std::u16string>(row, at); };
    std::vector<RelationshipColumn> all;
    RowPointer at;
    for (RowView row; system.table.next(at, row);)
        all.push_back({at, text(row, name), text(row, table), text(row, column), text(row, referencedTable),
                       text(row, referencedColumn)});
    return all;
}

void Catalog::renameInRelationships(std::u16string_view table, std::u16string_view name) {
    Changing change(*pager_, Changing::Undoable);
    SystemTable system(*pager_, RelationshipsPage);
    const Value changed = std::u16string(name);
    for (const RelationshipColumn& pair : relationships()) {
        if (SameName(pair.table, table))
            system.table.update(pair.row, std::array{FieldChange{system.column(ReferencingTable), changed}});
        if (SameName(pair.referencedTable, table))
            system.table.update(pair.row, std::array{FieldChange{system.column(ReferencedTable), changed}});
    }
    change.commit();
}

void Catalog::renameInRelationships(std::u16string_view table, std::u16string_view column,
                                    std::u16string_view name) {
    Changing change(*pager_, Changing::Undoable);
    SystemTable system(*pager_, RelationshipsPage);
    const Value changed = std::u16string(name);
    for (const RelationshipColumn& pair : relationships()) {
        if (SameName(pair.table, table) && SameName(pair.column, column))
            system.table.update(pair.row, std::array{FieldChange{system.column(ReferencingColumn), changed}});
        if (SameName(pair.referencedTable, table) && SameName(pair.referencedColumn, column))
            system.table.update(pair.row, std::array{FieldChange{system.column(ReferencedColumn), changed}});
    }
    change.commit();
}

} // namespace jet
