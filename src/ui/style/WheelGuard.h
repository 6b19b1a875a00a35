// Keeps the mouse wheel away from fields that do not have the focus: there it scrolls what the field stands
// in, and changes no value that happens to pass under the pointer.
#pragma once

class QApplication;

namespace tolvex {

// For all forms of the program, once; a second call does nothing.
void GuardWheel(QApplication& application);

} // namespace tolvex
