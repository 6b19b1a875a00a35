// The server from a shell.
#include "RunningCtl.h"

#include "support/ClockReceiver.h"

#include <QTcpSocket>

#include <sys/socket.h>
#include <sys/un.h>

namespace tolvex::tests {

using CtlServe = RunningCtl;

TEST_F(CtlServe, ServesUntilItIsAskedToEnd) {
    // A socket on which a service manager would listen.
    const QByteArray socketPath = folder_.filePath("notify").toUtf8();
    const int manager = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
    ASSERT_EQ(::bind(manager, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    const auto told = [manager] {
        QByteArray all;
        char bytes[512];
        for (ssize_t count = 0; (count = ::recv(manager, bytes, sizeof bytes, 0)) > 0;)
            all += QByteArray(bytes, count) + '|';
        return all;
    };
    QProcessEnvironment environment = process.processEnvironment();
    environment.insert("NOTIFY_SOCKET", socketPath);
    process.setProcessEnvironment(environment);

    start({"--yes", "--json", "serve", "--port", "0", "--bind", "127.0.0.1"});
    const QJsonObject listening = next();
    EXPECT_EQ(listening["event"], "listening");
    const auto port = static_cast<quint16>(listening["port"].toInt());
    QTcpSocket peer;
    peer.connectToHost("127.0.0.1", port);
    EXPECT_EQ(next(), (QJsonObject{{"event", "connected"}, {"peer", "127.0.0.1"}}));
    EXPECT_EQ(next(), (QJsonObject{{"event", "reply"}, {"peer", "127.0.0.1"}, {"text", "Connected"}}));
    peer.write("12\r");
    EXPECT_EQ(
        next(),
        (QJsonObject{
            {"event", "command"}, {"peer", "127.0.0.1"}, {"text", "12"}, {"effect", "cart"}, {"cart", 12}}));
    EXPECT_EQ(next()["text"], "Play Cart 12");
    peer.write("?\r");
    EXPECT_EQ(next()["effect"], "ignored");
    peer.disconnectFromHost();
    EXPECT_EQ(next(), (QJsonObject{{"event", "closed"}, {"peer", "127.0.0.1"}}));
    EXPECT_TRUE(told().startsWith("READY=1\nSTATUS=Winsock Control listening|"));
    EXPECT_EQ(end(), 0);
    EXPECT_TRUE(told().endsWith("STOPPING=1|"));
    ::close(manager);
    // The list was made for the stamp; without a number of its own the workstation has no record.
    EXPECT_TRUE(QFile::exists(onC("DATA/Terminal.Lst")));

    start({"--yes", "serve", "--port", QString::number(port), "--bind", "127.0.0.1", "--seconds", "1"});
    ASSERT_TRUE(waitFor([this] { return process.state() == QProcess::NotRunning; }));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(process.readAllStandardOutput().contains("  Listening on port " + QByteArray::number(port)));
    // An address that is not this computer's.
    const Result never = run({"--yes", "serve", "--bind", "192.0.2.1", "--seconds", "1"});
    EXPECT_EQ(never.status, 3);
    EXPECT_TRUE(never.err.contains("The server could not listen: ")) << never.err.constData();
    for (const QStringList& wrong :
         {QStringList{"--port", "x"}, {"--port", "65536"}, {"--bind", "here"}, {"--seconds", "0"}})
        EXPECT_EQ(run(QStringList{"serve"} + wrong).status, 2) << wrong[1].toStdString();
}

TEST_F(CtlServe, WhoMayConnectIsSetFromTheShell) {
    EXPECT_EQ(run({"--json", "remote", "access"}).json()["access"], "everyone");
    EXPECT_EQ(run({"remote", "access", "10.0.0.0/8", "192.168.1.7"}).status, 0);
    EXPECT_EQ(run({"--json", "remote", "access"}).json()["addresses"].toArray(),
              (QJsonArray{"10.0.0.0/8", "192.168.1.7"}));
    EXPECT_EQ(run({"remote", "access", "studio2"}).status, 2);
    start({"--yes", "--json", "serve", "--port", "0", "--bind", "127.0.0.1"});
    QTcpSocket peer;
    const auto port = static_cast<quint16>(next()["port"].toInt());
    peer.connectToHost("127.0.0.1", port);
    EXPECT_EQ(next(), (QJsonObject{{"event", "error"}, {"peer", "127.0.0.1"}, {"text", "may not connect"}}));
    EXPECT_EQ(run({"remote", "access", "this", "computer"}).status, 0);
    QTcpSocket again;
    again.connectToHost("127.0.0.1", port);
    EXPECT_EQ(next()["event"], "connected");
    EXPECT_EQ(end(), 0);
}

// The server has the radio clock's port open: nobody else can test it meanwhile.
TEST_F(CtlServe, HoldsThePortOfTheRadioClock) {
    ClockReceiver receiver(PseudoTerminal::Hold::Free);
    ASSERT_TRUE(QFile::link(receiver.device.path(), home() + "/dosdevices/com2"));
    ASSERT_EQ(run({"profile", "set", "tolvex.ini", "DateTimeSettings", "RadioClockComPort", "2"}).status, 0);
    start({"--yes", "--json", "serve", "--port", "0"});
    next();
    const Result held = run({"clock", "test"});
    EXPECT_EQ(held.status, 3);
    EXPECT_TRUE(held.err.contains("COM2 is in use by tolvexctl (process ")) << held.err.constData();
    EXPECT_EQ(end(), 0);
}

} // namespace tolvex::tests
