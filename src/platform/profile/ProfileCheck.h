// Whether a profile file can be written, asked before anything is: for those who write several files, or
// none.
#pragma once

#include "platform/profile/ProfileFile.h"

namespace tolvex::platform {

// The ProfileError that a write to the file would end with now; ProfileOk when nothing stands in its way.
// Only a full or failing disk does not show before the write. Leaves everything as it is.
int CheckProfileWrite(const QString& file);

} // namespace tolvex::platform
