// The remote control socket, with real peers: what they may send, what they get, and what they cannot do.
#include "network/server/RemoteControl.h"
#include "platform/process/Holders.h"
#include "support/MachineFolder.h"
#include "support/OpenSockets.h"
#include "support/ScriptedPrompts.h"
#include "support/VirtualClock.h"
#include "support/WaitFor.h"

#include <QLocale>
#include <QProcess>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <random>

#include <arpa/inet.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;
using Effect = RemoteCommand::Effect;

namespace {

// "12 cart 12" for each command, in turn.
QString performed(RemoteCommands& commands, const QList<QByteArray>& arrivals) {
    QStringList texts;
    for (const QByteArray& arrival : arrivals)
        if (const auto command = commands.take(arrival))
            texts += QStringLiteral("%1=%2")
                         .arg(command->text)
                         .arg(command->effect == Effect::Cart
                                  ? QString::number(command->cart)
                                  : QString(command->effect == Effect::Go ? "go" : "-"));
    return texts.join(' ');
}

} // namespace

TEST(RemoteCommandsTest, AnArrivalGivesOneCommand) {
    const struct {
        QList<QByteArray> arrivals;
        const char* performed;
    } rows[] = {
        {{"1234\r\n"}, "1234=1234"},
        {{"1", "2", "\n3", "\r"}, "123=123"},
        {{"12\r34\r"}, "12=12"},
        {{"12\r34\r", "\n"}, "12=12 34=34"},
        {{"12\r34\r", "56\r", "", ""}, "12=12 34=34 56=56"},
        {{"kgo\r", "KGO\r", " kGo\r"}, "kgo=go KGO=go kGo=go"},
        {{"12 \r"}, "12 =12"}, // the blank stands inside the arrival
        {{"  12", "\r "}, "12=12"},
        {{"12abc\r"}, "12abc=12"},
        {{"1.6\r", "2e2\r"}, "1.6=2 2e2=200"},
        {{"0\r", "-5\r", "x12\r", "\r", "kgo!\r"}, "0=- -5=- x12=- =- kgo!=-"},
        {{"99999999999\r"}, "99999999999=2147483647"},
        {{QByteArray(199, 'x') + "\r5\r"}, ""}, // what is beyond 200 characters is lost
    };
    for (const auto& row : rows) {
        RemoteCommands commands;
        const QString text = performed(commands, row.arrivals);
        if (row.arrivals[0].size() < 200) {
            EXPECT_EQ(text, QString(row.performed)) << row.arrivals[0].constData();
        } else {
            EXPECT_EQ(text, QString(199, 'x') + "=-");
            EXPECT_EQ(performed(commands, {"7\r"}), QString("7=7"));
        }
    }
}

// Commands that come faster than one is performed per arrival wait, and those that find no room are lost
// whole. Only bytes without a carriage return have an end.
TEST(RemoteCommandsTest, WhatWaitsIsBounded) {
    RemoteCommands commands;
    std::minstd_rand random(5);
    QByteArray stream = QByteArray("1234\r").repeated(60000);
    int waiting = 0;
    while (!stream.isEmpty()) {
        const qsizetype piece = 1 + qsizetype(random() % 199);
        const auto command = commands.take(stream.left(piece));
        ASSERT_TRUE(!command || command->text == "1234") << "half of a command joined another half";
        ASSERT_FALSE(commands.isEndless());
        stream.remove(0, piece);
    }
    EXPECT_TRUE(commands.hasLost());
    while (const auto command = commands.take({})) {
        ASSERT_EQ(command->text, QString("1234"));
        ++waiting;
    }
    EXPECT_GT(waiting * 5, RemoteCommands::LongestBuffer - 400);
    EXPECT_LE(waiting * 5, RemoteCommands::LongestBuffer);
    const QByteArray endless(128, 'x');
    for (int i = 0; i < 512; ++i)
        EXPECT_FALSE(commands.take(endless));
    EXPECT_FALSE(commands.isEndless());
    commands.take("x");
    EXPECT_TRUE(commands.isEndless());
    commands.clear();
    EXPECT_FALSE(commands.isEndless() || commands.hasLost());
}

// Against a plain model of the rules, whatever arrives in whatever pieces.
TEST(RemoteCommandsTest, AgreeWithAModel) {
    std::minstd_rand random(3);
    const QByteArray alphabet = "0123kgoKGO \r\r\r\n\n.-\xE9";
    for (int round = 0; round < 300; ++round) {
        RemoteCommands commands;
        QByteArray model;
        for (int step = 0; step < 60; ++step) {
            QByteArray arrival;
            for (int size = int(random() % 12); size > 0; --size)
                arrival += alphabet[qsizetype(random() % uint(alphabet.size()))];
            const auto command = commands.take(arrival);
            while (arrival.startsWith(' '))
                arrival.remove(0, 1);
            while (arrival.endsWith(' '))
                arrival.chop(1);
            model += arrival;
            model.replace("\n", "");
            const qsizetype end = model.indexOf('\r');
            ASSERT_EQ(command.has_value(), end >= 0);
            if (end < 0)
                continue;
            ASSERT_EQ(command->text.toLatin1(), model.left(end));
            model.remove(0, end + 1);
        }
    }
}

namespace {

class RemoteControlTest : public testing::Test {
protected:
    RemoteControlTest() {
        control.playCart = [this](qint32 cart) { carts += cart; };
        control.automationGo = [this] { ++gos; };
    }
    static RemoteControlSetup local(const std::function<RemoteAccess()>& access) {
        return {QHostAddress::LocalHost, 0, access};
    }
    std::unique_ptr<QTcpSocket> peer() {
        auto socket = std::make_unique<QTcpSocket>();
        bool connected = false; // it may be closed at once
        QObject::connect(socket.get(), &QTcpSocket::connected, socket.get(), [&] { connected = true; });
        socket->connectToHost(QHostAddress::LocalHost, control.port());
        EXPECT_TRUE(waitFor([&] { return connected; }));
        socket->disconnect();
        return socket;
    }
    // What a peer reads until a number of lines is there.
    static QByteArray lines(QTcpSocket& socket, int count) {
        QByteArray text;
        EXPECT_TRUE(waitFor([&] {
            text += socket.readAll();
            return text.count('\n') >= count;
        })) << text.constData();
        return text;
    }
    QByteArray line(const QString& text) const {
        return (QLocale::system().toString(clock.time.date(), QLocale::ShortFormat) +
                clock.time.toString(" HH:mm:ss ") + text + "\r\n")
            .toLatin1();
    }
    static bool ends(QTcpSocket& socket) {
        return waitFor([&] { return socket.state() == QAbstractSocket::UnconnectedState; });
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    VirtualClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30))};
    RemoteAccess access;
    QList<ServerEvent> events;
    RemoteControl control{local([this] { return access; }),
                          [this](const ServerEvent& event) { events += event; }};
    QList<qint32> carts;
    int gos = 0;

    QStringList words(ServerEvent::Kind kind) const {
        QStringList all;
        for (const ServerEvent& event : events)
            if (event.kind == kind)
                all += event.sentence();
        return all;
    }
};

} // namespace

TEST_F(RemoteControlTest, CommandsAreAnsweredAndPeersComeAndGo) {
    control.listen();
    EXPECT_EQ(control.status(), QString(" Winsock Control listening"));
    control.send("to nobody");
    auto first = peer();
    EXPECT_EQ(lines(*first, 1), line("Connected"));
    EXPECT_TRUE(waitFor([&] { return !control.status().startsWith("127.0.0.1 ("); }))
        << "the name was not looked up";
    EXPECT_TRUE(control.status().endsWith(" (127.0.0.1) connected to Winsock port"))
        << control.status().toStdString();
    first->write("1234\r");
    EXPECT_EQ(lines(*first, 1), line("Play Cart 1234"));
    first->write("kGO\r\n");
    EXPECT_EQ(lines(*first, 1), line("K-OVA Go"));
    first->write("0\r");
    control.send("Cart 5 has ended");
    EXPECT_EQ(lines(*first, 1), line("Cart 5 has ended"));
    EXPECT_EQ(carts, QList<qint32>{1234});
    EXPECT_EQ(gos, 1);

    // A second peer closes the first, and does not finish what that one began.
    first->write("99");
    runEvents(30);
    auto second = peer();
    EXPECT_TRUE(ends(*first));
    EXPECT_EQ(lines(*second, 1), line("Connected"));
    second->write("\r7\r");
    runEvents(30);
    second->write("\n");
    EXPECT_EQ(lines(*second, 1), line("Play Cart 7"));
    second->disconnectFromHost();
    EXPECT_TRUE(waitFor([&] { return !control.isConnected(); }));
    EXPECT_EQ(control.status(), QString(" Winsock Control listening"));
    EXPECT_EQ(words(ServerEvent::Kind::Closed),
              (QStringList{"127.0.0.1 closed: another one connected", "127.0.0.1 closed"}));
    EXPECT_TRUE(words(ServerEvent::Kind::Command).contains("127.0.0.1 sent \"1234\": plays cart 1234"));
    lines(*peer(), 1);
}

// Programs that are not ours, as a studio would use them.
TEST_F(RemoteControlTest, OtherProgramsCanTalkToIt) {
    control.listen();
    const QString port = QString::number(control.port());
    for (const QStringList& words :
         {QStringList{"nc", "127.0.0.1", port}, {"socat", "-", "TCP:127.0.0.1:" + port}}) {
        QProcess client;
        client.start(words[0], words.mid(1));
        QByteArray text;
        const auto answers = [&](const QByteArray& expected) {
            return waitFor([&] { return (text += client.readAllStandardOutput()) == expected; });
        };
        ASSERT_TRUE(answers(line("Connected"))) << text.constData();
        client.write("12\r");
        ASSERT_TRUE(answers(line("Connected") + line("Play Cart 12"))) << text.constData();
        client.write("kgo\r\n");
        ASSERT_TRUE(answers(line("Connected") + line("Play Cart 12") + line("K-OVA Go"))) << text.constData();
        client.kill();
        ASSERT_TRUE(client.waitForFinished());
    }
    EXPECT_EQ(carts, (QList<qint32>{12, 12}));
}

TEST_F(RemoteControlTest, PeersThatGoTooFarAreClosed) {
    control.listen();
    // Bytes without a carriage return, as many as it takes.
    auto talker = peer();
    while (talker->state() == QAbstractSocket::ConnectedState && talker->bytesToWrite() == 0) {
        talker->write(QByteArray(190, 'x'));
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(ends(*talker));
    EXPECT_EQ(words(ServerEvent::Kind::Closed),
              QStringList{"127.0.0.1 closed: it sent 64 kB without a carriage return"});
    // A burst is reported once, and what fits counts.
    auto burst = peer();
    lines(*burst, 1);
    burst->write("5\r" + QByteArray(100000, 'y'));
    EXPECT_EQ(lines(*burst, 1), line("Play Cart 5"));
    runEvents(50);
    EXPECT_EQ(words(ServerEvent::Kind::Error).size(), 1);
    // Two commands a write, as often as it likes: too many for one per arrival, and the peer stays.
    for (int i = 0; i < 1500; ++i) {
        burst->write(QByteArray("12\r").repeated(60));
        QCoreApplication::processEvents();
        burst->readAll();
    }
    EXPECT_EQ(burst->state(), QAbstractSocket::ConnectedState);
    EXPECT_EQ(words(ServerEvent::Kind::Error).size(), 2)
        << words(ServerEvent::Kind::Error).join('|').toStdString();
    // A peer that never reads.
    auto deaf = peer();
    deaf->setReadBufferSize(1);
    ASSERT_TRUE(
        waitFor([&] { return control.isConnected() && words(ServerEvent::Kind::Connected).size() == 3; }));
    for (int i = 0; i < 100000 && control.isConnected(); ++i)
        control.send(QString(1000, 'z'));
    EXPECT_FALSE(control.isConnected());
    EXPECT_EQ(words(ServerEvent::Kind::Closed).last(),
              QString("127.0.0.1 closed: it does not read what is sent to it"));
    EXPECT_EQ(lines(*peer(), 1), line("Connected"));
}

TEST_F(RemoteControlTest, ManyConnectsInARowLeaveNothingBehind) {
    control.listen();
    lines(*peer(), 1);
    EXPECT_TRUE(waitFor([&] { return !control.isConnected(); }));
    const auto before = openSockets();
    const int connects = qEnvironmentVariableIsSet("TOLVEX_SOAK_SECONDS") ? 10000 : 200;
    for (int i = 0; i < connects; ++i) {
        QTcpSocket quick;
        quick.connectToHost(QHostAddress::LocalHost, control.port());
        ASSERT_TRUE(quick.waitForConnected());
        if (i % 3 == 0)
            quick.write("1");
        i % 2 == 0 ? quick.abort() : quick.disconnectFromHost();
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(waitFor([&] { return !control.isConnected() && openSockets() <= before; }))
        << openSockets() << " sockets open, " << before << " before";
    EXPECT_EQ(lines(*peer(), 1), line("Connected"));
}

// When the process has no file number left a connection cannot be accepted, and the listener stops by itself.
TEST_F(RemoteControlTest, ListensAgainAfterRunningOutOfFileNumbers) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer itself needs file numbers";
#endif
    control.listen();
    const quint16 port = control.port();
    const int waiting = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    struct sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int next = ::dup(waiting);
    ::close(next);
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    struct rlimit none = before;
    none.rlim_cur = static_cast<rlim_t>(next);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(::connect(waiting, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    const bool stopped = waitFor([&] { return !control.isListening(); });
    ::setrlimit(RLIMIT_NOFILE, &before);
    ::close(waiting);
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(control.status().startsWith(" Winsock Control Error: ")) << control.status().toStdString();
    clock.advance(5000);
    EXPECT_TRUE(control.isListening());
    EXPECT_EQ(control.status(), QString(" Winsock Control listening"));
    EXPECT_EQ(lines(*peer(), 1), line("Connected"));
}

TEST_F(RemoteControlTest, OnlyThoseWhoMayConnect) {
    control.listen();
    auto allowed = peer();
    lines(*allowed, 1);
    access = {RemoteAccess::Who::Listed, {"10.0.0.0/8"}};
    auto stranger = peer();
    EXPECT_TRUE(ends(*stranger));
    EXPECT_EQ(stranger->readAll(), QByteArray());
    EXPECT_EQ(words(ServerEvent::Kind::Error), QStringList{"127.0.0.1: may not connect"});
    allowed->write("3\r");
    EXPECT_EQ(lines(*allowed, 1), line("Play Cart 3"))
        << "nobody takes the place of a peer who may not connect";
}

TEST_F(RemoteControlTest, APortThatIsTakenIsNamedAndTriedAgain) {
    quint16 port = 0;
    {
        QTcpServer free;
        ASSERT_TRUE(free.listen(QHostAddress::LocalHost));
        port = free.serverPort();
    }
    QProcess other;
    other.start("nc", {"-l", "127.0.0.1", QString::number(port)});
    ASSERT_TRUE(waitFor([&] { return platform::HolderOfTcpPort(port).has_value(); }));
    RemoteControl busy({QHostAddress::LocalHost, port, {}},
                       [this](const ServerEvent& event) { events += event; });
    busy.listen();
    const QString held =
        QStringLiteral("The bound address is already in use; it is in use by nc (process %1)")
            .arg(other.processId());
    EXPECT_EQ(busy.status(), " Winsock Control Error: " + held);
    EXPECT_EQ(words(ServerEvent::Kind::Error), QStringList{held});
    other.kill();
    ASSERT_TRUE(other.waitForFinished());
    clock.advance(4999);
    EXPECT_FALSE(busy.isListening());
    clock.advance(1);
    EXPECT_TRUE(busy.isListening());
    EXPECT_EQ(busy.status(), QString(" Winsock Control listening"));
}

TEST(RemoteAccessTest, SaysWhoMayConnect) {
    const QHostAddress own("127.0.0.1");
    const QHostAddress own6("::1");
    const QHostAddress ownBoth("::ffff:127.0.0.1");
    const QHostAddress near("::ffff:192.168.1.7");
    const QHostAddress far("8.8.8.8");
    const auto who = [&](const QStringList& words) {
        const RemoteAccess access =
            ParseRemoteAccess(words).value_or(RemoteAccess{RemoteAccess::Who::Listed, {}});
        QString text;
        for (const QHostAddress& peer : {own, own6, ownBoth, near, far})
            text += access.allows(peer) ? '1' : '0';
        return text;
    };
    EXPECT_EQ(who({"all"}), QString("11111"));
    EXPECT_EQ(who({"This", "Computer"}), QString("11100"));
    EXPECT_EQ(who({"192.168.1.0/24"}), QString("00010"));
    EXPECT_EQ(who({"192.168.1.8", "::1"}), QString("01000"));
    EXPECT_EQ(who({"192.168.1.7", "127.0.0.1"}), QString("10110"));
    QString why;
    EXPECT_FALSE(ParseRemoteAccess({"studio2"}, &why));
    EXPECT_TRUE(why.contains("studio2"));
    EXPECT_FALSE(ParseRemoteAccess({}, &why));

    const TestMachine machine;
    EXPECT_EQ(ReadRemoteAccess(), RemoteAccess());
    for (const QStringList& words : {QStringList{"this computer"}, {"10.0.0.0/8", "::1"}, {"all"}}) {
        const RemoteAccess access = *ParseRemoteAccess(words);
        EXPECT_EQ(WriteRemoteAccess(access), 0);
        EXPECT_EQ(ReadRemoteAccess(), access);
    }
    // A file that cannot be understood lets no stranger in.
    QFile file(machine.path() + "/remotecontrol.txt");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("everybody\n");
    file.close();
    EXPECT_EQ(ReadRemoteAccess().who, RemoteAccess::Who::ThisComputer);
    // Nor does one that cannot be read.
    ASSERT_TRUE(file.remove() && QDir(machine.path()).mkdir("remotecontrol.txt"));
    EXPECT_EQ(ReadRemoteAccess().who, RemoteAccess::Who::ThisComputer);
}
