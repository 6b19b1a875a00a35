// Ties the settings that a form holds to its controls: the rows of the settings table name form and control.
#pragma once

#include "core/settings/Settings.h"
#include "ui/binding/FormBinding.h"

namespace tolvex {

// Binds each row that is declared by `.on(form, control)` and whose form has the object name of this one,
// with the row's range and length, its help line as tool tip. The settings outlive the binding.
void BindSettings(FormBinding& binding, const QWidget* form, Settings& settings);

} // namespace tolvex
