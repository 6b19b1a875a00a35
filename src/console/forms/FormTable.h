// The forms that the console can open, by name. A job whose form has no row here cannot be opened yet: its
// button says so.
#pragma once

#include <QString>

class QDialog;
class QWidget;

namespace tolvex {

bool FormExists(const QString& form);

// A new form, not shown; null when there is none of that name.
QDialog* MakeForm(const QString& form, QWidget* owner);

// The bytes of a form's design, for the search; empty when it has none.
QByteArray FormDesign(const QString& form);

} // namespace tolvex
