// Repairs a table's definition so that its rows can be saved.
#pragma once

#include "jet/record/TableDefinition.h"

#include <functional>

namespace jet {

// Establishes everything that rows, indexes and the check rely on. In a table that never lost a column the
// numbers and places of columns follow from their kinds, so a wrong one can be restored. A column or an index
// that cannot be restored is left out, and `lost` gets that as the end of a sentence. A sound definition
// stays as it is.
void RepairDefinition(TableDefinition& definition, const std::function<void(const std::string&)>& lost);

// Makes duplicate names unique: with a number appended, a
// different one each time, so that few are tried.
class NamesBeside {
public:
    std::u16string next(std::u16string_view name, const std::function<bool(std::u16string_view)>& isTaken);

private:
    int number_ = 1;
};

} // namespace jet
