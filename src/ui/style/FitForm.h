// The size a form opens with: what its texts ask for at the text size in force, up to the screen's own size.
// (Qt by itself stops at two thirds of the screen and forgets texts that wrap.)
#pragma once

class QWidget;

namespace tolvex {

void FitForm(QWidget* form);

} // namespace tolvex
