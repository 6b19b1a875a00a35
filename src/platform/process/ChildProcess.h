// What the system is asked for so that a program that is started stands on its own.
#pragma once

class QProcess;

namespace tolvex::platform {

// Before the start: the program inherits nothing that is open here, and outlives our terminal.
void SetFree(QProcess& process);

} // namespace tolvex::platform
