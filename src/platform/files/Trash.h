// The desktop's trash, from which a file that was removed by mistake can be taken back.
#pragma once

#include <QString>

namespace tolvex::platform {

// Moves a file there. False when its drive has none, or will not take it: the file is then where it was.
bool MoveToTrash(const QString& path);

} // namespace tolvex::platform
