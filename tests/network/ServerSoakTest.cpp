// The remote control among hostile peers, for as long as TOLVEX_SOAK_SECONDS says (one second otherwise): its
// memory stays flat, no file stays open, and it answers when they are gone.
#include "network/server/RemoteControl.h"
#include "support/MachineFolder.h"
#include "support/OpenSockets.h"
#include "support/WaitFor.h"

#include <QElapsedTimer>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

// What a hostile peer does with its connection.
void pester(int socket, unsigned kind) {
    const QByteArray flood(60000, 'x');
    const QByteArray commands = QByteArray("1234\r").repeated(30);
    char bytes[64];
    switch (kind % 6) {
    case 0: // comes and goes
        return;
    case 1: // says a lot that is no command
        for (int i = 0; i < 40 && ::send(socket, flood.constData(), size_t(flood.size()), MSG_NOSIGNAL) > 0;
             ++i) {
        }
        return;
    case 2: // a byte at a time
        for (int i = 0; i < 300 && ::send(socket, i % 5 == 4 ? "\r" : "7", 1, MSG_NOSIGNAL) > 0; ++i)
            ::usleep(50);
        return;
    case 3: // asks and never reads
        for (int i = 0;
             i < 300 && ::send(socket, commands.constData(), size_t(commands.size()), MSG_NOSIGNAL) > 0; ++i)
            ::usleep(20);
        return;
    case 4: { // resets the connection
        ::send(socket, "12", 2, MSG_NOSIGNAL);
        const struct linger hard { 1, 0 };
        ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        return;
    }
    default: // half closes and waits
        ::shutdown(socket, SHUT_WR);
        while (::recv(socket, bytes, sizeof bytes, 0) > 0) {
        }
    }
}

void pesterUntil(const std::atomic<bool>& done, std::atomic<int>& connects, quint16 port, unsigned seed) {
    std::minstd_rand random(seed);
    while (!done) {
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        const struct timeval patience { 0, 200000 };
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        struct sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address) == 0) {
            ++connects;
            pester(socket, unsigned(random()));
        }
        ::close(socket);
    }
}

long residentKilobytes() {
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly)
               ? file.readAll().split(' ').value(1).toLong() * (::sysconf(_SC_PAGESIZE) / 1024)
               : 0;
}

} // namespace

TEST(ServerSoak, HostilePeersLeaveNothingBehind) {
    const int seconds = qMax(qEnvironmentVariableIntValue("TOLVEX_SOAK_SECONDS"), 1);
    const TestMachine machine;
    qint64 events = 0;
    RemoteControl control({QHostAddress::LocalHost, 0, ReadRemoteAccess},
                          [&events](const ServerEvent&) { ++events; });
    control.listen();
    const qsizetype socketsBefore = openSockets();
    std::atomic<bool> done{false};
    std::atomic<int> connects{0};
    std::vector<std::thread> peers;
    for (unsigned i = 0; i < 4; ++i)
        peers.emplace_back([&, i] { pesterUntil(done, connects, control.port(), i + 1); });

    QElapsedTimer time;
    time.start();
    qint64 longest = 0; // between two turns of the loop
    long warm = 0;
    for (qint64 turn = 0; time.elapsed() < seconds * 1000;) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
        longest = qMax(longest, time.elapsed() - turn);
        turn = time.elapsed();
        if (warm == 0 && turn > seconds * 200)
            warm = residentKilobytes();
    }
    const long grown = residentKilobytes() - warm;
    done = true;
    for (std::thread& peer : peers)
        peer.join(); // each gives up by its own time limits
    EXPECT_GT(connects, 0);
#ifndef __SANITIZE_ADDRESS__ // it keeps freed memory for a while, and looks for leaks by itself
    EXPECT_LT(grown, 4096) << "kilobytes more than after the first fifth";
#endif
    EXPECT_TRUE(waitFor([&] { return !control.isConnected() && openSockets() <= socketsBefore; }))
        << openSockets();
    QTcpSocket friendly;
    friendly.connectToHost(QHostAddress::LocalHost, control.port());
    QByteArray reply;
    EXPECT_TRUE(waitFor([&] { return (reply += friendly.readAll()).endsWith("Connected\r\n"); }));
    friendly.write("42\r");
    EXPECT_TRUE(waitFor([&] { return (reply += friendly.readAll()).endsWith("Play Cart 42\r\n"); }));
    printf("%d connects, %lld events, %ld kB grown, longest turn %lld ms\n", connects.load(),
           static_cast<long long>(events), grown, static_cast<long long>(longest));
}
