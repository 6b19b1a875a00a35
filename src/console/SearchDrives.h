// The search for an existing system on drives that may not answer: with progress that can be stopped, while
// events run.
#pragma once

#include "console/ExistingSetup.h"

namespace tolvex {

// FindExistingSetup over the drives of this machine. A silent drive is skipped, and named in a message at the
// end. Cost: as long as the slowest drive takes, at most platform::DrivePatience per question.
ExistingSetup SearchDrives(bool networkOnly);

} // namespace tolvex
