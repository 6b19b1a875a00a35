#include "jet/maintenance/SourceTables.h"

#include "jet/maintenance/DefinitionRepair.h"
#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"
#include "jet/table/Salvage.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint8_t definitionType = 2; // of a page
const OnDamage ignore = [](PageNumber, const Error&) {};

bool isSame(const Column& a, const Column& b) {
    if (a.type != b.type || a.number != b.number || a.isFixed() != b.isFixed())
        return false;
    return a.isFixed() ? a.type == ColumnType::Boolean || a.fixedOffset == b.fixedOffset
                       : a.variableIndex == b.variableIndex;
}

bool isSame(const RealIndex& a, const RealIndex& b) {
    return std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(), b.columns.end(),
                      [](const IndexColumn& one, const IndexColumn& other) {
                          return one.number == other.number && one.ascending == other.ascending;
                      });
}

// Whether the definition of a system table has all columns and indexes of another in the same places, and no
// relationships.
bool includes(const TableDefinition& definition, const TableDefinition& other) {
    for (const Column& column : other.columns) {
        const int found = definition.findColumn(column.name);
        if (found < 0 || !isSame(definition.columns[static_cast<std::size_t>(found)], column))
            return false;
    }
    for (const LogicalIndex& index : definition.logicalIndexes)
        if (index.role != LogicalIndex::Role::None)
            return false;
    return std::all_of(other.logicalIndexes.begin(), other.logicalIndexes.end(),
                       [&](const LogicalIndex& index) {
                           const LogicalIndex* found = definition.findIndex(index.name);
                           return found != nullptr &&
                                  isSame(definition.realIndexes[found->real], other.realIndexes[index.real]);
                       });
}

std::uint64_t countRows(const Table& table) {
    std::uint64_t rows = 0;
    WalkReadable(
        table, [&](RowPointer, const RowView&) { ++rows; }, ignore);
    return rows;
}

} // namespace

Table SourceTables::openSystem(PageNumber page, const std::u16string& name) {
    const TableDefinition known = ReadTableDefinition(empty_, page);
    TableDefinition found;
    std::string fault;
    const auto damaged = [&](PageNumber, const Error& error) { fault = error.detail(); };
    DespiteDamage(page, damaged, [&] { found = ReadUncheckedDefinition(source_, page); });
    RepairDefinition(found, [&](const std::string& lost) { fault = lost; });
    if (fault.empty() && !includes(found, known))
        fault = "its columns and indexes are not the known ones";
    if (fault.empty()) {
        auto pages = pagesIfUnlisted(found);
        Table listed(source_, std::move(found), name, std::move(pages));
        if (countRows(listed) < listed.definition().rowCount)
            if (auto whole = withUnlistedPages(listed))
                return std::move(*whole);
        return listed;
    }
    lost_({page, name, "holds no definition of the table that can be used: " + fault, false});
    return Table(source_, known, name, pagesOf(page));
}

std::optional<Table> SourceTables::open(PageNumber page, const std::u16string& name, bool related) {
    const auto lose = [&](const std::string& reason) { lost_({page, name, reason, false}); };
    const auto damaged = [&](PageNumber, const Error& error) {
        lose("holds no definition of the table that can be read: " + error.detail());
    };
    TableDefinition definition;
    if (!DespiteDamage(page, damaged, [&] { definition = ReadUncheckedDefinition(source_, page); }))
        return std::nullopt;
    RepairDefinition(definition, lose);
    if (!related)
        std::erase_if(definition.logicalIndexes,
                      [](const LogicalIndex& index) { return index.role != LogicalIndex::Role::None; });
    auto pages = pagesIfUnlisted(definition);
    return Table(source_, std::move(definition), name, std::move(pages));
}

std::optional<std::vector<PageNumber>> SourceTables::pagesIfUnlisted(const TableDefinition& definition) {
    if (DespiteDamage(definition.page, ignore, [&] { UsageMap(source_, definition.ownedMap).pages(); }))
        return std::nullopt;
    return pagesOf(definition.page);
}

std::optional<Table> SourceTables::withUnlistedPages(const Table& table) {
    std::vector<PageNumber> pages;
    DespiteDamage(0, ignore, [&] { pages = table.pages(); });
    const std::vector<PageNumber> own = pagesOf(table.definition().page);
    std::vector<PageNumber> all;
    std::set_union(pages.begin(), pages.end(), own.begin(), own.end(), std::back_inserter(all));
    if (all.size() == pages.size())
        return std::nullopt;
    Table whole(source_, table.definition(), table.name(), std::move(all));
    if (countRows(whole) > table.definition().rowCount)
        return std::nullopt;
    return whole;
}

bool SourceTables::isFree(PageNumber page) {
    bool free = false;
    const auto look = [&] { free = FreeMap(source_, {1, 0}).isFree(page); };
    return DespiteDamage(page, ignore, look) && free;
}

std::vector<PageNumber> SourceTables::pagesOf(PageNumber owner) {
    if (!byOwner_) {
        byOwner_.emplace();
        const PageNumber end = source_.pageCount();
        for (PageNumber page = 1; page < end; ++page) {
            const std::uint8_t* bytes = source_.read(page);
            if (datapage::IsDataPage(bytes) && datapage::Owner(bytes) < end && !isFree(page))
                (*byOwner_)[datapage::Owner(source_.read(page))].push_back(page);
        }
    }
    return (*byOwner_)[owner];
}

bool SourceTables::isDefinition(PageNumber page) {
    bool found = false;
    return DespiteDamage(page, ignore,
                         [&] {
                             const TableDefinition definition = ReadTableDefinition(source_, page);
                             found = definition.type == TableDefinition::UserTable;
                             UsageMap(source_, definition.ownedMap).pages();
                         }) &&
           found;
}

std::vector<PageNumber> SourceTables::findDefinitions(const std::set<PageNumber>& known) {
    std::vector<PageNumber> found;
    const PageNumber end = source_.pageCount();
    for (PageNumber page = 1; page < end; ++page)
        if (known.count(page) == 0 && source_.read(page)[0] == definitionType && isDefinition(page) &&
            !isFree(page))
            found.push_back(page);
    return found;
}

} // namespace jet
