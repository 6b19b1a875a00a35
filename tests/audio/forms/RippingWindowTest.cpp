// The window for CD ripping, worked by mouse and keyboard.
#include "SetupForm.h"

#include "audio/forms/frmRippingSettings.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class RippingWindow : public testing::Test, protected SetupForm<frmRippingSettings> {
protected:
    QString stored(const char* section, const char* key) const {
        return value(section, key, QStringLiteral("D:\\WALL\\Audwall.ini"));
    }
    void typeServer(const QString& name) const {
        auto* server = on<QComboBox>("comboCDDBServer");
        QTest::mouseClick(server->lineEdit(), Qt::LeftButton);
        server->lineEdit()->selectAll();
        QTest::keyClicks(server->lineEdit(), name);
    }
};

} // namespace

TEST_F(RippingWindow, EnablesByItsRulesAndStoresWhatIsTyped) {
    open();
    EXPECT_TRUE(enabled("txtNormaliseLevel"));
    EXPECT_EQ(label("lblDecibels"), "-4.0 dB");
    for (const char* name : {"fraCDDB", "lblCDDBServerDesc", "comboCDDBServer", "lblCDDBPort", "txtCDDBPort",
                             "lblCDDBEmailAddress", "txtCDDBEmailAddress", "chkAllowSubmissions"})
        EXPECT_FALSE(enabled(name)) << name;
    press("chkNormalise");
    EXPECT_FALSE(enabled("txtNormaliseLevel"));
    press("chkNormalise");
    press("chkAskFirst");
    press("chkAllowCDDB");
    EXPECT_TRUE(enabled("fraCDDB") && enabled("txtCDDBPort"));
    choose("comboCDDBServer", 1);
    type("txtCDDBPort", "1x2");
    EXPECT_EQ(text("txtCDDBPort"), "12");
    type("txtNormaliseLevel", "5x0");
    EXPECT_EQ(label("lblDecibels"), "-6.0 dB");
    type("txtCDDBEmailAddress", "a@b.c");
    press("chkAllowSubmissions");
    QTest::keyClick(on<QLineEdit>("txtCDDBEmailAddress"), Qt::Key_Return); // OK is the default
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(prompts.texts().isEmpty());
    EXPECT_EQ(stored("CDRipping", "AskBeforeProcess"), "1");
    EXPECT_EQ(stored("CDRipping", "NormaliseAudioPercent"), "50");
    EXPECT_EQ(stored("CDDB", "ServerAddress"), "freedb.dbpoweramp.com");
    EXPECT_EQ(stored("CDDB", "AllowSubmit"), "1");
    open();
    EXPECT_EQ(text("txtCDDBPort"), "8880"); // the port is never stored
    EXPECT_EQ(on<QComboBox>("comboCDDBServer")->currentText(), "freedb.dbpoweramp.com");
}

TEST_F(RippingWindow, StaysOpenAtTheFieldThatIsWrongAndCancelStoresNothing) {
    open();
    press("chkAllowCDDB");
    type("txtCDDBPort", "0");
    press("Command1");
    EXPECT_EQ(form->focusWidget(), on<QLineEdit>("txtCDDBPort"));
    EXPECT_TRUE(prompts.texts().value(0).startsWith("You must specify a Port"));
    type("txtCDDBPort", "70000");
    press("Command1"); // the port is above 0, and is not used here
    EXPECT_EQ(form->focusWidget(), on<QLineEdit>("txtCDDBEmailAddress"));
    EXPECT_TRUE(form->isVisible());
    press("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    EXPECT_FALSE(machine.exists("D:\\WALL\\Audwall.ini"));
}

TEST_F(RippingWindow, ShowsWhatAnotherWorkstationStoredBeforeItStores) {
    open();
    press("chkAskFirst");
    machine.write("D:\\WALL\\Audwall.ini", "[CDDB]\r\nEmailAddress=new@b.c\r\n");
    press("Command1");
    ASSERT_EQ(prompts.texts().size(), 1);
    EXPECT_EQ(text("txtCDDBEmailAddress"), "new@b.c");
    EXPECT_EQ(stored("CDRipping", "AskBeforeProcess"), "<none>");
    press("Command1");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(stored("CDRipping", "AskBeforeProcess"), "1");
    EXPECT_EQ(stored("CDDB", "EmailAddress"), "new@b.c");
}

TEST_F(RippingWindow, ReadOnlyCanBeLookedAtOnly) {
    machine.write("D:\\WALL\\Audwall.ini", "[CDDB]\r\nAllowCDDB=1\r\n");
    form = std::make_unique<frmRippingSettings>(settings);
    form->setReadOnly(true);
    form->show();
    for (const char* name : {"fraProcessing", "fraCDDB", "chkAskFirst", "chkNormalise", "txtNormaliseLevel",
                             "chkAllowCDDB", "comboCDDBServer", "chkAllowSubmissions"})
        EXPECT_FALSE(enabled(name)) << name;
    press("Command1");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(machine.read("D:\\WALL\\Audwall.ini"), "[CDDB]\r\nAllowCDDB=1\r\n");
    form->setReadOnly(false);
    EXPECT_TRUE(enabled("comboCDDBServer") && enabled("chkAskFirst"));
}

TEST_F(RippingWindow, TestsTheServerWhileItStaysUsable) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    open();
    press("chkAllowCDDB");
    typeServer("localhost");
    press("cmdTestServer");
    EXPECT_TRUE(prompts.texts().value(0).startsWith("You must specify a valid CDDB Server"));
    typeServer("127.0.0.1");
    type("txtCDDBPort", "65536");
    press("cmdTestServer");
    EXPECT_EQ(prompts.texts().value(1), "A port is a number from 1 to 65535.");
    type("txtCDDBPort", QString::number(server.serverPort()));
    press("cmdTestServer");
    EXPECT_EQ(label("lblServerState"), "Asking 127.0.0.1...");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.hasPendingConnections(); }));
    press("chkAskFirst"); // nothing is held up meanwhile
    server.nextPendingConnection()->write("201 titles CDDBP server ready\r\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return label("lblServerState").contains("is there and ready"); }));
    typeServer("freedb.org"); // what was found out was another server's
    EXPECT_TRUE(label("lblServerState").contains("was closed"));
    typeServer("127.0.0.1");
    press("cmdTestServer");
    form.reset(); // in the middle of a test
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.hasPendingConnections(); }));
}
