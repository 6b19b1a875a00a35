#include "platform/posix/SharedPages.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

// The current copy of this thread, for the handler: a fault outside it is not ours.
struct Copy {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    volatile std::sig_atomic_t failed = 0;
};
thread_local Copy copying;

struct sigaction previous {};
std::uintptr_t pageSize = 0;

void passOn(int signal, siginfo_t* info, void* context) {
    if ((previous.sa_flags & SA_SIGINFO) != 0)
        previous.sa_sigaction(signal, info, context);
    else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN)
        previous.sa_handler(signal);
    else
        ::sigaction(signal, &previous, nullptr); // the access is repeated and meets the default
}

// Calls only mmap, a bare system call, which is safe at any instruction.
void onLostPage(int signal, siginfo_t* info, void* context) {
    const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
    const std::uintptr_t page = address & ~(pageSize - 1);
    if (address < copying.begin || address >= copying.end ||
        ::mmap(reinterpret_cast<void*>(page), pageSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED,
               -1, 0) == MAP_FAILED)
        return passOn(signal, info, context);
    copying.failed = 1;
}

void installHandler() {
    static const bool installed = [] {
        pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
        copying.failed = 0; // creates the thread's record before a handler needs it
        struct sigaction action {};
        action.sa_sigaction = &onLostPage;
        action.sa_flags = SA_SIGINFO | SA_NODEFER;
        return ::sigaction(SIGBUS, &action, &previous) == 0;
    }();
    static_cast<void>(installed);
}

} // namespace

bool SharedPages::map(int descriptor, qint64 length) {
    unmap();
    if (length <= 0)
        return false;
    installHandler();
    void* pages = ::mmap(nullptr, static_cast<size_t>(length), PROT_READ, MAP_SHARED, descriptor, 0);
    if (pages == MAP_FAILED)
        return false;
    pages_ = static_cast<char*>(pages);
    length_ = length;
    return true;
}

void SharedPages::unmap() {
    if (pages_)
        ::munmap(pages_, static_cast<size_t>(length_));
    pages_ = nullptr;
    length_ = 0;
}

bool SharedPages::copy(qint64 offset, qint64 length, char* out) const {
    const char* from = pages_ + offset;
    copying.failed = 0;
    copying.begin = reinterpret_cast<std::uintptr_t>(from);
    copying.end = copying.begin + static_cast<std::uintptr_t>(length);
    // The handler reads the bounds: they must be set before
    // the first byte is read and stay until the last.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    std::memcpy(out, from, static_cast<size_t>(length));
    std::atomic_signal_fence(std::memory_order_seq_cst);
    copying.begin = copying.end = 0;
    return copying.failed == 0;
}

} // namespace tolvex::platform
