// The forms that the console can open and the routines that it can start, by name.
#pragma once

#include <QString>

class QDialog;
class QWidget;

namespace tolvex {

struct Workstation;

// A new form, not shown; null if there is none of that name.
QDialog* MakeForm(const QString& form, Workstation& station, QWidget* owner);

// A routine of a button that opens no form. True: the user asked to exit.
using ConsoleRoutine = bool (*)(Workstation& station, QWidget* console);

// Null if there is none of that name.
ConsoleRoutine FindRoutine(const QString& name);

// The bytes of a form's design, for the search; empty if it has none.
QByteArray FormDesign(const QString& form);

} // namespace tolvex
