// File operations that are interrupted or fail, one at a time. A test program
// that links FileFaults.cpp changes all its files through it: creating, writing,
// renaming, linking, removing, setting owners and modes, making folders,
// flushing. (Calls inside dynamically loaded libraries are not covered.)
//
//     const FaultyRun whole = RunWithFault(job, Fault::None, 0);
//     for (int at = 1; at <= whole.operations; ++at)
//         RunWithFault(job, Fault::Kill, at);
#pragma once

#include <functional>

namespace tolvex::tests {

enum class Fault {
    None,
    Kill,   // the process dies at the operation; a write is half done
    Error,  // the one operation fails as on a broken disk
    NoRoom, // from that operation on, everything that needs room fails as on a full disk
};

struct FaultyRun {
    int operations = 0; // how many there were
    bool killed = false;
    int result = -1; // of the job, if it ended by itself
};

// Runs `job` in a process of its own, with a fault at its operation number `at` (from 1). A job whose checks
// fail ends with -1.
FaultyRun RunWithFault(const std::function<int()>& job, Fault fault, int at);

// Features that file systems may lack. While one of these lives, this process and its children see a file
// system without some of them.
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
