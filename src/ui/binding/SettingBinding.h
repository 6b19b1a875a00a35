// Ties the settings of a form to its controls: the rows of the settings table name form and control.
#pragma once

#include "core/settings/Settings.h"
#include "ui/binding/FormBinding.h"

namespace tolvex {

// Binds each row that was declared with `.on(form, control)` for a form with this object name, with the row's
// range and length, and its help line as tool tip. The settings outlive the binding.
void BindSettings(FormBinding& binding, const QWidget* form, Settings& settings);

} // namespace tolvex
