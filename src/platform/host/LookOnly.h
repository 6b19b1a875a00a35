// Read-only mode. While a LookOnly lives, nothing on this floor changes a file:
// no file, folder, lock or registry value is made, grown, replaced or removed;
// only a missing machine folder is laid out. Any change that is requested fails
// as it does on a read-only disk, so code that updates things in passing (a
// list's length, a version, the number of a device) leaves them as they are.
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
