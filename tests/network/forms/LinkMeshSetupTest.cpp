// The workstation form with a real mouse and keyboard, while other workstations use the same list.
#include "network/forms/frmLinkMeshSetup.h"

#include "network/StationList.h"
#include "network/WorkstationSetup.h"
#include "network/forms/FormTest.h"
#include "network/forms/TerminalModel.h"
#include "platform/Machine.h"
#include "platform/profile/ProfileFile.h"
#include "support/FixedClock.h"

#include <QClipboard>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;
using Column = TerminalModel::Column;

namespace {

class LinkMeshSetup : public FormTest {
protected:
    LinkMeshSetup() {
        station.put(1, "Studio 1", "STUDIO1", clock.time.addSecs(-200));
        station.put(2, "News", platform::ComputerName());
    }
    void open() {
        form = std::make_unique<frmLinkMeshSetup>(station.terminals, settings);
        show(*form);
        grid = find<QTableView>(*form, "grdTerminals");
    }
    QString cell(int id, int column) const { return grid->model()->index(id - 1, column).data().toString(); }
    QStringList column(int number) const {
        QStringList texts;
        for (int id = 1; id <= grid->model()->rowCount(); ++id)
            texts += cell(id, number);
        return texts;
    }
    void click(int id, int column) { clickCell(*grid, id - 1, column); }
    QString notice() const { return find<QLabel>(*form, "lblNotice")->text(); }

    FixedClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10, 30))};
    StationList station{settings};
    std::unique_ptr<frmLinkMeshSetup> form;
    QTableView* grid = nullptr;
};

} // namespace

TEST_F(LinkMeshSetup, ChoosesByMouseAndKeyAndSaysWhomItTakesTheNumberFrom) {
    settings.LinkMeshId = 2;
    open();
    EXPECT_EQ(form->windowTitle(), "LinkMesh Setup");
    QStringList headings;
    for (int i = 0; i < 5; ++i)
        headings += grid->model()->headerData(i, Qt::Horizontal).toString();
    EXPECT_EQ(headings, (QStringList{"No", "?", "Tolvex ID Name", "Network Name", "Last Used:"}));
    EXPECT_EQ(column(Column::Marker), (QStringList{"", ">", "", ""}));
    EXPECT_EQ(column(Column::UsedBy),
              (QStringList{"STUDIO1, 3 minutes ago", "this computer", "free", "free"}));
    EXPECT_TRUE(cell(1, Column::LastUsed).endsWith(" 22:07:10"));
    EXPECT_EQ(cell(2, Column::LastUsed), QString());

    click(1, Column::Marker);
    EXPECT_EQ(column(Column::Marker), (QStringList{">", "", "", ""}));
    EXPECT_TRUE(notice().contains("OK takes it over")) << notice().toStdString();
    click(3, Column::NetworkName);
    EXPECT_EQ(column(Column::Marker), (QStringList{">", "", "", ""}));
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_EQ(column(Column::Marker), (QStringList{"", "", ">", ""}));
    EXPECT_EQ(notice(), "This workstation uses number 3.");
    click(1, Column::Marker);
    clickButton("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(settings.LinkMeshId, 1);
    EXPECT_EQ(platform::ProfileText("LinkMesh", "LinkMeshId", {}, "TOLVEX.INI"), QString("1"));
    EXPECT_EQ(station.lines(), (QStringList{"Studio 1=" + platform::ComputerName(), "News=", "=", "="}));
}

TEST_F(LinkMeshSetup, NamesGoIntoTheirCellsAsTheyAreTyped) {
    open();
    auto* box = find<QLineEdit>(*form, "txtName");
    click(1, Column::IdName);
    ASSERT_TRUE(box->isVisible() && box->hasFocus());
    EXPECT_EQ(box->selectedText(), "Studio 1");
    QApplication::clipboard()->setText(QString::fromUtf8("Caf\u00e9 \u4e2d1"));
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(cell(1, Column::IdName), QString::fromUtf8("Caf\u00e9 1"));
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_FALSE(box->isVisible());
    EXPECT_TRUE(form->isVisible());
    click(3, Column::IdName);
    QTest::keyClicks(box, QString(40, 'x'));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_FALSE(box->isVisible());
    EXPECT_EQ(cell(3, Column::IdName), QString(30, 'x'));
    // A cell that is opened and left, and one that a key opens.
    click(2, Column::IdName);
    click(4, Column::Marker);
    EXPECT_FALSE(box->isVisible());
    QTest::keyClicks(grid, "S");
    QTest::keyClicks(box, "pare");
    EXPECT_EQ(cell(4, Column::IdName), "Spare");

    // What others change meanwhile is shown, and a cell that was left alone takes their name.
    station.put(2, "Newsroom", "NEWS2");
    EXPECT_TRUE(waitFor([&] { return cell(2, Column::IdName) == "Newsroom"; }));
    EXPECT_EQ(cell(1, Column::IdName), QString::fromUtf8("Caf\u00e9 1"));
    station.put(2, "Newsroom B", "NEWS2");
    clickButton("cmdOK");
    EXPECT_EQ(station.lines(), (QStringList{QString::fromUtf8("Caf\u00e9 1=STUDIO1"), "Newsroom B=NEWS2",
                                            QString(30, 'x') + '=', "Spare=" + platform::ComputerName()}));
}

TEST_F(LinkMeshSetup, KeepsTheRowsWhileTheListIsAwayAndAsksOnceWhetherToMakeIt) {
    settings.LinkMeshId = 2;
    open();
    const QStringList rows = column(Column::UsedBy);
    const QString list = machine.host("C:\\DATA\\Terminal.Lst");
    ASSERT_TRUE(QFile::rename(list, list + ".away"));
    prompts.answers = {Answer::No};
    clickButton("cmdOK");
    EXPECT_EQ(prompts.texts().size(), 2); // the question, and that nothing was stored
    EXPECT_TRUE(prompts.texts().first().startsWith("The Terminal List has not been found."));
    EXPECT_EQ(column(Column::UsedBy), rows);
    EXPECT_TRUE(notice().contains("cannot be read now")) << notice().toStdString();

    ASSERT_TRUE(QFile::rename(list + ".away", list));
    EXPECT_TRUE(waitFor([&] { return notice() == "This workstation uses number 2."; }));
    EXPECT_EQ(column(Column::UsedBy), rows);

    ASSERT_TRUE(QFile::remove(list));
    prompts.forget();
    prompts.answers = {Answer::Yes};
    clickButton("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(station.lines()[1], "=" + platform::ComputerName());
}

TEST_F(LinkMeshSetup, StaysUntilANumberIsChosenAndTellsWhoWasFaster) {
    open();
    clickButton("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(prompts.texts(),
              QStringList{"You must choose which LinkMesh ID you will use for this workstation"});
    EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Exclamation);
    click(3, Column::Marker);
    station.put(3, "Spare", "QUICKER");
    clickButton("cmdOK");
    EXPECT_TRUE(form->isVisible());
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_TRUE(prompts.asked[1].text.startsWith("QUICKER has taken number 3"));
    EXPECT_EQ(cell(3, Column::UsedBy), "QUICKER");

    // Escape asks before typed names are lost, and stores nothing.
    const QStringList before = station.lines();
    click(4, Column::IdName);
    QTest::keyClicks(find<QLineEdit>(*form, "txtName"), "Lost");
    QTest::keyClick(find<QLineEdit>(*form, "txtName"), Qt::Key_Return);
    prompts.answers = {Answer::No, Answer::Yes};
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    clickButton("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(station.lines(), before);
    EXPECT_EQ(settings.LinkMeshId, 0);
    prompts.forget();
    open();
    click(4, Column::Marker);
    clickButton("cmdCancel");
    EXPECT_TRUE(prompts.asked.isEmpty() && !form->isVisible());
}
