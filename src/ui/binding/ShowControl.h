// Brings a control of a form into sight.
#pragma once

#include <QString>

class QWidget;

namespace tolvex {

// Its tab to the front, and the focus on it or, for a label, on the field that it belongs to. Nothing happens
// for a name that the form does not have.
void ShowControl(QWidget* form, const QString& name);

} // namespace tolvex
