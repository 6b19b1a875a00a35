// Access keys that work without Alt: a plain letter presses the control whose caption marks it. If captions
// mark one letter twice, each press moves the focus to the next of them, and Enter or the space bar presses
// it.
#pragma once

#include <QChar>

class QMainWindow;

namespace tolvex {

// True if a visible, enabled button or menu of the window has that access key.
bool PressAccessKey(QMainWindow* window, QChar key);

} // namespace tolvex
