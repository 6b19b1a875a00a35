// The list of commands: its columns, the editor from it, and sending a command by the server that it holds.
#include "network/forms/FormTest.h"
#include "network/forms/frmCommandDetails.h"
#include "network/forms/frmCommandSetup.h"
#include "support/PseudoTerminal.h"

#include <QHostAddress>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class CommandSetup : public FormTest {
protected:
    CommandSetup() {
        setup.dataLocation = settings.DataLocation;
        setup.remote = {QHostAddress::LocalHost, 0, [this] { return access; }};
    }
    void open() {
        form = std::make_unique<frmCommandSetup>(setup, CommandUseSource(), nullptr);
        show(*form);
        grid = find<QTableView>(*form, "grdCommands");
    }
    QStringList rows() const {
        QStringList all;
        for (int row = 0; row < grid->model()->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < 4; ++column)
                cells += grid->model()->index(row, column).data().toString();
            all += cells.join('|');
        }
        return all;
    }
    // Does something with the editor that the next action opens.
    static void inEditor(const std::function<void(QWidget&)>& act) {
        QTimer::singleShot(0, [act] {
            QWidget* editor = QApplication::activeModalWidget();
            ASSERT_TRUE(qobject_cast<frmCommandDetails*>(editor));
            act(*editor);
        });
    }

    CommandFolder folder{"C:\\DATA"};
    RemoteAccess access;
    LinkMeshServerSetup setup;
    std::unique_ptr<frmCommandSetup> form;
    QTableView* grid = nullptr;
};

} // namespace

TEST_F(CommandSetup, ListsCommandsAndOpensTheEditorOnThem) {
    open();
    EXPECT_EQ(form->windowTitle(), "Command Setup");
    EXPECT_FALSE(find<QPushButton>(*form, "cmdRunNow")->isEnabled());
    inEditor([](QWidget& editor) {
        QTest::keyClicks(find<QLineEdit>(editor, "txtCommandFile"), "Door");
        QTest::keyClicks(find<QPlainTextEdit>(editor, "txtSerialCommand"), "x");
        QTest::mouseClick(find<QPushButton>(editor, "cmdOK"), Qt::LeftButton);
    });
    clickButton("cmdAddCommand");
    EXPECT_EQ(rows(), QStringList{"Serial Command|Door|No|No"});
    EXPECT_TRUE(find<QPushButton>(*form, "cmdRunNow")->isEnabled());

    CommandRecord external;
    external.Type = ExternalCommand;
    ASSERT_TRUE(folder.save("Alarm", external));
    machine.write("C:\\DATA\\Commands\\Bad.TCD", "short");
    inEditor([](QWidget& editor) {
        EXPECT_EQ(find<QLineEdit>(editor, "txtCommandFile")->text(), "Door");
        QTest::mouseClick(find<QAbstractButton>(editor, "chkLeaveOpen"), Qt::LeftButton, {}, {8, 8});
        QTest::mouseClick(find<QPushButton>(editor, "cmdOK"), Qt::LeftButton);
    });
    clickCell(*grid, 0, 1);
    const QModelIndex cell = grid->model()->index(0, 1);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cell).center());
    EXPECT_EQ(rows(), (QStringList{"External Command|Alarm|n/a|n/a", "Not readable|Bad|n/a|n/a",
                                   "Serial Command|Door|Yes|No"}));
    // The row that was edited is still selected.
    prompts.answers = {platform::Answer::Yes};
    inEditor(
        [](QWidget& editor) { QTest::mouseClick(find<QPushButton>(editor, "cmdDelete"), Qt::LeftButton); });
    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_FALSE(folder.has("Door"));
    EXPECT_EQ(rows().size(), 2);
}

TEST_F(CommandSetup, SendsTheSelectedCommandAndSaysHowItWent) {
    PseudoTerminal device;
    machine.link("com1", device.path());
    CommandRecord command;
    command.Text = "go";
    ASSERT_TRUE(folder.save("Go", command));
    command.SerialPort = 3;
    ASSERT_TRUE(folder.save("Gone", command));
    open();
    const auto outcome = [this] { return find<QLabel>(*form, "lblOutcome")->text(); };
    clickCell(*grid, 0, 1);
    clickButton("cmdRunNow");
    EXPECT_TRUE(waitFor([&] { return device.received == "go"; }));
    EXPECT_TRUE(waitFor([&] { return outcome().endsWith("Command \"Go\": 2 bytes sent to COM1"); }))
        << outcome().toStdString();
    // An event of somebody else is not an outcome of this command.
    const QString before = outcome();
    QTcpSocket stranger;
    access = {RemoteAccess::Who::Listed, {"10.0.0.0/8"}};
    stranger.connectToHost(QHostAddress::LocalHost, form->serverForm().server().remote().port());
    EXPECT_TRUE(waitFor([&] {
        const auto* events = find<QTableView>(form->serverForm(), "lstEvents")->model();
        return events->index(events->rowCount() - 1, 1).data().toString().endsWith("may not connect");
    }));
    EXPECT_EQ(outcome(), before);
    clickCell(*grid, 1, 1);
    clickButton("cmdRunNow");
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.contains("opening the Serial Port for Command: Gone"));

    // The server lives as long as the form.
    const quint16 port = form->serverForm().server().remote().port();
    EXPECT_GT(port, 0);
    clickButton("cmdServer");
    EXPECT_TRUE(form->serverForm().isVisible());
    form->activateWindow();
    clickButton("cmdClose");
    EXPECT_FALSE(form->isVisible());
    form.reset();
    QTcpServer again;
    EXPECT_TRUE(again.listen(QHostAddress::LocalHost, port));
}
