// Commands sent for real: over pseudo terminals, loopback sockets, and as child processes.
#include "network/commands/CommandRunner.h"
#include "network/commands/CommandTrial.h"
#include "support/MachineFolder.h"
#include "support/PseudoTerminal.h"
#include "support/ScriptedPrompts.h"
#include "support/WaitFor.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace tolvex;
using namespace tolvex::tests;
using Kind = CommandEvent::Kind;

namespace {

// A peer on the loopback that keeps what each connection sent.
class Peer {
public:
    Peer() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                const qsizetype index = received.size();
                received += QByteArray();
                sockets += socket;
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, index] {
                    received[index] += socket->readAll();
                    if (!answer.isEmpty())
                        socket->write(answer);
                });
                QObject::connect(socket, &QTcpSocket::disconnected, socket, [this] { ++ended; });
            }
        });
    }
    int port() const { return server.serverPort(); }

    QTcpServer server;
    QList<QByteArray> received;
    QList<QTcpSocket*> sockets;
    QByteArray answer;
    int ended = 0;
};

class Commands : public testing::Test {
protected:
    void save(const QString& name, const CommandRecord& command) {
        ASSERT_TRUE(CommandFolder("C:\\DATA").save(name, command));
    }
    CommandRecord serial(const QByteArray& text, qint32 flags = 0, qint32 port = 1) const {
        CommandRecord command;
        command.Flags = flags;
        command.SerialPort = port;
        command.Text = text;
        return command;
    }
    CommandRecord tcp(const Peer& peer, const QByteArray& text, qint32 flags = 0) const {
        CommandRecord command;
        command.Type = TcpIpCommand;
        command.Flags = flags;
        command.Address = "127.0.0.1";
        command.IpPort = peer.port();
        command.Text = text;
        return command;
    }
    CommandEvents log() {
        return [this](const CommandEvent& event) { events += event; };
    }
    int count(Kind kind) const {
        return int(std::count_if(events.begin(), events.end(),
                                 [kind](const CommandEvent& event) { return event.kind == kind; }));
    }
    QByteArray answers() const {
        QByteArray all;
        for (const CommandEvent& event : events)
            if (event.kind == Kind::Answer)
                all += event.bytes;
        return all;
    }
    bool idle() {
        return waitFor([this] { return !runner.busy(); });
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    QList<CommandEvent> events;
    CommandRunner runner{"C:\\DATA", log()};
};

const QByteArray everyByte = [] {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    return bytes;
}();

} // namespace

TEST_F(Commands, GoToASerialPortAndKeepItAsTheirFlagsSay) {
    PseudoTerminal device;
    PseudoTerminal other;
    machine.link("com1", device.path());
    machine.link("com4", other.path());
    save("Plain", serial(everyByte));
    save("Leave", serial("leave;", LeaveConnectionOpen));
    save("Reuse", serial("reuse;", UseExistingConnection | LeaveConnectionOpen));
    CommandRecord faster = serial("faster;", UseExistingConnection | LeaveConnectionOpen);
    faster.Settings = "19200,n,8,1";
    save("Faster", faster);
    CommandRecord firm = faster;
    firm.Handshaking = 1;
    firm.Text = "firm;";
    save("Firm", firm);
    CommandRecord padded = serial("four", 0, 4);
    padded.Settings += QString(QChar(0)).repeated(4) + "1"; // as a program that pads with zeros writes it
    save("Four", padded);

    EXPECT_TRUE(runner.PerformCommand(" plain ", false));
    EXPECT_TRUE(runner.PerformCommand("Four", false));
    ASSERT_TRUE(idle());
    EXPECT_TRUE(waitFor([&] { return device.received == everyByte && other.received == "four"; }));
    EXPECT_TRUE(runner.connections().isEmpty());

    // The port is opened again unless the command may use it and has the same settings and handshaking.
    const struct {
        const char* command;
        int opens;
    } steps[] = {{"Leave", 1}, {"Reuse", 0}, {"Reuse", 0}, {"Faster", 1},
                 {"Firm", 1},  {"Firm", 0},  {"Leave", 1}};
    for (const auto& step : steps) {
        events.clear();
        EXPECT_TRUE(runner.PerformCommand(step.command, false)) << step.command;
        ASSERT_TRUE(idle());
        EXPECT_EQ(count(Kind::Open), step.opens) << step.command;
        EXPECT_EQ(runner.connections(), QStringList{"COM1"}) << step.command;
    }
    EXPECT_TRUE(waitFor([&] {
        return device.received == everyByte + "leave;reuse;reuse;faster;firm;firm;leave;";
    })) << device.received.constData();
    // A command that does not leave the port open closes it, even when it was open before.
    EXPECT_TRUE(runner.PerformCommand("Plain", false));
    ASSERT_TRUE(idle());
    EXPECT_TRUE(runner.connections().isEmpty());
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(Commands, APortThatDoesNotServeIsReportedUnlessQuiet) {
    PseudoTerminal device;
    machine.link("com1", device.path());
    save("Five", serial("x", 0, 5));
    save("Zero", serial("x", 0, 0));
    save("Missing", serial("x", 0, 2));
    CommandRecord odd = serial("x");
    odd.Settings = "9600,n,8,3";
    save("Odd", odd);
    odd = serial("x");
    odd.Handshaking = 4;
    save("Hands", odd);
    const QStringList names = {"Five", "Zero", "Missing", "Odd", "Hands"};
    for (const QString& name : names)
        EXPECT_FALSE(runner.PerformCommand(name, true)) << name.toStdString();
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(count(Kind::Failed), 5);
    for (const QString& name : names)
        EXPECT_FALSE(runner.PerformCommand(name, false)) << name.toStdString();
    const QString opening = "There was a problem opening the Serial Port for Command: %1 and the error's "
                            "description was reported as : \n\n\"%2\" (%3)";
    EXPECT_EQ(
        prompts.texts(),
        (QStringList{"The Serial Port specified in Command: Five is not valid.",
                     "The Serial Port specified in Command: Zero is not valid.",
                     opening.arg("Missing",
                                 "COM2 is not set up: the machine folder has no entry "
                                 "\"dosdevices/com2\".",
                                 "8002"),
                     opening.arg("Odd", "\"3\" is not a number of stop bits; it can be 1, 1.5 or 2.", "8015"),
                     opening.arg("Hands", "Handshaking 4 is not known.", "8015")}));

    // Somebody pulls the device out while its port is kept open.
    save("Leave", serial("x", LeaveConnectionOpen));
    EXPECT_TRUE(runner.PerformCommand("Leave", false));
    ASSERT_TRUE(idle());
    prompts.forget();
    device.unplug();
    EXPECT_TRUE(waitFor([&] { return !prompts.asked.isEmpty(); }));
    EXPECT_TRUE(prompts.texts()[0].startsWith("There was a problem sending the Command: Leave and "))
        << prompts.texts()[0].toStdString();
    EXPECT_TRUE(runner.connections().isEmpty());
}

TEST_F(Commands, ConnectSendAndCloseOverTcp) {
    Peer peer;
    const QByteArray much = everyByte.repeated(800);
    save("Much", tcp(peer, much));
    CommandRecord padded = tcp(peer, "");
    padded.Address += QString(QChar(0)).repeated(4) + "1";
    save("Nothing", padded);
    EXPECT_TRUE(runner.PerformCommand("Much", false));
    ASSERT_TRUE(waitFor([&] { return peer.ended == 1; }));
    EXPECT_EQ(peer.received, QList<QByteArray>{much});
    EXPECT_EQ(count(Kind::Connecting) * 100 + count(Kind::Open) * 10 + count(Kind::Closed), 111);
    EXPECT_TRUE(runner.PerformCommand("Nothing", false));
    EXPECT_TRUE(waitFor([&] { return peer.ended == 2; }));
    ASSERT_TRUE(idle());
    EXPECT_TRUE(runner.connections().isEmpty());
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(Commands, UseTheSlotsAsTold) {
    Peer peers[6];
    for (int i = 0; i < 6; ++i)
        save(QStringLiteral("To%1").arg(i), tcp(peers[i], "first;", LeaveConnectionOpen));
    save("Again0", tcp(peers[0], "again;", UseExistingConnection));
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(runner.PerformCommand(QStringLiteral("To%1").arg(i), false));
        ASSERT_TRUE(
            waitFor([&] { return !peers[i].received.isEmpty() && peers[i].received[0] == "first;"; }));
    }
    ASSERT_TRUE(idle());
    EXPECT_EQ(runner.connections().size(), 5);

    // On an open connection to the same address and port it goes out at once; the connection's own mark says
    // that it stays.
    EXPECT_TRUE(runner.PerformCommand("Again0", false));
    EXPECT_TRUE(waitFor([&] { return peers[0].received == QList<QByteArray>{"first;again;"}; }));
    runEvents(20);
    EXPECT_EQ(peers[0].ended, 0);

    // When all slots are taken the last one is reused. Without the flag a second connection is made.
    EXPECT_TRUE(runner.PerformCommand("To5", false));
    EXPECT_TRUE(waitFor([&] { return peers[4].ended == 1 && peers[5].received.value(0) == "first;"; }));
    EXPECT_TRUE(runner.PerformCommand("To0", false));
    EXPECT_TRUE(waitFor([&] { return peers[5].ended == 1 && peers[0].received.value(1) == "first;"; }));

    // Of the slots that their peers closed the first one is used again.
    peers[2].sockets[0]->disconnectFromHost();
    EXPECT_TRUE(waitFor([&] { return runner.connections().size() == 4; }));
    EXPECT_TRUE(runner.PerformCommand("To5", false));
    EXPECT_TRUE(waitFor([&] { return peers[5].received.value(1) == "first;"; }));
    EXPECT_EQ(runner.connections()[2], QStringLiteral("127.0.0.1:%1").arg(peers[5].port()));
    // What arrives on a connection that is kept open is read.
    peers[5].sockets[1]->write("news");
    EXPECT_TRUE(waitFor([&] { return answers() == "news"; }));
    runner.closeAll();
    EXPECT_TRUE(waitFor([&] { return peers[5].ended == 2 && peers[0].ended == 2; }));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(Commands, AConnectionThatFailsIsToldWithItsNumber) {
    Peer peer;
    CommandRecord refused = tcp(peer, "x");
    peer.server.close();
    save("Refused", refused);
    EXPECT_TRUE(runner.PerformCommand("Refused", true));
    ASSERT_TRUE(waitFor([&] { return prompts.asked.size() == 1; }));
    EXPECT_EQ(prompts.asked[0].text,
              QString("There was a problem with a TCP/IP Command, \n\nConnection refused(10061)"));
    EXPECT_FALSE(runner.busy());

    CommandRecord nowhere = refused;
    nowhere.IpPort = 70000;
    save("Nowhere", nowhere);
    EXPECT_FALSE(runner.PerformCommand("Nowhere", true));
    EXPECT_FALSE(runner.PerformCommand("Nowhere", false));
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_TRUE(
        prompts.texts()[1].startsWith("There was a problem opening the TCP/IP Port for Command: Nowhere "));
}

TEST_F(Commands, GoAsOneDatagramOverUdp) {
    QUdpSocket peer;
    ASSERT_TRUE(peer.bind(QHostAddress::LocalHost));
    CommandRecord command;
    command.Type = TcpIpCommand;
    command.Protocol = ProtocolUdp;
    command.Address = "127.0.0.1";
    command.IpPort = peer.localPort();
    command.Text = everyByte;
    save("Datagram", command);
    command.Flags = UseExistingConnection | LeaveConnectionOpen;
    save("Kept", command);
    command.Text = QByteArray(65508, 'x');
    save("Long", command);
    const auto datagram = [&peer] {
        QByteArray bytes(70000, 0);
        EXPECT_TRUE(waitFor([&] { return peer.hasPendingDatagrams(); }));
        bytes.resize(qMax<qint64>(peer.readDatagram(bytes.data(), bytes.size()), 0));
        return bytes;
    };
    EXPECT_TRUE(runner.PerformCommand("Datagram", false));
    EXPECT_EQ(datagram(), everyByte);
    ASSERT_TRUE(idle());
    EXPECT_TRUE(runner.connections().isEmpty());
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(runner.PerformCommand("Kept", false));
        EXPECT_EQ(datagram(), everyByte);
        EXPECT_EQ(runner.connections().size(), 1);
    }
    EXPECT_TRUE(runner.PerformCommand("Long", false));
    EXPECT_TRUE(waitFor([&] { return prompts.asked.size() == 1; }));
    EXPECT_TRUE(prompts.texts()[0].endsWith("The text is too long for one datagram(10040)"));
}

TEST_F(Commands, StartPrograms) {
    machine.write("C:\\Program Files\\Play It.sh",
                  "#!/bin/sh\n{ echo $TOLVEX_WINDOW_STYLE; for a; do echo \"[$a]\"; done; echo end; } > "
                  "\"$TOLVEX_HOME/out.tmp\"\nmv \"$TOLVEX_HOME/out.tmp\" \"$TOLVEX_HOME/out\"\n");
    ::chmod(machine.host("C:\\Program Files\\Play It.sh").toUtf8().constData(), 0755);
    const auto output = [this] {
        QFile file(machine.path() + "/out");
        waitFor([&] { return file.exists(); });
        file.open(QIODevice::ReadOnly);
        QByteArray bytes = file.readAll();
        file.remove();
        return bytes;
    };
    CommandRecord command;
    command.Type = ExternalCommand;
    command.WindowStyle = 7;
    for (const char* line : {"\"C:\\Program Files\\Play It.sh\" one \"two three\" \xE9",
                             " C:\\Program Files\\Play It.sh one \"two three\" \xE9"}) {
        command.Text = line;
        save("Play", command);
        EXPECT_TRUE(runner.PerformCommand("Play", false)) << line;
        EXPECT_EQ(output(), QByteArray("7\n[one]\n[two three]\n[é]\nend\n")) << line;
    }
    for (const char* line : {"C:\\NOT THERE\\X.EXE /q", "", "\"", "C:\\Program Files"}) {
        command.Text = line;
        save("Gone", command);
        EXPECT_FALSE(runner.PerformCommand("Gone", false)) << line;
        EXPECT_EQ(prompts.asked.takeLast().text,
                  QString("The file specified in Command: Gone could not be executed."));
    }
}

TEST_F(Commands, OfOtherKindsDoWhatIsTold) {
    EXPECT_FALSE(runner.PerformCommand("Nobody", false));
    machine.write("C:\\DATA\\Commands\\Empty.TCD", "");
    EXPECT_FALSE(runner.PerformCommand("Empty", false));
    EXPECT_FALSE(runner.PerformCommand(" ", false));
    EXPECT_TRUE(prompts.asked.isEmpty());
    CommandRecord command;
    command.Type = SuiteCommand;
    save("Own", command);
    EXPECT_TRUE(runner.PerformCommand("Own", false));
    command.Type = 9;
    save("Later", command);
    EXPECT_FALSE(runner.PerformCommand("Later", true));
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_FALSE(runner.PerformCommand("Later", false));
    machine.write("C:\\DATA\\Commands\\Cut.TCD", QByteArray(1023, '\1'));
    EXPECT_FALSE(runner.PerformCommand("Cut", false));
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_EQ(prompts.texts()[0],
              QString("The Command Later contained Command Type 9 which is not recognised. "
                      "Please contact Norvane Ltd."));
    EXPECT_TRUE(prompts.texts()[1].contains("1023 bytes"));
}

TEST_F(Commands, CanBeTriedWithoutBeingStored) {
    CommandTrial trial(log());
    const auto kinds = [this] {
        QString text;
        for (const CommandEvent& event : events)
            text += "NOSARCF"[int(event.kind)]; // coNnecting, Open, Sent, Answer, staRted, Closed, Failed
        return text;
    };
    const auto tried = [&](const CommandRecord& command) {
        events.clear();
        trial.start("Try", command);
        EXPECT_TRUE(waitFor([&] { return !trial.running(); }));
        return kinds();
    };
    // The trial waits for an answer until the peer closes, or three seconds.
    Peer peer;
    peer.answer = "OK\r\n";
    events.clear();
    trial.start("Try", tcp(peer, "hello"));
    ASSERT_TRUE(waitFor([&] { return !answers().isEmpty(); }));
    peer.sockets[0]->disconnectFromHost();
    EXPECT_TRUE(waitFor([&] { return !trial.running(); }));
    EXPECT_EQ(kinds(), QString("NOSAC"));
    EXPECT_EQ(answers(), peer.answer);
    EXPECT_EQ(peer.received[0], QByteArray("hello"));

    PseudoTerminal device;
    machine.link("com1", device.path());
    device.onReceive = [&device](const QByteArray& bytes) { device.send("got " + bytes); };
    EXPECT_EQ(tried(serial("ping")), QString("OSAC"));
    EXPECT_EQ(answers(), QByteArray("got ping"));
    EXPECT_EQ(events[1].peer, QString("COM1"));
    EXPECT_EQ(events[1].bytes, QByteArray("ping"));

    EXPECT_EQ(tried(serial("ping", 0, 3)), QString("F"));
    EXPECT_TRUE(events[0].text.contains("COM3 is not set up"));
    peer.server.close();
    EXPECT_EQ(tried(tcp(peer, "x")), QString("NF")) << "port 0";
    CommandRecord refused = tcp(peer, "x");
    refused.IpPort = 1;
    EXPECT_EQ(tried(refused), QString("NF"));
    EXPECT_EQ(events[1].text, QString("Connection refused (10061)"));
    CommandRecord program;
    program.Type = ExternalCommand;
    program.Text = "true";
    EXPECT_EQ(tried(program), QString("RC"));
    EXPECT_TRUE(prompts.asked.isEmpty());

    // A port that a command keeps open is not taken away from it.
    save("Leave", serial("x", LeaveConnectionOpen));
    EXPECT_TRUE(runner.PerformCommand("Leave", false));
    EXPECT_EQ(tried(serial("ping")), QString("F"));
    EXPECT_EQ(events.last().text, QString("COM1 is in use by a command."));
}
