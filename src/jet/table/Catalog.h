// The catalogue of a database: its objects, where the tables' definitions lie, the properties of objects and
// columns, and permissions.
#pragma once

#include "jet/record/PropertyBlob.h"
#include "jet/table/Salvage.h"

#include <optional>

namespace jet {

// One row of MSysObjects, without the long columns.
struct CatalogObject {
    enum Kind : std::int16_t {
        TableKind = 1,
        DatabaseKind = 2,
        ContainerKind = 3,
        LinkedServerKind = 4,
        QueryKind = 5,
        LinkedTableKind = 6,
        RelationshipKind = 8,
    };
    static constexpr std::uint32_t SystemFlags = 0x80000002;
    static constexpr std::uint32_t HiddenFlag = 8;

    RowPointer row;
    std::int32_t id = 0; // for a table: its definition page
    std::int32_t parent = 0;
    std::u16string name;
    std::int16_t kind = TableKind; // or a kind of another program
    Date created;
    Date updated;
    Bytes owner; // security identifier as stored
    std::uint32_t flags = 0;

    bool isTable() const { return kind == TableKind; }
    bool isSystem() const { return (flags & SystemFlags) != 0; }
};

// One row of MSysRelationships: a pair of columns of a relationship between two tables.
struct RelationshipColumn {
    RowPointer row;
    std::u16string name;
    std::u16string table;
    std::u16string column;
    std::u16string referencedTable;
    std::u16string referencedColumn;
};

// The readable rows of MSysObjects and of MSysRelationships; `damaged` gets the damage, and single unreadable
// columns are left empty. Throws ReadVerification if the table lacks a column.
std::vector<CatalogObject> ReadObjects(const Table& table, const OnDamage& damaged);
std::vector<RelationshipColumn> ReadRelationships(const Table& table, const OnDamage& damaged);

// Converts a security identifier to this file's form. Identifiers differ in the same way in every file: `sid`
// is the form in a new file, `administrator` is the administrator's form in this one.
Bytes SecurityIdOf(const Bytes& sid, const Bytes& administrator);

// The computer's local time, as the catalogue keeps it.
Date LocalTime();

class Catalog {
public:
    static constexpr PageNumber ObjectsPage = 2;
    static constexpr PageNumber PermissionsPage = 3;
    static constexpr PageNumber QueriesPage = 4;
    static constexpr PageNumber RelationshipsPage = 5;
    static constexpr std::int32_t TablesContainer = 0x0F000001;
    static constexpr std::int32_t RelationshipsContainer = 0x0F000003;

    // Reads nothing yet. The pager outlives the catalogue and its tables.
    explicit Catalog(Pager& pager)
        : pager_(&pager) {}

    Pager& pager() const { return *pager_; }

    // All objects in the order of the catalogue's rows. Throws ReadVerification if one is unreadable or
    // missing.
    std::vector<CatalogObject> objects() const;
    // The readable ones; `damaged` gets the damage, and
    // single unreadable columns are left empty.
    std::vector<CatalogObject> readObjects(const OnDamage& damaged) const;
    // The user's tables (neither system nor linked), in the order of the catalogue.
    std::vector<CatalogObject> tables() const;
    // The table of this name, including system tables. Damage to other objects is ignored if the table is
    // found, and thrown if it is not. Cost: one scan of the catalogue's rows.
    std::optional<CatalogObject> findTable(std::u16string_view name) const;

    // Opens a table. Throws ItemNotFound with the name.
    Table table(std::u16string_view name) const;
    Table table(const CatalogObject& object) const;

    PropertyBlob properties(const CatalogObject& object) const;
    // Stores the properties of an object and the time of the change.
    void setProperties(const CatalogObject& object, const PropertyBlob& properties);
    // Throws TableExists if another object has the name.
    void rename(const CatalogObject& object, std::u16string_view name);
    // Sets the time of the last change of an object's design to now.
    void touch(const CatalogObject& object);

    // Adds a new table with the permissions that the engine gives: every inheritable one of the container of
    // tables. `flags`: as in CatalogObject. Throws TableExists if an object has the name.
    void addTable(PageNumber definition, std::u16string_view name, const PropertyBlob& properties,
                  std::uint32_t flags = 0);
    // Removes an object's row and its permissions.
    void remove(const CatalogObject& object);

    // Gives an object the permissions that its container passes on; those for an object's creator go to the
    // owner of the database.
    void inheritPermissions(std::int32_t object, std::int32_t container);

    std::vector<RelationshipColumn> relationships() const;
    // Updates the relationships to the new name of a table, or of one of its columns.
    void renameInRelationships(std::u16string_view table, std::u16string_view name);
    void renameInRelationships(std::u16string_view table, std::u16string_view column,
                               std::u16string_view name);

private:
    Bytes administrator() const;
    bool hasSibling(std::int32_t parent, std::u16string_view name, std::int32_t except) const;
    void updateObject(const CatalogObject& object,
                      std::initializer_list<std::pair<const char16_t*, Value>> fields);

    Pager* pager_;
};

} // namespace jet
