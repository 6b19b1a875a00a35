// Reporting what a database operation threw.
#pragma once

#include "core/ProblemReport.h"
#include "databases/SuiteDatabase.h"

namespace tolvex {

// Reports the error through the one error report and gives its number.
inline int Report(const QString& action, const DatabaseError& error) {
    ProblemReport(action, error.number, false, error.text);
    return error.number;
}

} // namespace tolvex
