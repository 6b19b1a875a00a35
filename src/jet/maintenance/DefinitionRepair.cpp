#include "jet/maintenance/DefinitionRepair.h"

#include "jet/record/DefinitionFaults.h"

#include <algorithm>
#include <utility>

namespace jet {

namespace {

constexpr std::uint16_t LongestValue = 510; // bytes of a Text or Binary column

class Repair {
public:
    Repair(TableDefinition& definition, const std::function<void(const std::string&)>& lost)
        : definition_(definition)
        , lost_(lost) {}

    void run() {
        repairCount(definition_.columnNumbers, [](const Column& column) { return int{column.number}; });
        repairCount(definition_.variableColumns,
                    [](const Column& column) { return column.isFixed() ? -1 : int{column.variableIndex}; });
        if (!isSound())
            repairPlaces();
        if (definition_.columns.size() == definition_.columnNumbers && misplaced() == 0)
            definition_.variableColumns = static_cast<std::uint16_t>(
                std::count_if(definition_.columns.begin(), definition_.columns.end(),
                              [](const Column& column) { return !column.isFixed(); }));
        dropColumns();
        dropIndexes();
        renameTwins(definition_.columns, "columns");
        renameTwins(definition_.logicalIndexes, "indexes");
        for (Column& column : definition_.columns)
            if ((column.type == ColumnType::Text || column.type == ColumnType::Binary) && !column.isFixed() &&
                (column.size == 0 || column.size > LongestValue))
                column.size = LongestValue; // the most that any of them can hold
    }

private:
    // A count that several columns exceed is wrong itself; one that a single column exceeds is right.
    template<typename NumberOf>
    void repairCount(std::uint16_t& count, NumberOf numberOf) {
        int highest = -1;
        int beyond = 0;
        for (const Column& column : definition_.columns) {
            const int number = numberOf(column);
            highest = number < MaximumColumns ? std::max(highest, number) : highest;
            beyond += number >= count ? 1 : 0;
        }
        if (beyond > 1 || count > MaximumColumns)
            count = static_cast<std::uint16_t>(highest + 1);
    }

    // A single column that leaves a gap is also broken, even if no other has its place.
    bool isSound() {
        const auto& columns = definition_.columns;
        for (auto one = columns.begin(); one != columns.end(); ++one)
            if (FaultOfColumn(definition_, *one) != nullptr ||
                std::any_of(one + 1, columns.end(), [&](const Column& other) {
                    return other.number == one->number || Overlap(*one, other);
                }))
                return false;
        return columns.size() != definition_.columnNumbers || misplaced() != 1;
    }

    // The columns in the order of their numbers; nothing if these are not 0, 1, 2, ...
    std::vector<Column*> numbered() {
        std::vector<Column*> columns(definition_.columns.size());
        for (Column& column : definition_.columns)
            if (column.number < columns.size())
                columns[column.number] = &column;
        if (std::count(columns.begin(), columns.end(), nullptr) > 0)
            columns.clear();
        return columns;
    }

    // Calls `visit(column, fixed offset, variable index)` with the place of each column by its kind.
    template<typename Visit>
    static void forEachPlace(const std::vector<Column*>& columns, Visit visit) {
        int offset = 0;
        int variable = 0;
        for (Column* column : columns) {
            visit(*column, static_cast<std::uint16_t>(offset), static_cast<std::uint16_t>(variable));
            if (!column->isFixed())
                ++variable;
            else if (column->type != ColumnType::Boolean)
                offset += column->size;
        }
    }
    static bool isAt(const Column& column, std::uint16_t offset, std::uint16_t variable) {
        return column.isFixed() ? column.type == ColumnType::Boolean || column.fixedOffset == offset
                                : column.variableIndex == variable;
    }
    // How many columns are not at the places of their kinds; -1: they are not numbered 0, 1, 2, ...
    int misplaced() {
        const std::vector<Column*> columns = numbered();
        int count = columns.empty() ? -1 : 0;
        forEachPlace(columns, [&](const Column& column, std::uint16_t offset, std::uint16_t variable) {
            count += isAt(column, offset, variable) ? 0 : 1;
        });
        return count;
    }

    // Repairs one wrong number or place in a table from which no column was dropped.
    void repairPlaces() {
        if (definition_.columns.size() != definition_.columnNumbers)
            return;
        if (misplaced() == 1) {
            forEachPlace(numbered(), [](Column& column, std::uint16_t offset, std::uint16_t variable) {
                (column.isFixed() ? column.fixedOffset : column.variableIndex) =
                    column.isFixed() ? offset : variable;
            });
            return;
        }
        std::vector<bool> given(definition_.columnNumbers);
        for (const Column& column : definition_.columns)
            if (column.number < given.size())
                given[column.number] = true;
        if (std::count(given.begin(), given.end(), false) != 1)
            return;
        const auto missing =
            static_cast<std::uint16_t>(std::find(given.begin(), given.end(), false) - given.begin());
        for (Column& column : definition_.columns) {
            const std::uint16_t number = std::exchange(column.number, missing);
            if (misplaced() == 0)
                return;
            column.number = number;
        }
    }

    void dropColumns() {
        std::vector<const char*> faults;
        for (const Column& column : definition_.columns) {
            const char* fault = FaultOfColumn(definition_, column);
            for (const Column& other : definition_.columns) {
                if (fault != nullptr || &other == &column || FaultOfColumn(definition_, other) != nullptr)
                    continue;
                if (other.number == column.number)
                    fault = "has the number of another";
                else if (Overlap(column, other))
                    fault = "has the place of another in the row";
            }
            faults.push_back(fault);
        }
        for (std::size_t i = faults.size(); i-- > 0;) {
            if (faults[i] == nullptr)
                continue;
            const auto column = definition_.columns.begin() + static_cast<std::ptrdiff_t>(i);
            lost_("lost column '" + ToUtf8(column->name) + "', which " + faults[i]);
            definition_.columns.erase(column);
        }
    }

    void dropIndexes() {
        for (std::size_t i = definition_.realIndexes.size(); i-- > 0;) {
            const char* fault = FaultOfIndex(definition_, definition_.realIndexes[i]);
            if (fault == nullptr)
                continue;
            lost_("lost " + definition_.nameOfIndex(i) + ", which " + fault);
            definition_.removeIndex(i);
        }
        std::erase_if(definition_.logicalIndexes, [this](const LogicalIndex& index) {
            if (index.real < definition_.realIndexes.size())
                return false;
            lost_("lost index '" + ToUtf8(index.name) + "', which has no tree");
            return true;
        });
    }

    template<typename Named>
    void renameTwins(std::vector<Named>& all, const char* what) {
        NamesBeside beside;
        for (auto one = all.begin(); one != all.end(); ++one) {
            const auto isTaken = [&](std::u16string_view name) {
                return std::any_of(all.begin(), all.end(), [&](const Named& other) {
                    return &other != &*one && SameName(other.name, name);
                });
            };
            const bool twin = std::any_of(
                all.begin(), one, [&](const Named& before) { return SameName(before.name, one->name); });
            if (!twin)
                continue;
            std::u16string name = beside.next(one->name, isTaken);
            lost_("has two " + std::string(what) + " of the name '" + ToUtf8(one->name) +
                  "', one of which is '" + ToUtf8(name) + "' now");
            one->name = std::move(name);
        }
    }

    TableDefinition& definition_;
    const std::function<void(const std::string&)>& lost_;
};

} // namespace

void RepairDefinition(TableDefinition& definition, const std::function<void(const std::string&)>& lost) {
    Repair(definition, lost).run();
}

std::u16string NamesBeside::next(std::u16string_view name,
                                 const std::function<bool(std::u16string_view)>& isTaken) {
    constexpr std::size_t longest = 55; // of 64, the limit of a name
    for (;;) {
        std::u16string other(name.substr(0, longest));
        other += ToUtf16(' ' + std::to_string(++number_));
        if (!isTaken(other))
            return other;
    }
}

} // namespace jet
