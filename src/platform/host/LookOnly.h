// Calls that only look at the machine. While a LookOnly lives, nothing on this floor changes a file: no file,
// folder, lock or registry value is made, grown, replaced or removed; only a machine folder that is not there
// at all is laid out. A change that is asked for all the same fails as it does on a disk that is read-only,
// so whoever keeps things up to date in passing (a list's length, a version, the number of a device) leaves
// them as they are.
#pragma once

namespace tolvex::platform {

class LookOnly {
public:
    LookOnly();
    ~LookOnly();
    LookOnly(const LookOnly&) = delete;
    LookOnly& operator=(const LookOnly&) = delete;
};

// True while any LookOnly lives.
bool LookingOnly();

} // namespace tolvex::platform
