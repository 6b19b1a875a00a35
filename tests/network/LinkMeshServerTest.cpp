// The server as a whole: network control events, outputs, subscribers, start and end.
#include "network/server/LinkMeshServer.h"

#include "core/report/DebugLog.h"
#include "core/settings/Settings.h"
#include "hardware/HardwareCards.h"
#include "support/ClockReceiver.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"
#include "support/WaitFor.h"

#include <QTcpSocket>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class Client : public NetControlClient {
public:
    void send(const QString& text) override { sent += text; }
    void stop() override { ++stopped; }
    QStringList sent;
    int stopped = 0;
};

// Records what it is told, and tries to change it for others.
class Subscriber final : public NetControlSubscriber {
public:
    void NetworkControlStatusNotice(qint32& event, qint32& value1, qint32& value2, QString& text) override {
        notices += QStringLiteral("%1,%2,%3,%4").arg(event).arg(value1).arg(value2).arg(text);
        event = value1 = value2 = -1;
        text = "changed";
        if (whenTold)
            whenTold();
    }
    QStringList notices;
    std::function<void()> whenTold;
};

class ServerTest : public testing::Test {
protected:
    ServerTest() {
        settings.DebugLevel = -1;
        network.setClient(&client);
    }
    // The lines of the debug log, without their times.
    QStringList logged() const {
        QStringList lines;
        for (const QByteArray& line : machine.read("C:\\Debugfiles\\test_network.20240305.log").split('\n'))
            if (line.size() > 9)
                lines += QString::fromLatin1(line.mid(9).trimmed());
        return lines;
    }

    Settings settings;
    DebugLogging log{settings.DebugLevel};
    HardwareCardTable cards;
    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30))};
    Client client;
    QString outputs;
    NetworkControl network{[this](bool on) { outputs += on ? '1' : '0'; }};
};

} // namespace

TEST_F(ServerTest, EveryNetworkEventIsLoggedSetsOutputsAndGoesToWhoWantsIt) {
    Subscriber messages;
    Subscriber control;
    Subscriber sending;
    Subscriber all;
    EXPECT_TRUE(network.RegisterFormForNetControlEvents(&messages, WantsMessages));
    EXPECT_TRUE(network.RegisterFormForNetControlEvents(&control, WantsControl));
    EXPECT_TRUE(network.RegisterFormForNetControlEvents(&sending, WantsSending));
    EXPECT_TRUE(network.RegisterFormForNetControlEvents(&all, 7));
    const struct {
        qint32 number;
        const char* log;
        const char* outputs;
        Subscriber* wants;
        const char* notice;
    } rows[] = {
        {2, "ConnectingToNetworkMaster", "", &control, "2,0,0,"},
        {1, "ConnectedToNetworkMaster", "", &control, "1,0,0,"},
        {7, "DisconnectedFromNetworkMaster", "", &control, "7,0,0,"},
        {17, "TakingNetworkControl", "0", &control, "17,0,0,"},
        {20, "NetworkControlTaken", "1", &control, "20,0,0,"},
        {23, "NetworkControlFail", "0", &control, "23,0,0,text"},
        {28, "ReleasingNetworkControl", "0", &control, "28,0,0,"},
        {31, "NetworkControlEnded", "0", &control, "31,5,0,"},
        {250, "message: \"text\"", "", &messages, "250,0,0,text"},
        {253, "SendProgress 5,6", "", &sending, "253,5,6,"},
        {252, "SendComplete", "", &sending, "252,0,0,"},
    };
    for (const auto& row : rows) {
        outputs.clear();
        for (Subscriber* subscriber : {&messages, &control, &sending, &all})
            subscriber->notices.clear();
        client.onEvent({row.number, 5, 6, "text"});
        EXPECT_EQ(logged().value(logged().size() - 1),
                  QStringLiteral("NETCONTROL: NetControlClient_%1").arg(row.log));
        EXPECT_EQ(outputs, QString(row.outputs)) << row.log;
        for (Subscriber* subscriber : {&messages, &control, &sending, &all})
            EXPECT_EQ(subscriber->notices,
                      subscriber == row.wants || subscriber == &all ? QStringList{row.notice} : QStringList())
                << row.log;
    }
    const qsizetype before = logged().size();
    client.onEvent({99, 5, 6, "text"});
    EXPECT_EQ(logged().size(), before);
    network.SendMessageToNetwork("on air");
    EXPECT_EQ(logged().last(), QString("NETCONTROL: SendMessageToNetwork: \"on air\""));
    EXPECT_EQ(client.sent, QStringList{"on air"});
}

TEST_F(ServerTest, SubscribersMayComeAndGoWhileTheyAreTold) {
    Subscriber first;
    Subscriber second;
    Subscriber third;
    first.whenTold = [&] {
        EXPECT_TRUE(network.UnRegisterFormForNetControlEvents(&first));
        EXPECT_TRUE(network.UnRegisterFormForNetControlEvents(&second));
        EXPECT_TRUE(network.RegisterFormForNetControlEvents(&third, WantsControl));
    };
    network.RegisterFormForNetControlEvents(&first, WantsControl);
    network.RegisterFormForNetControlEvents(&second, WantsControl);
    client.onEvent({1, 0, 0, {}});
    EXPECT_EQ(first.notices.size(), 1);
    EXPECT_TRUE(second.notices.isEmpty());
    // The third took the first empty place, which had been told already.
    EXPECT_TRUE(third.notices.isEmpty());
    client.onEvent({1, 0, 0, {}});
    EXPECT_EQ(first.notices.size() * 10 + third.notices.size(), 11);
    // A subscriber has one place and its newest mask.
    network.RegisterFormForNetControlEvents(&third, WantsMessages);
    client.onEvent({1, 0, 0, {}});
    EXPECT_EQ(third.notices.size(), 1);
    EXPECT_FALSE(network.UnRegisterFormForNetControlEvents(&second));
    network.stop();
    EXPECT_EQ(client.stopped, 1);
    client.onEvent({250, 0, 0, {}});
    EXPECT_EQ(third.notices.size(), 1);
    network.setClient(nullptr);
    EXPECT_FALSE(bool(client.onEvent));
    EXPECT_EQ(network.description(), QString("No network control client is installed on this workstation."));
    network.SendMessageToNetwork("to nobody");
}

TEST_F(ServerTest, LinesThatShowControlFollowIt) {
    HardwareCard& card = cards[2];
    card.CardType = CardRS232;
    for (int n = 1; n <= 4; ++n) {
        card.Lines[n].Action = n == 4 ? 81 : 80;
        card.Lines[n].ActionData = {n == 3 ? 2 : 1, 9, 9, 9};
    }
    card.Lines[2].LineType = 0; // an input follows it, too
    card.Lines[1].LineType = 1;
    StationControlOutputs(cards, true);
    EXPECT_EQ(card.Lines[1].OutputState * 10 + card.Lines[2].OutputState, -11);
    EXPECT_EQ(card.Lines[3].OutputState + card.Lines[4].OutputState, 0);
    StationControlOutputs(cards, false);
    EXPECT_EQ(card.Lines[1].OutputState + card.Lines[2].OutputState, 0);
}

TEST_F(ServerTest, StartsConnectsAndLetsGoOfEverything) {
    ClockReceiver receiver;
    receiver.now = [this] { return clock.time; };
    machine.link("com1", receiver.device.path());
    PseudoTerminal device;
    machine.link("com2", device.path());
    CommandRecord command;
    command.SerialPort = 2;
    command.Flags = LeaveConnectionOpen;
    command.Text = "open";
    machine.makeFolder("C:\\DATA");
    ASSERT_TRUE(CommandFolder("C:\\DATA").save("Open", command));

    int stamps = 0;
    QStringList events;
    LinkMeshServerSetup setup;
    setup.dataLocation = "C:\\DATA";
    setup.radioClockPort = 1;
    setup.remote = {QHostAddress::LocalHost, 0, {}};
    setup.stampTerminal = [&stamps] { ++stamps; };
    setup.setControlOutputs = [this](bool on) { outputs += on ? '1' : '0'; };
    LinkMeshServer server(setup, [&events](const ServerEvent& event) { events += event.sentence(); });
    Client installed;
    server.network().setClient(&installed);
    server.start();
    EXPECT_EQ(stamps, 1);
    EXPECT_EQ(server.clock().status(), QString(" Enabled"));
    EXPECT_TRUE(server.PerformCommand("Open", false));
    ASSERT_TRUE(waitFor([&] { return device.received == "open" && !server.commands().busy(); }));
    EXPECT_EQ(server.commands().connections(), QStringList{"COM2"});
    QTcpSocket peer;
    peer.connectToHost(QHostAddress::LocalHost, server.remote().port());
    ASSERT_TRUE(waitFor([&] { return server.remote().isConnected(); }));
    server.SendWinSockMessage("hello");
    installed.onEvent({20, 0, 0, {}});
    receiver.device.send(ClockReceiver::timeLine(clock.time, '1'));
    ASSERT_TRUE(waitFor([&] { return server.clock().lastTimeCame().isValid(); }));
    EXPECT_EQ(outputs, QString("1"));

    server.close();
    EXPECT_TRUE(server.isClosed());
    EXPECT_EQ(installed.stopped, 1);
    EXPECT_TRUE(server.commands().connections().isEmpty());
    EXPECT_FALSE(server.remote().isListening());
    EXPECT_TRUE(waitFor([&] { return peer.state() == QAbstractSocket::UnconnectedState; }));
    server.clock().pressButton();
    for (const int port : {1, 2}) {
        platform::SerialPort again("another use");
        EXPECT_FALSE(again.open(port, {}, platform::Handshaking::None)) << port;
    }
    events.removeAll(events.value(0)); // on which port
    EXPECT_EQ(events, (QStringList{"Command \"Open\": 4 bytes sent to COM2", "127.0.0.1 connected",
                                   "Replied \"Connected\"", "Replied \"hello\"",
                                   "Network control: NetworkControlTaken",
                                   "Radio clock: 5 March 2024 22:10:30, valid", "127.0.0.1 closed"}));
    EXPECT_TRUE(prompts.asked.isEmpty());
}
