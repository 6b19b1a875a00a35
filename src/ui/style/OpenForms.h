// The collection of open forms: who is open beside the console, in the order of opening. The console unloads
// them from the last to the first when it closes.
#pragma once

#include <QList>

class QWidget;

namespace tolvex {

// Entered at opening; leaves by itself when the form is destroyed. Entering twice changes nothing.
void EnterForm(QWidget* form);
QList<QWidget*> OpenForms();

} // namespace tolvex
