// Asks the system to make a started program independent of this one.
#pragma once

class QProcess;

namespace tolvex::platform {

// Before the start: the program inherits no open files, and outlives our terminal.
void SetFree(QProcess& process);

} // namespace tolvex::platform
