// The search for an existing system over drives that may not answer: with progress that can be stopped, and
// with events running meanwhile.
#pragma once

#include "console/ExistingSetup.h"

namespace tolvex {

// FindExistingSetup over the drives of this machine. A drive that stays silent is left out, and named in a
// message at the end. Cost: as long as the slowest drive takes, at most platform::DrivePatience a question.
ExistingSetup SearchDrives(bool networkOnly);

} // namespace tolvex
