// The tests' user often has all rights; checks of missing rights run as somebody else.
#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace tolvex::tests {

inline constexpr uid_t nobody = 65534;

// Runs a test's checks in a process of its own without root's rights. True if none failed there.
template<class Checks>
bool PassesWithoutRights(Checks checks) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            ::_exit(2);
        checks();
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0;
}

} // namespace tolvex::tests
