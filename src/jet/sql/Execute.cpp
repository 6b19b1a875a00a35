#include "jet/sql/Execute.h"

#include "jet/base/Error.h"
#include "jet/sql/Filter.h"

namespace jet {

namespace {

struct Runner {
    Catalog& catalog;

    std::uint32_t operator()(const sql::Select&) const {
        throw Error(ErrorNumber::InvalidArgument, "a SELECT changes nothing");
    }

    std::uint32_t operator()(const sql::Insert& insert) const {
        Table table = FindTable(catalog, insert.table);
        const TableDefinition& definition = table.definition();
        std::vector<int> columns;
        for (const std::u16string& field : insert.fields)
            columns.push_back(FindField(definition, table.name(), {}, field));
        if (insert.fields.empty())
            columns = definition.displayOrder();
        if (columns.size() != insert.values.size())
            throw Error(ErrorNumber::SyntaxError, "as many values as fields are needed");
        std::vector<Value> values(definition.columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i)
            values[static_cast<std::size_t>(columns[i])] = insert.values[i].literal;
        table.insert(values);
        return 1;
    }

    std::uint32_t operator()(const sql::Update& update) const {
        Table table = FindTable(catalog, update.table);
        struct Source {
            int column;
            int field; // -1: a literal
            const Value* literal;
        };
        std::vector<Source> sources;
        for (const sql::Assignment& assignment : update.assignments) {
            const sql::Expression& value = assignment.value;
            const bool literal = value.kind == sql::Expression::Kind::Literal;
            sources.push_back(
                {FindField(table.definition(), table.name(), {}, assignment.field),
                 literal ? -1 : FindField(table.definition(), table.name(), value.table, value.field),
                 &value.literal});
        }
        const std::vector<RowPointer> rows = Filter(table, update.where).rows();
        std::vector<FieldChange> changes(sources.size());
        for (const RowPointer at : rows) {
            RowView row;
            if (!table.fetch(at, row))
                throw Error(ErrorNumber::RecordDeleted);
            for (std::size_t i = 0; i < sources.size(); ++i) {
                changes[i].column = sources[i].column;
                if (sources[i].field < 0)
                    changes[i].value = *sources[i].literal;
                else
                    table.value(row, sources[i].field, changes[i].value);
            }
            table.update(at, changes);
        }
        return static_cast<std::uint32_t>(rows.size());
    }

    std::uint32_t operator()(const sql::Delete& remove) const {
        Table table = FindTable(catalog, remove.table);
        const std::vector<RowPointer> rows = Filter(table, remove.where).rows();
        for (const RowPointer at : rows)
            table.remove(at);
        return static_cast<std::uint32_t>(rows.size());
    }
};

} // namespace

Table FindTable(const Catalog& catalog, std::u16string_view name) {
    const auto object = catalog.findTable(name);
    if (!object)
        throw Error(ErrorNumber::TableNotFound, ToUtf8(name));
    return catalog.table(*object);
}

std::uint32_t Execute(Catalog& catalog, std::u16string_view sql) {
    return Execute(catalog, sql::ParseStatement(sql));
}

std::uint32_t Execute(Catalog& catalog, const sql::Statement& statement) {
    Changing change(catalog.pager());
    const std::uint32_t rows = std::visit(Runner{catalog}, statement);
    change.commit();
    return rows;
}

} // namespace jet
