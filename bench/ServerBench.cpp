// The server's remote control compared with a bare echo loop over the same kind of sockets: commands answered
// per second, time from command to reply, and the cost of an idle server.
#include "network/server/RemoteControl.h"
#include "platform/paths/Paths.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace tolvex;

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int roundTrips = 10000;

// A peer in a thread of its own that repeatedly sends a command and waits for the end of the reply.
std::vector<double> talk(quint16 port, const char* command, std::size_t length, bool greeted) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    struct sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::vector<double> times;
    if (::connect(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address) != 0)
        return times;
    char reply[512];
    const auto awaitLine = [&] {
        ssize_t count = 0;
        do
            count = ::recv(socket, reply, sizeof reply, 0);
        while (count > 0 && reply[count - 1] != '\n');
        return count > 0;
    };
    if (greeted)
        awaitLine();
    times.reserve(roundTrips);
    for (int i = 0; i < roundTrips; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        if (::send(socket, command, length, 0) < 0 || !awaitLine())
            break;
        times.push_back(Microseconds(std::chrono::steady_clock::now() - begin).count());
    }
    ::close(socket);
    return times;
}

// Runs the event loop while the peer talks.
std::vector<double> measure(quint16 port, const char* command, std::size_t length, bool greeted) {
    std::vector<double> times;
    QEventLoop loop;
    std::thread peer([&] {
        times = talk(port, command, length, greeted);
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    peer.join();
    std::sort(times.begin(), times.end());
    return times;
}

double perSecond(const std::vector<double>& times) {
    double sum = 0;
    for (const double time : times)
        sum += time;
    return sum > 0 ? 1e6 * static_cast<double>(times.size()) / sum : 0;
}

double at(const std::vector<double>& times, double part) {
    return times.empty() ? 0 : times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
}

// A server that only echoes its input.
std::vector<double> measureBare() {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&server] {
        QTcpSocket* socket = server.nextPendingConnection();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [socket] { socket->write(socket->readAll()); });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    return measure(server.serverPort(), "1234\r\n", 6, false);
}

std::vector<double> measureServer() {
    RemoteControl control({QHostAddress::LocalHost, 0, ReadRemoteAccess});
    control.listen();
    return measure(control.port(), "1234\r", 5, true);
}

long wakeUps() {
    QFile status(QStringLiteral("/proc/thread-self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("\nvoluntary_ctxt_switches:");
    return text.mid(at + 25, 20).trimmed().split('\n')[0].toLong();
}

} // namespace

static void CommandsBesideABareEcho(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> bare = measureBare();
        const std::vector<double> server = measureServer();
        state.counters["bare_per_s"] = perSecond(bare);
        state.counters["server_per_s"] = perSecond(server);
        state.counters["ratio"] = perSecond(bare) / perSecond(server);
        state.counters["bare_median_us"] = at(bare, 0.5);
        state.counters["server_median_us"] = at(server, 0.5);
        state.counters["bare_p99_us"] = at(bare, 0.99);
        state.counters["server_p99_us"] = at(server, 0.99);
    }
}
BENCHMARK(CommandsBesideABareEcho)->Iterations(1)->Repetitions(5)->Unit(benchmark::kMillisecond);

static void WakeUpsWhileIdle(benchmark::State& state) {
    constexpr int seconds = 10;
    RemoteControl control({QHostAddress::LocalHost, 0, {}});
    control.listen();
    QTcpSocket peer;
    peer.connectToHost(QHostAddress::LocalHost, control.port());
    for (auto _ : state) {
        QEventLoop loop;
        QTimer::singleShot(1000, &loop, &QEventLoop::quit); // until the connection is made
        loop.exec();
        const long before = wakeUps();
        QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
        loop.exec();
        state.counters["wake_ups_per_s"] = static_cast<double>(wakeUps() - before) / seconds;
    }
}
BENCHMARK(WakeUpsWhileIdle)->Iterations(1)->Unit(benchmark::kSecond);

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    platform::SetMachineFolder(folder.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
