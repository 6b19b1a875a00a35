// The one error report of the system.
#pragma once

#include <QString>

namespace tolvex {

// The run-time's text for an error number; empty if it has none.
QString ErrorText(int errorNumber);

// Reports that something went wrong and returns the report. `action` reads as the end of a sentence: "opening
// the database". `errorNumber` 0: no known error. `description` is used if the run-time has no text for the
// number. Shown in an exclamation box unless `quiet`; the mouse pointer is left as found.
QString ProblemReport(const QString& action, int errorNumber = 0, bool quiet = false,
                      const QString& description = {});

// Shows an exclamation box with one OK button.
void ShowExclamation(const QString& text, const QString& title = {});

} // namespace tolvex
