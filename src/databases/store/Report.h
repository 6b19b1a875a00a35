// Reporting what a database operation threw.
#pragma once

#include "databases/store/SuiteDatabase.h"

#include <vector>

namespace tolvex {

// Reports the error through the one error report and gives its number.
int Report(const QString& action, const DatabaseError& error);

// While one lives, reports wait; they are shown when it ends. A message box waits for its user: put this
// around a transaction, so that no other workstation waits for the box.
//
// With `summary`, a phrase as ProblemReport takes it, more than one report becomes one report of it that
// lists what each said: put this around work over many databases, so that nobody has to close a box for each.
class HeldReports {
public:
    explicit HeldReports(const QString& summary = {});
    ~HeldReports();
    HeldReports(const HeldReports&) = delete;
    HeldReports& operator=(const HeldReports&) = delete;

private:
    friend int Report(const QString& action, const DatabaseError& error);
    struct Entry {
        QString action;
        DatabaseError error;
    };

    static HeldReports* current_;
    HeldReports* outer_;
    QString summary_;
    std::vector<Entry> entries_;
};

} // namespace tolvex
