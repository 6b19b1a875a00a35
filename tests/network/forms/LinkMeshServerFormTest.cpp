// The window of the LinkMesh server: out of sight and back, what it shows, and that it lets go of everything.
#include "network/forms/FormTest.h"
#include "network/forms/StrengthMeter.h"
#include "network/forms/frmLinkMeshServer.h"
#include "support/ClockReceiver.h"

#include <QAction>
#include <QClipboard>
#include <QHostAddress>
#include <QMenu>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTcpServer>
#include <QTcpSocket>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class ServerForm : public FormTest {
protected:
    ServerForm() { setup.remote = {QHostAddress::LocalHost, 0, ReadRemoteAccess}; }
    void start(bool hasTray = true) { form = std::make_unique<frmLinkMeshServer>(setup, hasTray); }
    QString label(const char* name) const { return find<QLabel>(*form, name)->text(); }
    QStringList events() const {
        const auto* rows = find<QTableView>(*form, "lstEvents")->model();
        QStringList all;
        for (int row = 0; row < rows->rowCount(); ++row)
            all += rows->index(row, 1).data().toString();
        return all;
    }
    quint16 port() const { return form->server().remote().port(); }

    LinkMeshServerSetup setup;
    std::unique_ptr<frmLinkMeshServer> form;
};

} // namespace

TEST_F(ServerForm, StaysOutOfSightUntilItIsWantedAndServesMeanwhile) {
    start();
    EXPECT_EQ(form->windowTitle(), "LinkMesh Server");
    EXPECT_FALSE(form->isVisible());
    QTcpSocket peer;
    peer.connectToHost(QHostAddress::LocalHost, port());
    ASSERT_TRUE(waitFor([&] { return form->server().remote().isConnected(); }));

    // Left click, double click, the menu, and another click while it is there.
    const auto wake = [this](const std::function<void()>& act) {
        act();
        EXPECT_TRUE(waitFor([this] { return form->isVisible() && !form->isMinimized(); }));
    };
    wake([this] { emit form->tray().activated(QSystemTrayIcon::Trigger); });
    EXPECT_TRUE(label("lblRemoteControlStatus").endsWith(" connected to Winsock port"));
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    wake([this] { emit form->tray().activated(QSystemTrayIcon::DoubleClick); });
    EXPECT_FALSE(form->close()); // refused: it only goes out of sight
    EXPECT_FALSE(form->isVisible());
    emit form->tray().activated(QSystemTrayIcon::Context);
    EXPECT_FALSE(form->isVisible());
    auto* menu = form->tray().contextMenu();
    ASSERT_TRUE(menu);
    EXPECT_EQ(form->tray().toolTip(), "Norvane LinkMesh Server");
    wake([menu] { menu->findChild<QAction*>("mPopRestore")->trigger(); });
    form->setWindowState(Qt::WindowMinimized);
    EXPECT_TRUE(waitFor([this] { return !form->isVisible(); }));
    EXPECT_TRUE(form->server().remote().isConnected());

    peer.write("12\r");
    EXPECT_TRUE(waitFor([&] { return events().contains("Replied \"Play Cart 12\""); }));
    EXPECT_TRUE(events().contains("127.0.0.1 sent \"12\": plays cart 12"));
    peer.disconnectFromHost();
    EXPECT_TRUE(waitFor([this] { return label("lblRemoteControlStatus") == " Winsock Control listening"; }));
    show(*form);
    clickButton("cmdCopy");
    EXPECT_TRUE(QApplication::clipboard()->text().contains("\tReplied \"Play Cart 12\"\n"));

    const quint16 free = port();
    form.reset();
    QTcpServer again;
    EXPECT_TRUE(again.listen(QHostAddress::LocalHost, free));
}

TEST_F(ServerForm, WithoutATrayItMinimisesAndAPortThatIsTakenIsTold) {
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    setup.remote.port = other.serverPort();
    start(false);
    EXPECT_TRUE(form->isVisible() && form->isMinimized());
    EXPECT_TRUE(label("lblRemoteControlStatus").startsWith(" Winsock Control Error: "));
    form->restore();
    EXPECT_FALSE(form->isMinimized());
    show(*form);
    clickButton("cmdMinimise");
    EXPECT_TRUE(form->isVisible() && form->isMinimized());
    EXPECT_EQ(label("lblNetworkControlDesc"), "No network control client is installed on this workstation.");
    EXPECT_EQ(label("lblRadioClockStatus"), " Disabled");
    EXPECT_FALSE(find<QPushButton>(*form, "cmdTestClock")->isEnabled());
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(ServerForm, ShowsTheRadioClockAndComesForwardWhenItsBatteryIsLow) {
    ClockReceiver receiver;
    receiver.isMute = true;
    machine.link("com1", receiver.device.path());
    setup.radioClockPort = 1;
    start();
    EXPECT_EQ(label("lblRadioClockStatus"), " Enabled");
    const QDateTime true_time(QDate(2024, 3, 5), QTime(0, 0, 0)); // exactly midnight: sets no clock
    receiver.device.send(ClockReceiver::timeLine(true_time, '0'));
    ASSERT_TRUE(waitFor([this] { return form->server().clock().lastTimeCame().isValid(); }));
    EXPECT_FALSE(form->isVisible());
    receiver.device.send(ClockReceiver::timeLine(true_time, '8')); // battery low
    ASSERT_TRUE(waitFor([this] { return form->isVisible(); }));
    EXPECT_TRUE(find<QLabel>(*form, "picLowBattery")->isVisible());
    EXPECT_EQ(label("lblLowBattery"), "The batteries in your radio clock are running low - you should change "
                                      "them as soon as possible.");
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    receiver.device.send(ClockReceiver::timeLine(true_time, '8'));
    EXPECT_TRUE(waitFor([this] { return form->isVisible(); }));
    receiver.device.send(ClockReceiver::timeLine(true_time, '0'));
    EXPECT_TRUE(waitFor([this] { return !find<QLabel>(*form, "lblLowBattery")->isVisible(); }));
    EXPECT_TRUE(form->isVisible());

    // The test.
    receiver.isMute = false;
    receiver.level = 5;
    show(*form);
    auto* strength = find<StrengthMeter>(*form, "pnlStrength");
    auto* button = find<QPushButton>(*form, "cmdTestClock");
    EXPECT_EQ(strength->percent(), -1);
    clickButton("cmdTestClock");
    EXPECT_EQ(button->text(), "&Testing");
    EXPECT_TRUE(button->styleSheet().contains("#00ff00"));
    EXPECT_TRUE(waitFor([strength] { return strength->percent() == 100; }));
    QTest::keyClick(form.get(), Qt::Key_Escape); // ends it
    EXPECT_EQ(button->text(), "&Test");
    EXPECT_EQ(strength->percent(), -1);
    receiver.device.unplug();
    EXPECT_TRUE(waitFor([button] { return button->text() == "&Connect"; }));
    EXPECT_TRUE(label("lblRadioClockStatus").startsWith(" Error - "));
    // The form grows with its texts.
    find<QLabel>(*form, "lblRemoteControlStatus")->setText(QString("a long reason ").repeated(40));
    find<QLabel>(*form, "lblLowBattery")->show();
    expectTextsFit(*form);
}

TEST_F(ServerForm, SaysAndSetsWhoMayConnect) {
    start();
    form->restore();
    show(*form);
    EXPECT_EQ(label("lblAccess"), "everyone");
    prompts.typed = {QString("10.9.9.9, 192.168.1.0/24"), QString("somebody"), std::nullopt};
    clickButton("cmdAccess");
    EXPECT_EQ(label("lblAccess"), "10.9.9.9, 192.168.1.0/24");
    QTcpSocket peer;
    peer.connectToHost(QHostAddress::LocalHost, port());
    EXPECT_TRUE(waitFor([&] { return events().join('|').contains("may not connect"); }))
        << events().join('|').toStdString();
    clickButton("cmdAccess");
    EXPECT_EQ(prompts.asked.size(), 1);
    clickButton("cmdAccess");
    EXPECT_EQ(label("lblAccess"), "10.9.9.9, 192.168.1.0/24");
}
