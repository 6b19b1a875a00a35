#include "jet/Catalog.h"

#include "jet/Damage.h"
#include "jet/LongValue.h"

#include <algorithm>

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

    Table table;
};

} // namespace

std::vector<CatalogObject> Catalog::objects() const {
    const SystemTable system(*pager_, ObjectsPage);
    const int id = system.column(Id), parent = system.column(ParentId), name = system.column(Name),
              type = system.column(Type), created = system.column(DateCreate),
              updated = system.column(DateUpdate), owner = system.column(Owner), flags = system.column(Flags);
    std::vector<CatalogObject> all;
    RowPointer at;
    for (RowView row; system.table.next(at, row);) {
        CatalogObject object;
        object.row = at;
        object.id = system.get<std::int32_t>(row, id);
        object.parent = system.get<std::int32_t>(row, parent);
        object.name = system.get<std::u16string>(row, name);
        object.kind = system.get<std::int16_t>(row, type);
        object.created = system.get<Date>(row, created);
        object.updated = system.get<Date>(row, updated);
        object.owner = system.get<Bytes>(row, owner);
        object.flags = static_cast<std::uint32_t>(system.get<std::int32_t>(row, flags));
        all.push_back(std::move(object));
    }
    return all;
}

std::vector<CatalogObject> Catalog::tables() const {
    std::vector<CatalogObject> all = objects();
    std::erase_if(all, [](const CatalogObject& object) { return !object.isTable() || object.isSystem(); });
    return all;
}

std::optional<CatalogObject> Catalog::findTable(std::u16string_view name) const {
    for (CatalogObject& object : objects())
        if (object.isTable() && SameName(object.name, name))
            return std::move(object);
    return std::nullopt;
}

Table Catalog::table(std::u16string_view name) const {
    const auto object = findTable(name);
    if (!object)
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(name));
    return table(*object);
}

Table Catalog::table(const CatalogObject& object) const {
    if (!object.isTable())
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(object.name));
    return Table(*pager_, static_cast<PageNumber>(object.id), object.name, properties(object));
}

PropertyBlob Catalog::properties(const CatalogObject& object) const {
    const SystemTable system(*pager_, ObjectsPage);
    RowView row;
    if (!system.table.fetch(object.row, row))
        throw Error(ErrorNumber::ItemNotFound, ToUtf8(object.name));
    return DecodeProperties(system.get<Bytes>(row, system.column(LvProp)));
}

} // namespace jet
