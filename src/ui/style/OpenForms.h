// The collection of open forms beside the console, in the order of opening. The console unloads them from the
// last to the first when it closes.
#pragma once

#include <QList>

class QWidget;

namespace tolvex {

// Added at opening; removed automatically when the form is destroyed. Adding twice changes nothing.
void EnterForm(QWidget* form);
QList<QWidget*> OpenForms();

} // namespace tolvex
