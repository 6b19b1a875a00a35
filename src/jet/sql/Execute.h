// Statements that change rows.
#pragma once

#include "jet/sql/Sql.h"
#include "jet/table/Catalog.h"

namespace jet {

// The table a statement names. Throws TableNotFound.
Table FindTable(const Catalog& catalog, std::u16string_view name);

// Runs INSERT, UPDATE or DELETE, completely or not at all, and returns the number of changed rows. An UPDATE
// or DELETE selects its rows before it changes the first. Throws InvalidArgument for a SELECT, the errors of
// parsing and of Predicate, and those of Table for a row that cannot be stored.
std::uint32_t Execute(Catalog& catalog, std::u16string_view sql);
std::uint32_t Execute(Catalog& catalog, const sql::Statement& statement);

} // namespace jet
