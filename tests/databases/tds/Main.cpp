// The test server as a program that drivers reach over TCP, by the TDS protocol: tds_server FOLDER. It prints
// its port, listens on this machine only, and ends with the program that holds its standard input. SIGUSR1
// breaks all connections; it prints their number after the last one has gone, with its transaction. SIGUSR2
// with a number n breaks the connection that would get the n-th answer from now; it prints the number.
#include "databases/tds/Client.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <set>
#include <thread>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::mutex mutex;
std::condition_variable gone;
std::set<int> connections;
std::atomic<int> answersLeft = 0;

void say(std::size_t number) {
    std::printf("%zu\n", number);
    std::fflush(stdout);
}

void serve(int socket, const std::string& folder) {
    {
        const std::scoped_lock lock(mutex);
        connections.insert(socket);
    }
    testserver::tds::Client(socket, folder, answersLeft).serve();
    const std::scoped_lock lock(mutex);
    connections.erase(socket);
    gone.notify_all();
    ::close(socket);
}

void misbehaveWhenTold(sigset_t told) {
    siginfo_t what{};
    while (::sigwaitinfo(&told, &what) > 0) {
        if (what.si_signo == SIGUSR2) {
            answersLeft = what.si_value.sival_int;
            say(static_cast<std::size_t>(what.si_value.sival_int));
            continue;
        }
        std::unique_lock lock(mutex);
        const std::set<int> broken = connections;
        for (const int socket : broken)
            ::shutdown(socket, SHUT_RDWR);
        gone.wait(lock, [] { return connections.empty(); });
        say(broken.size());
    }
}

void endWithInput() {
    char none = 0;
    while (::read(STDIN_FILENO, &none, 1) > 0)
        continue;
    ::_exit(0);
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    sigset_t told;
    ::sigemptyset(&told);
    ::sigaddset(&told, SIGUSR1);
    ::sigaddset(&told, SIGUSR2);
    ::pthread_sigmask(SIG_BLOCK, &told, nullptr);
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener, generic, length) != 0 || ::listen(listener, SOMAXCONN) != 0 ||
        ::getsockname(listener, generic, &length) != 0)
        return 1;
    say(ntohs(address.sin_port));
    std::thread(misbehaveWhenTold, told).detach();
    std::thread(endWithInput).detach();
    for (;;) {
        const int socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        const int now = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
        std::thread(serve, socket, std::string(words[1])).detach();
    }
}
