// Keeps the mouse wheel away from fields without the focus: there it scrolls the surroundings of the field,
// and changes no value that happens to be under the pointer.
#pragma once

class QApplication;

namespace tolvex {

// For all forms of the program, once; a second call does nothing.
void GuardWheel(QApplication& application);

} // namespace tolvex
