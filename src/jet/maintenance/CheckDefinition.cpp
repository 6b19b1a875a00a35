#include "jet/maintenance/CheckDefinition.h"

#include "jet/text/Collation.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t pageHead = 8;
constexpr std::size_t freeField = 2;
constexpr std::size_t lengthField = 8;
// The longest text or binary value of a row.
constexpr int longestValue = 510;

class DefinitionCheck {
public:
    DefinitionCheck(CheckContext& context, const TableDefinition& definition)
        : context_(context)
        , definition_(definition) {}

    void checkPages(const std::vector<PageNumber>& pages) {
        const std::uint32_t length = Load32(context_.pager.read(definition_.page) + lengthField);
        std::size_t left = std::max<std::size_t>(length, pageHead) - pageHead;
        for (const PageNumber page : pages) {
            const std::size_t used = std::min(left, PageSize - pageHead);
            left -= used;
            // A space as large as the head stays unused on every page.
            const std::size_t room = PageSize - pageHead - used;
            const std::size_t free = room > pageHead ? room - pageHead : 0;
            const std::size_t said = Load16(context_.pager.read(page) + freeField);
            if (said != free)
                context_.faults.fault(page, "says that it has " + std::to_string(said) +
                                                " free bytes instead of " + std::to_string(free));
        }
        const std::size_t needed = TableDefinitionLength(context_.pager, definition_.page);
        if (needed != length)
            fault("says that the table definition has " + std::to_string(length) + " bytes instead of " +
                  std::to_string(needed));
    }

    void checkColumns() {
        checkPlaces();
        std::vector<std::u16string_view> names;
        for (const Column& column : definition_.columns) {
            names.emplace_back(column.name);
            const bool sized = column.type == ColumnType::Text || column.type == ColumnType::Binary;
            if (sized && (column.size == 0 || column.size > longestValue))
                fault("gives column '" + ToUtf8(column.name) + "' a size of " + std::to_string(column.size) +
                      " bytes");
        }
        checkNames(names, "columns");
    }

    void checkIndexes() {
        std::vector<std::u16string_view> names;
        for (const LogicalIndex& index : definition_.logicalIndexes) {
            names.emplace_back(index.name);
            if (index.role != LogicalIndex::Role::None && names.size() <= MaximumColumns)
                context_.faults.guard(definition_.page, [&] { checkOtherSide(index); });
        }
        checkNames(names, "indexes");
    }

private:
    void fault(const std::string& reason) { context_.faults.fault(definition_.page, reason); }

    void checkNames(std::vector<std::u16string_view>& names, const char* what) {
        if (names.size() > MaximumColumns)
            fault("has " + std::to_string(names.size()) + " " + what);
        std::sort(names.begin(), names.end(),
                  [](std::u16string_view a, std::u16string_view b) { return CompareTexts(a, b) < 0; });
        for (std::size_t i = 1; i < names.size(); ++i)
            if (SameName(names[i - 1], names[i]))
                fault(std::string("has two ") + what + " of the name '" + ToUtf8(names[i]) + "'");
    }

    // No two columns may share a place in the row.
    void checkPlaces() {
        std::vector<const Column*> fixed;
        std::vector<bool> variables(definition_.variableColumns);
        for (const Column& column : definition_.columns) {
            if (column.isFixed() && column.type != ColumnType::Boolean) {
                fixed.push_back(&column);
            } else if (!column.isFixed()) {
                if (variables[column.variableIndex])
                    fault("gives column '" + ToUtf8(column.name) + "' the place of another in the row");
                variables[column.variableIndex] = true;
            }
        }
        std::sort(fixed.begin(), fixed.end(),
                  [](const Column* a, const Column* b) { return a->fixedOffset < b->fixedOffset; });
        for (std::size_t i = 1; i < fixed.size(); ++i)
            if (fixed[i - 1]->fixedOffset + fixed[i - 1]->size > fixed[i]->fixedOffset)
                fault("gives column '" + ToUtf8(fixed[i]->name) + "' the place of another in the row");
    }

    // An index of a relationship has a partner in the other table, which names this one.
    void checkOtherSide(const LogicalIndex& index) {
        const TableDefinition other = ReadTableDefinition(context_.pager, index.otherTable);
        const bool found = std::any_of(
            other.logicalIndexes.begin(), other.logicalIndexes.end(), [&](const LogicalIndex& one) {
                return one.number == index.otherNumber && one.otherTable == definition_.page &&
                       one.otherNumber == index.number && one.role != index.role;
            });
        if (!found)
            fault("has a relationship '" + ToUtf8(index.name) + "' that the table of page " +
                  std::to_string(index.otherTable) + " does not have");
    }

    CheckContext& context_;
    const TableDefinition& definition_;
};

} // namespace

void CheckDefinition(CheckContext& context, const TableDefinition& definition,
                     const std::vector<PageNumber>& pages) {
    DefinitionCheck check(context, definition);
    check.checkPages(pages);
    check.checkColumns();
    check.checkIndexes();
}

} // namespace jet
