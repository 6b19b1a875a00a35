// A disk without room: the system limits the size of files.
#pragma once

#include <csignal>
#include <cstdint>
#include <sys/resource.h>

namespace tolvex::tests {

// While the object lives, files of this process cannot grow beyond this.
class NoRoom {
public:
    explicit NoRoom(std::uintmax_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~NoRoom() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    NoRoom(const NoRoom&) = delete;
    NoRoom& operator=(const NoRoom&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

} // namespace tolvex::tests
