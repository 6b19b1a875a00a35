// File operations that are cut short or fail, one chosen one at a time. A test program that links
// FileFaults.cpp makes and changes all its files through it: opening to make, writing, renaming, linking,
// removing, giving owners and modes, making folders, flushing. (Calls of libraries that the program only
// loads go elsewhere.)
//
//     const FaultyRun whole = RunWithFault(job, Fault::None, 0);
//     for (int at = 1; at <= whole.operations; ++at)
//         RunWithFault(job, Fault::Kill, at);
#pragma once

#include <functional>

namespace tolvex::tests {

enum class Fault {
    None,
    Kill,   // the process dies at the operation; of a write, half is done
    Error,  // the one operation fails as a broken disk fails
    NoRoom, // from that operation on, everything that takes room fails as a full disk fails
};

struct FaultyRun {
    int operations = 0; // how many there were
    bool killed = false;
    int result = -1; // what the job gave, when it ended by itself
};

// Runs `job` in a process of its own, with a fault at its operation number `at` (from 1). A job whose checks
// fail ends with -1.
FaultyRun RunWithFault(const std::function<int()>& job, Fault fault, int at);

// What file systems differ in. While one of these lives, this process and those that it makes meet one that
// lacks some.
struct DiskAbilities {
    bool renamesWithoutReplacing = true;
    bool links = true;
};
class PlainDisk {
public:
    explicit PlainDisk(DiskAbilities abilities);
    ~PlainDisk();
    PlainDisk(const PlainDisk&) = delete;
    PlainDisk& operator=(const PlainDisk&) = delete;
};

} // namespace tolvex::tests
