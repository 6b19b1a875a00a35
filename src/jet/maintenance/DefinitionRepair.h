// Mending a table's definition so that its rows can be saved.
#pragma once

#include "jet/record/TableDefinition.h"

#include <functional>

namespace jet {

// Makes everything hold that rows, indexes and the check rely on. Of a table that never lost a column the
// numbers and places of columns follow from their kinds, so that a broken one is found again. What cannot be
// known any more is left out, a column or an index, and `lost` gets that as the end of a sentence. A sound
// definition stays as it is.
void RepairDefinition(TableDefinition& definition, const std::function<void(const std::string&)>& lost);

// Names for things that have those of others: with a number appended, which is another one each time, so that
// few are tried.
class NamesBeside {
public:
    std::u16string next(std::u16string_view name, const std::function<bool(std::u16string_view)>& isTaken);

private:
    int number_ = 1;
};

} // namespace jet
