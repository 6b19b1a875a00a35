// The grid with mouse and keyboard: ranges in both directions, lists and boxes in the cell, Enter, Escape and
// focus, rows through the clipboard, the filter.
#include "hardware/forms/HardwareForm.h"

#include "support/QtPrinters.h"

#include <QClipboard>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QByteArray controller =
    "[Hardware1]\r\nCardType=3\r\nBaseAddress=2\r\nLineType1=0\r\nDescription1=Button\r\n"
    "LineType2=0\r\nAction2=999\r\nAction2Data1=5\r\nLineType3=0\r\nAction3=64\r\n"
    "Action3Data2=7\r\n[Hardware2]\r\nCardType=5\r\nAction4=1\r\nAction4Data1=3\r\n";

} // namespace

TEST(HardwareGrid, ABlockIsNumberedInTheDirectionOfItsSelection) {
    HardwareForm hw("[Hardware1]\r\nCardType=4\r\nBaseAddress=0\r\n");
    hw.driver.addFixed(0, 40, 8);
    hw.open();
    hw.drag(1, 3, 12, ColumnAction);
    EXPECT_EQ(hw.grid(1)->selectedLines(), (LineNumbers{3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    hw.choose(1, "IC Trigger");
    EXPECT_EQ(hw.firstData(1, 2, 13), (QList<qint32>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0}));
    EXPECT_EQ(hw.cell(1, 12, ColumnDescription), "IC Trigger 10");
    EXPECT_EQ(hw.cell(1, 12, ColumnInfo1), "Instant Cart 10");

    hw.drag(1, 24, 20, ColumnAction);
    hw.choose(1, "Player Control");
    EXPECT_EQ(hw.firstData(1, 20, 24), (QList<qint32>{5, 4, 3, 2, 1}));
    // Sets the second parameter of all of them, by Shift and a click.
    hw.click(1, 20, ColumnInfo2);
    hw.key(Qt::Key_Escape);
    hw.click(1, 22, ColumnInfo2, Qt::ShiftModifier);
    EXPECT_EQ(hw.list(1)->currentText(), "Play");
    hw.choose(1, "Inhibit Logging");
    EXPECT_EQ(hw.cards[1].Lines[22].ActionData[1], 240);
    EXPECT_EQ(hw.cards[1].Lines[23].ActionData[1], 0);
    EXPECT_EQ(hw.cell(1, 20, ColumnDescription), "Inhibit Logging Player 5");
    // The card determines the types.
    hw.click(1, 20, ColumnType);
    EXPECT_EQ(hw.cell(1, 20, ColumnType), "Input");
}

TEST(HardwareGrid, KeysAloneSelectChooseAndLeave) {
    HardwareForm hw(controller);
    hw.open();
    hw.click(1, 4, ColumnType);
    EXPECT_EQ(hw.cell(1, 4, ColumnType), "Input");
    hw.key(Qt::Key_Space);
    EXPECT_EQ(hw.cell(1, 4, ColumnType), "Output");
    for (int i = 0; i < 3; ++i)
        hw.key(Qt::Key_Right);
    hw.key(Qt::Key_Down, Qt::ShiftModifier);
    hw.key(Qt::Key_Right, Qt::ShiftModifier);
    hw.key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(hw.grid(1)->selectedLines(), (LineNumbers{4, 5, 6}));
    hw.key(Qt::Key_F2);
    ASSERT_TRUE(hw.list(1)->isVisible());
    hw.key(Qt::Key_Down);
    EXPECT_EQ(hw.cell(1, 5, ColumnAction), "IC Display");
    hw.key(Qt::Key_Down);
    EXPECT_EQ(hw.cell(1, 5, ColumnAction), "Player Display");
    EXPECT_EQ(hw.firstData(1, 4, 6), (QList<qint32>{1, 2, 3}));
    hw.key(Qt::Key_Return);
    EXPECT_FALSE(hw.list(1)->isVisible());
    EXPECT_TRUE(hw.grid(1)->hasFocus());
    // A letter opens the list and goes to its entry; Escape restores everything.
    QTest::keyClicks(hw.grid(1), "s");
    QApplication::processEvents();
    EXPECT_EQ(hw.cell(1, 6, ColumnAction), "Station Control");
    hw.key(Qt::Key_Escape);
    EXPECT_TRUE(hw.form->isVisible());
    EXPECT_FALSE(hw.list(1)->isVisible());
    EXPECT_EQ(hw.cell(1, 6, ColumnAction), "Player Display");
    EXPECT_EQ(hw.firstData(1, 4, 6), (QList<qint32>{1, 2, 3}));
    hw.key(Qt::Key_Delete);
    EXPECT_EQ(hw.firstData(1, 4, 6), (QList<qint32>{0, 0, 0}));
    EXPECT_EQ(hw.cell(1, 4, ColumnDescription), "");
    // Moving past "Not in use" on the way to another action loses no parameter.
    hw.line(6).Action = 4;
    hw.line(6).ActionData = {6, 3, 0, 0};
    hw.click(1, 6, ColumnAction);
    hw.key(Qt::Key_Home);
    EXPECT_EQ(hw.line(6).ActionData[0], 0);
    hw.key(Qt::Key_Down);
    EXPECT_EQ(hw.line(6).ActionData, (std::array<qint32, 4>{6, 3, 0, 0}));
    hw.key(Qt::Key_Return);
}

TEST(HardwareGrid, WhatIsNotKnownStaysUntilItIsChosenAnew) {
    HardwareForm hw(controller);
    hw.open();
    EXPECT_EQ(hw.cell(1, 2, ColumnAction), "Not in use");
    EXPECT_EQ(hw.cell(1, 2, ColumnInfo1), "");
    hw.click(1, 2, ColumnAction);
    EXPECT_EQ(hw.list(1)->currentText(), "Not in use");
    hw.key(Qt::Key_Return);
    EXPECT_EQ(hw.line(2).Action, 999);
    hw.click(1, 2, ColumnInfo1);
    EXPECT_TRUE(hw.list(1)->isVisible());
    EXPECT_EQ(hw.list(1)->count(), 0);
    hw.key(Qt::Key_Down);
    hw.key(Qt::Key_Right);
    EXPECT_EQ(hw.grid(1)->currentIndex().column(), ColumnInfo1);
    hw.key(Qt::Key_Escape);
    EXPECT_TRUE(hw.form->isVisible());
    hw.click(1, 2, ColumnInfo1);
    hw.type(1)->setFocus();
    EXPECT_TRUE(hw.list(1)->isHidden());
    EXPECT_EQ(hw.line(2).ActionData[0], 5);
    hw.press("cmdApply");
    EXPECT_TRUE(hw.ini().contains("Action2=999\r\nAction2Data1=5\r\n"));
    hw.click(1, 2, ColumnAction);
    hw.key(Qt::Key_Space);
    EXPECT_EQ(hw.line(2).Action, 0);
    hw.key(Qt::Key_Return);
}

TEST(HardwareGrid, TextIsStoredByEnterAndFocusAndDroppedByEscape) {
    HardwareForm hw(controller);
    hw.open();
    auto* box = hw.on<QLineEdit>(1, "txtDescription");
    hw.line(1).Description = "A description of many letters";
    hw.click(1, 1, ColumnDescription);
    ASSERT_TRUE(box->hasFocus());
    EXPECT_EQ(box->selectedText(), "A description of man");
    box->setText("Red button");
    hw.key(Qt::Key_Return);
    EXPECT_FALSE(box->isVisible());
    EXPECT_TRUE(hw.grid(1)->hasFocus());
    EXPECT_EQ(hw.cell(1, 1, ColumnDescription), "Red button");
    EXPECT_TRUE(hw.form->isVisible());
    QTest::keyClicks(hw.grid(1), "x");
    EXPECT_EQ(box->text(), "x");
    hw.key(Qt::Key_Escape);
    EXPECT_FALSE(box->isVisible());
    EXPECT_TRUE(hw.form->isVisible());
    EXPECT_EQ(hw.line(1).Description, "Red button");
    // Its own menu leaves it open.
    hw.click(1, 1, ColumnDescription);
    QContextMenuEvent asks(QContextMenuEvent::Mouse, QPoint(4, 4), box->mapToGlobal(QPoint(4, 4)));
    QApplication::sendEvent(box, &asks);
    ASSERT_TRUE(QApplication::activePopupWidget());
    EXPECT_TRUE(box->isVisible());
    QApplication::activePopupWidget()->close();
    // Leaving the box stores it, for every line of the range; a click elsewhere then edits that cell.
    hw.drag(1, 6, 5, ColumnDescription);
    box->setText("Lamp");
    hw.click(1, 1, ColumnLogic);
    EXPECT_EQ(hw.line(5).Description, "Lamp");
    EXPECT_EQ(hw.line(6).Description, "Lamp");
    EXPECT_EQ(hw.cell(1, 1, ColumnLogic), "Y");
    hw.drag(1, 1, 2, ColumnLogic);
    EXPECT_EQ(hw.line(1).ActiveLow, 0);
    EXPECT_EQ(hw.line(2).ActiveLow, -1);

    auto* number = hw.on<QLineEdit>(1, "txtInfo");
    EXPECT_EQ(hw.cell(1, 3, ColumnDescription), "Play Cart 7");
    hw.click(1, 3, ColumnInfo2);
    EXPECT_EQ(number->selectedText(), "7");
    QTest::keyClicks(number, "1234 extra");
    QTest::keyClick(number, Qt::Key_Tab);
    EXPECT_EQ(hw.line(3).ActionData[1], 1234);
    EXPECT_EQ(hw.cell(1, 3, ColumnDescription), "Play Cart 1234");
    // By its access key, Apply takes what is still being typed.
    hw.click(1, 3, ColumnInfo2);
    QTest::keyClicks(number, "55");
    hw.form->findChild<QPushButton*>("cmdApply")->click();
    EXPECT_TRUE(hw.ini().contains("Action3Data2=55"));
}

// Text typed in a cell survives a change of tab, by mouse
// or by key, and any way of leaving the form.
class TypedTextAndTabs : public testing::TestWithParam<std::tuple<bool, const char*, const char*>> {};

TEST_P(TypedTextAndTabs, SurvivesTheChange) {
    const auto& [byMouse, editor, button] = GetParam();
    const bool number = editor == std::string("txtInfo");
    HardwareForm hw(controller);
    hw.open();
    hw.click(1, 3, number ? ColumnInfo2 : ColumnDescription);
    auto* box = hw.on<QLineEdit>(1, editor);
    ASSERT_TRUE(box->hasFocus());
    QTest::keyClicks(box, "4321");
    if (byMouse)
        hw.clickTab(2);
    else
        QTest::keyClick(box, Qt::Key_2, Qt::AltModifier);
    ASSERT_EQ(hw.form->findChild<QTabWidget*>("tbsSettings")->currentIndex(), 1);
    EXPECT_EQ(hw.changes(), "Not applied yet: card 1");
    hw.prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    hw.press(button);
    const QByteArray stored = number ? "Action3Data2=4321" : "Description3=4321";
    if (button == std::string("cmdCancel")) {
        // Asks, and No loses nothing.
        ASSERT_EQ(hw.prompts.asked.size(), 1);
        ASSERT_TRUE(hw.form->isVisible());
        hw.clickTab(1);
        EXPECT_TRUE(box->isHidden());
        EXPECT_TRUE(hw.cell(1, 3, ColumnDescription).contains("4321"));
        hw.press(button);
        EXPECT_FALSE(hw.form->isVisible());
        EXPECT_EQ(hw.ini(), controller);
    } else {
        EXPECT_TRUE(hw.ini().contains(stored)) << hw.ini().toStdString();
        EXPECT_EQ(hw.changes(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(All, TypedTextAndTabs,
                         testing::Combine(testing::Bool(), testing::Values("txtDescription", "txtInfo"),
                                          testing::Values("cmdOK", "cmdApply", "cmdCancel")),
                         [](const auto& each) {
                             return std::string(std::get<0>(each.param) ? "Click" : "Alt2") +
                                    std::get<1>(each.param) + std::get<2>(each.param);
                         });

TEST(HardwareGrid, AListIsGoneAfterATabChangeAndItsChoiceStands) {
    HardwareForm hw(controller);
    hw.open();
    hw.click(1, 5, ColumnAction);
    hw.key(Qt::Key_Down);
    hw.showCard(2);
    hw.showCard(1);
    EXPECT_TRUE(hw.list(1)->isHidden());
    EXPECT_EQ(hw.line(5).Action, 2);
    // Tab leaves the list, and only that.
    hw.line(5).Description = "Mine";
    hw.click(1, 5, ColumnAction);
    hw.key(Qt::Key_Tab);
    EXPECT_TRUE(hw.list(1)->isHidden());
    EXPECT_TRUE(hw.grid(1)->hasFocus());
    EXPECT_EQ(hw.line(5).Description, "Mine");
    // Modifier keys choose nothing either.
    hw.click(1, 5, ColumnAction);
    for (const int key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_CapsLock})
        hw.key(key);
    hw.key(Qt::Key_2, Qt::AltModifier);
    EXPECT_EQ(hw.line(5).Description, "Mine");
    hw.key(Qt::Key_F4);
    EXPECT_TRUE(hw.list(1)->isHidden());
    EXPECT_EQ(hw.line(5).Description, "Mine");
    // Down and Enter, faster than events are handled.
    hw.click(1, 5, ColumnAction);
    QTest::keyClick(hw.list(1)->view(), Qt::Key_Down);
    QTest::keyClick(hw.list(1)->view(), Qt::Key_Return);
    EXPECT_EQ(hw.line(5).Action, 4);
}

TEST(HardwareGrid, AnEditorStaysOnItsCellAndStoresForItsLines) {
    HardwareForm hw("[Hardware1]\r\nCardType=4\r\nBaseAddress=0\r\nDescription40=End\r\n");
    hw.driver.addFixed(0, 40, 8);
    hw.open();
    LineGrid* grid = hw.grid(1);
    auto* box = hw.on<QLineEdit>(1, "txtDescription");
    hw.click(1, 3, ColumnDescription);
    hw.form->resize(hw.form->width() + 200, hw.form->height());
    QApplication::processEvents();
    EXPECT_EQ(box->geometry(), grid->visualRect(grid->model()->index(2, ColumnDescription)));
    QTest::keyClicks(box, "Three");
    // It also does beside a column that becomes wider.
    grid->setColumnWidth(ColumnType, grid->columnWidth(ColumnType) + 30);
    EXPECT_EQ(box->geometry(), grid->visualRect(grid->model()->index(2, ColumnDescription)));
    // The filter would move another line under the box.
    hw.on<QCheckBox>(1, "chkOnlyInUse")->click();
    EXPECT_TRUE(box->isHidden());
    EXPECT_EQ(hw.line(3).Description, "Three");
    EXPECT_FALSE(grid->isRowHidden(2));
    // Another device has other lines.
    hw.click(1, 3, ColumnDescription);
    QTest::keyClicks(box, "3");
    hw.type(1)->setCurrentIndex(0);
    EXPECT_EQ(hw.line(3).Description, "3");
}

TEST(HardwareGrid, DescriptionsTakeWhatTheFileCanHold) {
    HardwareForm hw(controller);
    hw.open();
    auto* box = hw.on<QLineEdit>(1, "txtDescription");
    hw.click(1, 1, ColumnDescription);
    QApplication::clipboard()->setText(QString::fromUtf8("Łódź\tB") + QString(300, u'x'));
    box->selectAll();
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(box->text(), QString::fromUtf8("ód B") + QString(248, u'x'));
    // The rest keeps the cursor in place.
    box->setCursorPosition(2);
    QApplication::clipboard()->setText(QString::fromUtf8("ŁaŁ"));
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClicks(box, "b");
    hw.key(Qt::Key_Return);
    EXPECT_EQ(hw.line(1).Description, QString::fromUtf8("ódab B") + QString(248, u'x'));
    hw.press("cmdApply");
    EXPECT_TRUE(hw.prompts.asked.isEmpty());
    EXPECT_TRUE(hw.ini().contains("Description1=\xF3"
                                  "dab Bxxx"));
}

TEST(HardwareGrid, UndoTakesBackOneChangeAfterTheOther) {
    HardwareForm hw(controller);
    hw.open();
    const HardwareLine first = hw.line(1);
    const HardwareLine third = hw.line(3);
    hw.drag(1, 1, 3, ColumnLine);
    hw.key(Qt::Key_Delete);
    EXPECT_EQ(hw.line(3).Action, 0);
    QApplication::clipboard()->setText("Type\tAction\tInfo 1\nInput\tIC Trigger\t7\nInput\tIC Trigger\t8\n");
    // From the top of the selection on.
    hw.drag(1, 6, 5, ColumnLine);
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(hw.line(4).Action, 0);
    EXPECT_EQ(hw.firstData(1, 5, 7), (QList<qint32>{7, 8, 0}));
    hw.click(1, 5, ColumnInfo1);
    hw.key(Qt::Key_Up);
    hw.key(Qt::Key_Up);
    hw.key(Qt::Key_Return);
    EXPECT_EQ(hw.line(5).ActionData[0], 5);
    // Leaving a list without a choice is not a change.
    hw.click(1, 6, ColumnInfo1);
    hw.key(Qt::Key_Return);
    hw.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(hw.line(5).ActionData[0], 7);
    EXPECT_EQ(hw.cell(1, 5, ColumnInfo1), "Instant Cart 7");
    hw.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(hw.line(5).Action, 0);
    EXPECT_TRUE(hw.line(5).isOutput());
    hw.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(hw.line(1).isStoredAs(first));
    EXPECT_TRUE(hw.line(3).isStoredAs(third));
    EXPECT_EQ(hw.changes(), "");
    hw.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(hw.changes(), "");
    // Another type of card has other lines: earlier changes stay.
    hw.click(1, 4, ColumnLogic);
    hw.type(1)->setCurrentText("Joystick Port");
    hw.grid(1)->setFocus();
    hw.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(hw.line(4).ActiveLow, -1);
}

TEST(HardwareGrid, InfoColumnsAreThereWhenTheyAreUsed) {
    HardwareForm hw("[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\nLineType1=0\r\nDescription1=A\r\n");
    hw.open();
    const auto shown = [&] {
        QString columns;
        for (int column = 0; column < LineColumnCount; ++column)
            if (!hw.grid(1)->isColumnHidden(column))
                columns += QString::number(column);
        return columns;
    };
    EXPECT_EQ(shown(), "01234");
    hw.click(1, 1, ColumnAction);
    hw.choose(1, "IC Trigger");
    EXPECT_EQ(shown(), "012345");
    hw.click(1, 1, ColumnAction);
    hw.choose(1, "Cart Control");
    EXPECT_EQ(shown(), "0123456");
    // The current cell's column never disappears.
    hw.click(1, 1, ColumnInfo1);
    hw.key(Qt::Key_Return);
    hw.key(Qt::Key_Delete);
    EXPECT_EQ(shown(), "01234");
    hw.key(Qt::Key_F2);
    EXPECT_TRUE(hw.list(1)->isVisible());
    EXPECT_EQ(hw.list(1)->count(), 8);
    hw.key(Qt::Key_Escape);
}

TEST(HardwareGrid, PortCardsChangeTypesByEights) {
    HardwareForm hw("[Hardware1]\r\nCardType=1\r\nBaseAddress=768\r\n[Hardware2]\r\nCardType=9\r\n");
    hw.open();
    EXPECT_EQ(hw.type(1)->currentIndex(), -1);
    EXPECT_EQ(hw.grid(1)->model()->rowCount(), 24);
    EXPECT_EQ(hw.address(1)->text(), "300");
    EXPECT_TRUE(hw.address(1)->isEnabled());
    hw.click(1, 10, ColumnType);
    for (const int n : {8, 17})
        EXPECT_TRUE(hw.line(n).isOutput());
    for (const int n : {9, 16})
        EXPECT_FALSE(hw.line(n).isOutput());
    hw.press("cmdApply");
    EXPECT_EQ(hw.prompts.texts(), QStringList{"This card is not currently supported"});
    EXPECT_EQ(hw.grid(2)->model()->rowCount(), 0);
}

TEST(HardwareGrid, RowsGoThroughTheClipboardToAnotherCardAndBack) {
    HardwareForm hw(controller);
    hw.open();
    hw.line(1) = {0, 0, -1, 0, {}, "\"Go\" button", 255, 3, {7, 9, 0, 12}};
    hw.line(4) = {0, 0, 0, 0, {}, "", 0, 96, {255, 0, 0, 0}};
    hw.grid(1)->setFocus();
    hw.drag(1, 1, 4, ColumnLine);
    hw.key(Qt::Key_C, Qt::ControlModifier);
    const QString rows = QApplication::clipboard()->text();
    EXPECT_TRUE(rows.startsWith("Line\tType\tL\tDescription\tAction\tInfo 1\tInfo 2\t"));
    EXPECT_TRUE(rows.contains("\n4\tInput\t\t\tK-OVA - Set Mode\tUse Log Mode\t\t96\t255\t"));
    hw.showCard(2);
    hw.click(2, 1, ColumnLine);
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(hw.prompts.asked.isEmpty());
    for (int n = 1; n <= 3; ++n)
        EXPECT_TRUE(hw.cards[2].Lines[n].isStoredAs(hw.line(n))) << n;
    EXPECT_EQ(hw.cell(2, 4, ColumnDescription), "K-OVA - Use Log Mode");
    EXPECT_TRUE(hw.changes().contains("2"));

    // The same rows with words changed in a spreadsheet: the words count.
    QApplication::clipboard()->setText(QString(rows).replace("Use Log Mode", "Live Assist"));
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(hw.cards[2].Lines[4].ActionData[0], 2);
    // Words alone, in columns of another order.
    QApplication::clipboard()->setText("Action\tType\tInfo 1\r\nK-OVA - Other\tInput\tK-OVA SegEdit\r\n");
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(hw.cards[2].Lines[1].Action, 5);
    EXPECT_EQ(hw.cards[2].Lines[1].ActionData[0], 2);

    const HardwareLine before = hw.cards[2].Lines[1];
    const auto refused = [&](const char* text, const char* why) {
        QApplication::clipboard()->setText(text);
        hw.prompts.forget();
        hw.key(Qt::Key_V, Qt::ControlModifier);
        ASSERT_EQ(hw.prompts.asked.size(), 1) << text;
        EXPECT_TRUE(hw.prompts.texts().front().contains(why)) << hw.prompts.texts().front().toStdString();
        EXPECT_TRUE(hw.cards[2].Lines[1].isStoredAs(before));
    };
    refused("", "There are no lines to paste");
    refused("1\tInput\t\t\tNot in use\n2\tInput\t\t\tIC Display\n",
            "Row 2 cannot be pasted. Action is \"IC Display\"");
    refused("1\tInput\t\t\tIC Trigger\tInstant Cart X\n", "Info 1 is \"Instant Cart X\"");
    refused("1\tRelay\n", "Type is \"Relay\"");
    refused("1\tOutput\t\tLamp\tIC Display\t3\n",
            "Nothing was pasted. Line 1 of this card is an input and stays one.");
    QApplication::clipboard()->setText(QString("1\tInput\t\tMany\n").repeated(6));
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(hw.prompts.texts().back(), "Only the first 4 of 6 lines were pasted: the card has no more.");
    EXPECT_EQ(hw.cell(2, 4, ColumnDescription), "Many");
}

TEST(HardwareGrid, ARightClickKeepsASelectionItLiesInAndMovesElsewhere) {
    HardwareForm hw(controller);
    hw.open();
    hw.drag(1, 2, 4, ColumnLine);
    for (const int line : {3, 6}) {
        QTest::mouseClick(hw.grid(1)->viewport(), Qt::RightButton, {}, hw.at(1, line, ColumnLine));
        EXPECT_EQ(hw.grid(1)->selectedLines(), line == 3 ? (LineNumbers{2, 3, 4}) : LineNumbers{6});
    }
    EXPECT_TRUE(hw.list(1)->isHidden());
}

TEST(HardwareGrid, HiddenLinesAreLeftAlone) {
    HardwareForm hw(controller);
    hw.open();
    QTest::mouseClick(hw.on<QCheckBox>(1, "chkOnlyInUse"), Qt::LeftButton, {}, QPoint(8, 12));
    EXPECT_TRUE(hw.grid(1)->isRowHidden(3));
    hw.line(8).Description = "Last";
    hw.on<QCheckBox>(1, "chkOnlyInUse")->setChecked(false);
    hw.on<QCheckBox>(1, "chkOnlyInUse")->setChecked(true);
    hw.drag(1, 8, 2, ColumnLogic);
    EXPECT_EQ(hw.grid(1)->selectedLines(), (LineNumbers{8, 3, 2}));
    for (int n = 1; n <= 8; ++n)
        EXPECT_EQ(hw.line(n).ActiveLow, n == 2 || n == 3 || n == 8 ? -1 : 0) << n;
}
