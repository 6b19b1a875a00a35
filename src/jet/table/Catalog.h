// The catalogue of a database: which objects there are, where the tables' definitions lie, the properties of
// objects and columns, and who may use what.
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
    std::int32_t id = 0; // of a table: its definition page
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

// The rows of MSysObjects and of MSysRelationships that can be read; damage goes to `damaged`, and single
// columns that cannot be read are left empty. Throws ReadVerification if the table lacks a column.
std::vector<CatalogObject> ReadObjects(const Table& table, const OnDamage& damaged);
std::vector<RelationshipColumn> ReadRelationships(const Table& table, const OnDamage& damaged);

// A security identifier as a file stores it, of which others of the same file differ by what theirs do in a
// new file: `sid` is stored in a new file, `administrator` the administrator's in this one.
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

    // All objects in the order of the catalogue's rows. Throws ReadVerification if one cannot be read or
    // found.
    std::vector<CatalogObject> objects() const;
    // Those that can be read; damage goes to `damaged`, and single columns that cannot be read are left
    // empty.
    std::vector<CatalogObject> readObjects(const OnDamage& damaged) const;
    // The user's tables (neither system nor linked), in the order of the catalogue.
    std::vector<CatalogObject> tables() const;
    // The table of this name, system tables included. Damage of other objects does not matter; when there is
    // some and no table of this name is found, it is thrown. Cost: one walk over the catalogue's rows.
    std::optional<CatalogObject> findTable(std::u16string_view name) const;

    // Opens a table. Throws ItemNotFound with the name.
    Table table(std::u16string_view name) const;
    Table table(const CatalogObject& object) const;

    PropertyBlob properties(const CatalogObject& object) const;
    // Stores the properties of an object and the time of the change.
    void setProperties(const CatalogObject& object, const PropertyBlob& properties);
    // Throws TableExists for a name that another object has.
    void rename(const CatalogObject& object, std::u16string_view name);
    // Sets the time of the last change of an object's design to now.
    void touch(const CatalogObject& object);

    // Enters a new table with its permissions, given as the engine gives them: each inheritable one of the
    // container of tables. `flags`: as CatalogObject's. Throws TableExists for a name that an object has.
    void addTable(PageNumber definition, std::u16string_view name, const PropertyBlob& properties,
                  std::uint32_t flags = 0);
    // Takes out an object's row and its permissions.
    void remove(const CatalogObject& object);

    // Gives an object what its container hands down; what that has for whoever makes an object goes to the
    // owner of the database.
    void inheritPermissions(std::int32_t object, std::int32_t container);

    std::vector<RelationshipColumn> relationships() const;
    // Enters the new name of a table, or of one of its columns, in the relationships.
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
