// Reports errors that a database operation threw.
#pragma once

#include "databases/store/SuiteDatabase.h"

#include <utility>
#include <vector>

namespace tolvex {

// Reports the error through the one error report and returns its number.
int Report(const QString& action, const DatabaseError& error);

// Records the error of a routine that reports nothing to the user, and returns its number. `database`: its
// name, in case the error lacks it.
int KeepSilent(const DatabaseError& error, const QString& database = {});

// While one lives, it collects the errors that routines keep silent, for a shell that prints them all.
class SilentErrors {
public:
    SilentErrors();
    ~SilentErrors();
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;

    // Those since the last call.
    std::vector<DatabaseError> take() { return std::exchange(errors_, {}); }

private:
    friend int KeepSilent(const DatabaseError& error, const QString& database);

    static SilentErrors* current_;
    SilentErrors* outer_;
    std::vector<DatabaseError> errors_;
};

// While one lives, reports wait; they are shown when it ends. A message box waits for its user: put this
// around a transaction, so that no other workstation waits for the box.
//
// With `summary`, a phrase for ProblemReport, several reports become one that lists them all: put this around
// work on many databases, so that nobody has to close a box for each.
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
