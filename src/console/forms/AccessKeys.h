// Access keys that work without Alt: a plain letter presses the control whose caption marks it. Where the
// captions mark one letter twice, the controls are reached in turn: each press moves the focus to the next,
// Enter or the space bar presses it.
#pragma once

#include <QChar>

class QMainWindow;

namespace tolvex {

// True when a visible, enabled button or menu of the window has that access key.
bool PressAccessKey(QMainWindow* window, QChar key);

} // namespace tolvex
