// One copy of the program for each machine folder.
#pragma once

#include <memory>

class QLockFile;

namespace tolvex::platform {

class SingleInstance {
public:
    // Takes the machine folder's lock. The lock of a process that died is taken over.
    SingleInstance();
    ~SingleInstance();
    // False: another copy is running.
    bool first() const { return first_; }

private:
    std::unique_ptr<QLockFile> lock_;
    bool first_ = false;
};

} // namespace tolvex::platform
