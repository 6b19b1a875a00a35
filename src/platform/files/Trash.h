// The desktop's trash, from which a file deleted by mistake can be restored.
#pragma once

#include <QString>

namespace tolvex::platform {

// Moves a file there. False if its drive has no trash or refuses it: the file then stays where it was.
bool MoveToTrash(const QString& path);

} // namespace tolvex::platform
