// Another workstation: a process of its own on the same files.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace tolvex::tests {

class OtherWorkstation {
public:
    // `work` returns true on success.
    explicit OtherWorkstation(const std::function<bool()>& work)
        : id_(::fork()) {
        if (id_ == 0)
            ::_exit(work() && !testing::Test::HasFailure() ? 0 : 1);
    }
    // Waits for its end.
    bool wentWell() const {
        int status = 0;
        ::waitpid(id_, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t id_;
};

// Makes processes created while it lives start at the same moment.
class StartingGun {
public:
    StartingGun() { EXPECT_EQ(::pipe(ends_), 0); }
    ~StartingGun() { ::close(ends_[0]); }
    StartingGun(const StartingGun&) = delete;
    StartingGun& operator=(const StartingGun&) = delete;

    // In a process: returns when it is released.
    void wait() const {
        ::close(ends_[1]);
        char none = 0;
        EXPECT_EQ(::read(ends_[0], &none, 1), 0);
    }
    void fire() const { ::close(ends_[1]); }

private:
    int ends_[2] = {-1, -1};
};

} // namespace tolvex::tests
