// The editor of a command: bytes that pass through it, its checks, its test over real ports and sockets.
#include "network/forms/FormTest.h"
#include "network/forms/frmCommandDetails.h"
#include "support/PseudoTerminal.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

const QString path = QStringLiteral("C:\\DATA\\Commands\\");

// With both kinds of handshaking.
CommandRecord serial(qint32 flags, qint32 port, const char* settings) {
    CommandRecord record;
    record.Flags = flags;
    record.SerialPort = port;
    record.Handshaking = 3;
    record.Settings = settings;
    return record;
}

class CommandDetails : public FormTest {
protected:
    void open(const QString& name = {}) {
        form = std::make_unique<frmCommandDetails>(folder, name, uses);
        show(*form);
    }
    void put(const QString& name, const CommandRecord& command) { ASSERT_TRUE(folder.save(name, command)); }
    void choose(const char* list, const QString& entry) {
        auto* box = find<QComboBox>(*form, list);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Home);
        for (int i = 1; i < box->count() && box->currentText() != entry; ++i)
            QTest::keyClick(box, Qt::Key_Down);
        ASSERT_EQ(box->currentText(), entry);
    }
    template<class Box>
    void type(const char* name, const QString& text) {
        auto* box = find<Box>(*form, name);
        box->setFocus();
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }
    QString label(const char* name) const { return find<QLabel>(*form, name)->text(); }
    // The lines of the test's view.
    QStringList trial() const {
        const auto* rows = find<QTableView>(*form, "lstTrial")->model();
        QStringList lines;
        for (int row = 0; row < rows->rowCount(); ++row)
            lines += rows->index(row, 1).data().toString();
        return lines;
    }

    CommandFolder folder{"C:\\DATA"};
    CommandUseSource uses = [](const QString& name) {
        return QList<CommandUse>{{"Hardware card 1, line 2", "fires " + name}};
    };
    std::unique_ptr<frmCommandDetails> form;
};

} // namespace

TEST_F(CommandDetails, KeepsEveryByteAndEveryFieldOfWhatIsOnlyLookedAt) {
    QByteArray everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += char(byte);
    everyByte += "\r\n\n\r\\";
    CommandRecord records[3];
    records[0] = serial(3, 4, "19200,e,7,2");
    records[1].Type = TcpIpCommand;
    records[1].Address = "studio2";
    records[1].IpPort = 4001;
    records[1].Protocol = ProtocolUdp;
    records[2].Type = ExternalCommand;
    records[2].WindowStyle = 7;
    for (CommandRecord& record : records) {
        record.Text = everyByte + QByteArray(40000, 'x'); // more than a box of one line holds
        put("Look", record);
        const QByteArray before = machine.read(path + "Look.TCD");
        open("Look");
        EXPECT_FALSE(find<QPushButton>(*form, "cmdOK")->toolTip().size());
        clickButton("cmdOK");
        EXPECT_EQ(machine.read(path + "Look.TCD").toHex(), before.toHex()) << record.Type;
        EXPECT_TRUE(form->needsRefresh());
    }
    EXPECT_TRUE(prompts.asked.isEmpty());

    // Changing one field changes nothing else.
    records[0].Text = "\x02go\r\n";
    put("Look", records[0]);
    open("Look");
    EXPECT_EQ(find<QPlainTextEdit>(*form, "txtSerialCommand")->toPlainText(), "\\x02go\n");
    EXPECT_EQ(label("lblBytes"), "5 bytes: 02 67 6F 0D 0A");
    choose("comboSerialPort", "Com Port 2");
    clickButton("cmdOK");
    records[0].SerialPort = 2;
    EXPECT_EQ(*folder.read("Look"), records[0]);
}

TEST_F(CommandDetails, AsksBeforeItReplacesWhatAnotherWorkstationStoredMeanwhile) {
    put("Door", serial(0, 1, "9600,n,8,1"));
    open("Door");
    const CommandRecord theirs = serial(0, 4, "19200,n,8,1");
    put("Door", theirs);
    choose("comboSerialPort", "Com Port 2");
    // Typing the name away and back does not make it the one that was opened.
    type<QLineEdit>("txtCommandFile", "Door");
    type<QPlainTextEdit>("txtSerialCommand", "x");
    prompts.answers = {Answer::No, Answer::Yes};
    clickButton("cmdOK");
    EXPECT_EQ(prompts.texts(), QStringList{"The command \"Door\" has been changed elsewhere since you opened "
                                           "it. Do you want to replace it?"});
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(*folder.read("Door"), theirs);
    clickButton("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(folder.read("Door")->SerialPort, 2);
}

TEST_F(CommandDetails, StoresWhatIsTypedWithLineBreaksAndEscapes) {
    open();
    auto* ok = find<QPushButton>(*form, "cmdOK");
    EXPECT_TRUE(ok->isDefault());
    type<QLineEdit>("txtCommandFile", "Night 1");
    type<QPlainTextEdit>("txtSerialCommand", "\\x02A\\\\B");
    auto* box = find<QPlainTextEdit>(*form, "txtSerialCommand");
    EXPECT_FALSE(ok->isDefault());
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClicks(box, "C\\r");
    EXPECT_EQ(label("lblBytes"), "8 bytes: 02 41 5C 42 0D 0A 43 0D");
    choose("comboSerialHandshaking", "RTS/CTS and XON/XOFF handshaking");
    EXPECT_TRUE(ok->isDefault());
    clickButton("chkUseExisting");
    QTest::keyClick(find<QLineEdit>(*form, "txtSerialSettings"), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    CommandRecord wanted = serial(UseExistingConnection, 1, "9600,n,8,1");
    wanted.Text = "\x02"
                  "A\\B\r\nC\r";
    EXPECT_EQ(*folder.read("Night 1"), wanted);
    EXPECT_EQ(form->commandName(), "Night 1");
    EXPECT_TRUE(prompts.asked.isEmpty());

    // A command line is taken as it stands, and a program has no connection.
    open("Night 1");
    choose("comboCommandType", "External Command");
    EXPECT_FALSE(find<QCheckBox>(*form, "chkUseExisting")->isEnabled());
    type<QLineEdit>("txtExternalCommand", "C:\\new\\run.exe /x");
    choose("comboExternalWindowStyle", "Minimized without Focus");
    clickButton("cmdOK");
    const CommandRecord external = *folder.read("night 1");
    EXPECT_EQ(external.Type * 10 + external.WindowStyle, 37);
    EXPECT_EQ(external.Text, "C:\\new\\run.exe /x");
}

TEST_F(CommandDetails, ChecksInOrderAndLeadsToTheField) {
    open();
    const auto refused = [this](const char* message, const char* field) {
        prompts.forget();
        clickButton("cmdOK");
        EXPECT_EQ(prompts.texts(), QStringList{message});
        if (!prompts.asked.isEmpty() && prompts.asked[0].buttons == platform::Buttons::Ok) {
            EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Information);
        }
        EXPECT_TRUE(form->isVisible());
        EXPECT_EQ(form->focusWidget()->objectName(), QString(field));
    };
    type<QLineEdit>("txtSerialSettings", " ");
    refused("You must enter a Command Name before clicking OK", "txtCommandFile");
    type<QLineEdit>("txtCommandFile", "a/b");
    refused("You can only use numbers, letters and spaces in Command Names", "txtCommandFile");
    type<QLineEdit>("txtCommandFile", "Door");
    refused("You must enter a set of valid Settings for the Serial Port", "txtSerialSettings");
    type<QLineEdit>("txtSerialSettings", "9600,n,8");
    refused("The Serial Port Settings that you have entered do not appear to be correct.",
            "txtSerialSettings");
    type<QLineEdit>("txtSerialSettings", ",,,x");
    EXPECT_FALSE(label("lblPort").isEmpty()); // no port will take them
    prompts.answers = {Answer::No};
    refused("You have not entered a command to send. Is this OK?", "txtSerialCommand");
    type<QPlainTextEdit>("txtSerialCommand", "ab\\q");
    refused(qPrintable(label("lblBytes")), "txtSerialCommand");
    EXPECT_EQ(find<QPlainTextEdit>(*form, "txtSerialCommand")->textCursor().selectedText(), "\\");
    choose("comboCommandType", "TCP/IP Command");
    refused("You must enter an IP Name or address to connect to", "txtTCPIPAddress");
    type<QLineEdit>("txtTCPIPAddress", "studio2");
    type<QLineEdit>("txtTCPIPPort", "x0");
    refused("You must enter an IP Port to connect to", "txtTCPIPPort");
    type<QLineEdit>("txtTCPIPPort", "4001");
    prompts.answers = {Answer::Yes};
    clickButton("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(machine.read(path + "Door.TCD").size(), 1024);
}

TEST_F(CommandDetails, SaysWhatAnotherNameMeansAndDeletesOnlyWhatExists) {
    put("Alarm", {});
    put("Door", {});
    open("Alarm");
    auto* remove = find<QPushButton>(*form, "cmdDelete");
    EXPECT_TRUE(remove->isEnabled());
    const struct {
        const char* name;
        const char* hint;
        bool exists;
    } rows[] = {{"ALARM", "The command keeps its spelling, \"Alarm\".", true},
                {"door", "OK replaces the command \"Door\".", true},
                {"Doo", "OK makes a new command; \"Alarm\" stays.", false},
                {"Alarm", "", true}};
    for (const auto& row : rows) {
        type<QLineEdit>("txtCommandFile", row.name);
        EXPECT_EQ(label("lblNameHint"), QString(row.hint)) << row.name;
        EXPECT_EQ(remove->isEnabled(), row.exists) << row.name;
    }
    prompts.answers = {Answer::No};
    clickButton("cmdDelete");
    EXPECT_TRUE(form->isVisible() && folder.has("Alarm"));
    EXPECT_EQ(prompts.texts(), QStringList{"Are you sure you want to delete this command?"});
    EXPECT_EQ(prompts.asked[0].defaultAnswer, Answer::No);
    EXPECT_EQ(label("lblUses"), "Used by\nHardware card 1, line 2: fires Alarm");
    prompts.answers = {Answer::Yes};
    clickButton("cmdDelete");
    EXPECT_FALSE(form->isVisible() || folder.has("Alarm"));
    EXPECT_TRUE(form->needsRefresh() && folder.has("Door"));

    // Cancel stores nothing and asks before changes are lost.
    open("Door");
    choose("comboSerialPort", "Com Port 3");
    prompts.forget();
    prompts.answers = {Answer::No, Answer::Yes};
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    clickButton("cmdCancel");
    EXPECT_FALSE(form->isVisible() || form->needsRefresh());
    EXPECT_EQ(folder.read("Door")->SerialPort, 1);

    // A command that cannot be written stays in the editor. A file that is not a command is reported.
    machine.write("C:\\FILE\\Commands", "in the way");
    folder = CommandFolder("C:\\FILE");
    prompts.forget();
    open();
    type<QLineEdit>("txtCommandFile", "New");
    type<QPlainTextEdit>("txtSerialCommand", "x");
    clickButton("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(prompts.asked.size(), 1);
    folder = CommandFolder("C:\\DATA");
    CommandRecord later;
    later.Type = 77;
    put("Later", later);
    prompts.forget();
    open("Later");
    EXPECT_EQ(prompts.texts().value(0),
              "The Command Type (77) was not recognised. Please contact Norvane Ltd.");
    // What could not be read is not replaced, whatever is typed, unless it gets another name.
    auto* ok = find<QPushButton>(*form, "cmdOK");
    type<QPlainTextEdit>("txtSerialCommand", "x");
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_TRUE(label("lblNameHint").startsWith("This command could not be read"));
    EXPECT_TRUE(find<QPushButton>(*form, "cmdDelete")->isEnabled());
    type<QLineEdit>("txtCommandFile", "Later 2");
    clickButton("cmdOK");
    open(); // nor by a new one
    type<QLineEdit>("txtCommandFile", "later");
    EXPECT_FALSE(find<QPushButton>(*form, "cmdOK")->isEnabled());
    EXPECT_TRUE(label("lblNameHint").startsWith("This command could not be read"));
    EXPECT_TRUE(folder.has("Later 2"));
    EXPECT_EQ(folder.read("Later")->Type, 77);
    // OK asks for a port that exists.
    put("Five", serial(0, 5, "9600,n,8,1"));
    prompts.forget();
    open("Five");
    prompts.answers = {Answer::Yes};
    clickButton("cmdOK");
    EXPECT_TRUE(prompts.texts().last().startsWith("The command holds serial port 5"));
    EXPECT_EQ(form->focusWidget()->objectName(), "comboSerialPort");
}

// On the smallest screens, inside the frame of a window manager.
TEST_F(CommandDetails, FitsA600LinesScreenWithItsButtons) {
    put("Door", serial(0, 4, "9600,n,8,1"));
    open("Door");
    form->resize(760, 560);
    EXPECT_LE(form->minimumSizeHint().height(), 560);
    find<QLabel>(*form, "lblPort")->setText(QString("a device with a long name ").repeated(3));
    expectTextsFit(*form);
    const auto* pages = find<QWidget>(*form, "pages");
    const auto* box = find<QPlainTextEdit>(*form, "txtSerialCommand");
    EXPECT_TRUE(
        waitFor([&] { return pages->rect().contains(QRect(box->mapTo(pages, QPoint()), box->size())); }));
    for (const char* name : {"cmdOK", "cmdCancel", "cmdTest"})
        EXPECT_TRUE(form->rect().contains(find<QWidget>(*form, name)->geometry())) << name;
}

TEST_F(CommandDetails, TriesWhatIsTypedAndStoresNothing) {
    PseudoTerminal device;
    device.onReceive = [&device](const QByteArray& bytes) {
        if (bytes.endsWith('\r'))
            device.send("\x06OK");
    };
    machine.link("com2", device.path());
    open();
    choose("comboSerialPort", "Com Port 2");
    EXPECT_EQ(label("lblPort").section(u',', 0, 0), device.path());
    type<QPlainTextEdit>("txtSerialCommand", "go\\r");
    clickButton("cmdTest");
    ASSERT_TRUE(waitFor([this] { return trial().contains("Done."); })) << trial().join('|').toStdString();
    EXPECT_EQ(device.received, "go\r");
    EXPECT_TRUE(trial().contains("Sent 3 bytes: go\\r (67 6F 0D)")) << trial().join('|').toStdString();
    EXPECT_TRUE(trial().contains("Answer, 3 bytes: \\x06OK (06 4F 4B)"));
    EXPECT_EQ(find<QPushButton>(*form, "cmdTest")->text(), "&Test");

    // A peer that says nothing, and a test that is stopped.
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    choose("comboCommandType", "TCP/IP Command");
    type<QLineEdit>("txtTCPIPAddress", "127.0.0.1");
    type<QLineEdit>("txtTCPIPPort", QString::number(server.serverPort()));
    type<QPlainTextEdit>("txtTCPIPCommand", "hello");
    clickButton("cmdTest");
    ASSERT_TRUE(waitFor([&] { return trial().contains("Sent 5 bytes: hello (68 65 6C 6C 6F)"); }));
    EXPECT_EQ(find<QPushButton>(*form, "cmdTest")->text(), "S&top");
    clickButton("cmdTest");
    EXPECT_EQ(trial().last(), "Stopped.");
    server.close();
    clickButton("cmdTest");
    EXPECT_TRUE(waitFor([this] { return trial().last().contains("refused", Qt::CaseInsensitive); }))
        << trial().last().toStdString();
    EXPECT_FALSE(machine.exists("C:\\DATA\\Commands"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}
