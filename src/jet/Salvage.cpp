#include "jet/Salvage.h"

namespace jet {

namespace {

template<typename T>
void take(const Table& table, const RowView& row, std::u16string_view column, T& into) {
    const int at = table.definition().findColumn(column);
    Value value;
    if (at >= 0)
        table.value(row, at, value);
    if (T* held = std::get_if<T>(&value))
        into = std::move(*held);
}

} // namespace

std::vector<CatalogObject> ReadableObjects(const Catalog& catalog, const OnDamage& damaged) {
    std::vector<CatalogObject> objects;
    const Table table(catalog.pager(), Catalog::ObjectsPage, u"MSysObjects");
    const auto visit = [&](RowPointer at, const RowView& row) {
        CatalogObject object;
        std::int32_t flags = 0;
        object.row = at;
        take(table, row, u"Id", object.id);
        take(table, row, u"ParentId", object.parent);
        take(table, row, u"Name", object.name);
        take(table, row, u"Type", object.kind);
        take(table, row, u"DateCreate", object.created);
        take(table, row, u"DateUpdate", object.updated);
        take(table, row, u"Owner", object.owner);
        take(table, row, u"Flags", flags);
        object.flags = static_cast<std::uint32_t>(flags);
        objects.push_back(std::move(object));
    };
    WalkReadable(table, visit, damaged);
    return objects;
}

} // namespace jet
