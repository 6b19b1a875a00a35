// The changing half of a Table: made with the first change, it keeps what is needed for many of them.
#pragma once

#include "jet/LongValue.h"
#include "jet/Table.h"

namespace jet {

class TableWriter {
public:
    explicit TableWriter(Table& table);
};

} // namespace jet
