// The grid under mouse and keyboard: ranges in both directions, lists and boxes in the cell, Enter, Escape
// and focus, rows through the clipboard, the filter.
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

HardwareLine& line(int n) {
    return HardwareCards()[1].Lines[n];
}

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
    // The second parameter for all of them, by Shift and a click.
    hw.click(1, 20, ColumnInfo2);
    hw.key(Qt::Key_Escape);
    hw.click(1, 22, ColumnInfo2, Qt::ShiftModifier);
    EXPECT_EQ(hw.list(1)->currentText(), "Play");
    hw.choose(1, "Inhibit Logging");
    EXPECT_EQ(HardwareCards()[1].Lines[22].ActionData[1], 240);
    EXPECT_EQ(HardwareCards()[1].Lines[23].ActionData[1], 0);
    EXPECT_EQ(hw.cell(1, 20, ColumnDescription), "Inhibit Logging Player 5");
    // Types belong to the card.
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
    // A letter opens the list and goes to its entry; Escape puts all of it back.
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
    // Going past "Not in use" on the way to another action costs no parameter.
    line(6).Action = 4;
    line(6).ActionData = {6, 3, 0, 0};
    hw.click(1, 6, ColumnAction);
    hw.key(Qt::Key_Home);
    EXPECT_EQ(line(6).ActionData[0], 0);
    hw.key(Qt::Key_Down);
    EXPECT_EQ(line(6).ActionData, (std::array<qint32, 4>{6, 3, 0, 0}));
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
    EXPECT_EQ(line(2).Action, 999);
    hw.click(1, 2, ColumnInfo1);
    EXPECT_TRUE(hw.list(1)->isVisible());
    EXPECT_EQ(hw.list(1)->count(), 0);
    hw.key(Qt::Key_Down);
    hw.key(Qt::Key_Escape);
    EXPECT_EQ(line(2).ActionData[0], 5);
    hw.press("cmdApply");
    EXPECT_TRUE(hw.ini().contains("Action2=999\r\nAction2Data1=5\r\n"));
    hw.click(1, 2, ColumnAction);
    hw.key(Qt::Key_Space);
    EXPECT_EQ(line(2).Action, 0);
    hw.key(Qt::Key_Return);
}

TEST(HardwareGrid, TextIsStoredByEnterAndFocusAndDroppedByEscape) {
    HardwareForm hw(controller);
    hw.open();
    auto* box = hw.on<QLineEdit>(1, "txtDescription");
    line(1).Description = "A description of many letters";
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
    EXPECT_EQ(line(1).Description, "Red button");
    // Leaving the box stores it, for every line of the range; a click elsewhere edits that cell then.
    hw.drag(1, 6, 5, ColumnDescription);
    box->setText("Lamp");
    hw.click(1, 1, ColumnLogic);
    EXPECT_EQ(line(5).Description, "Lamp");
    EXPECT_EQ(line(6).Description, "Lamp");
    EXPECT_EQ(hw.cell(1, 1, ColumnLogic), "Y");
    hw.drag(1, 1, 2, ColumnLogic);
    EXPECT_EQ(line(1).ActiveLow, 0);
    EXPECT_EQ(line(2).ActiveLow, -1);

    auto* number = hw.on<QLineEdit>(1, "txtInfo");
    EXPECT_EQ(hw.cell(1, 3, ColumnDescription), "Play Cart 7");
    hw.click(1, 3, ColumnInfo2);
    EXPECT_EQ(number->selectedText(), "7");
    QTest::keyClicks(number, "1234 extra");
    QTest::keyClick(number, Qt::Key_Tab);
    EXPECT_EQ(line(3).ActionData[1], 1234);
    EXPECT_EQ(hw.cell(1, 3, ColumnDescription), "Play Cart 1234");
    // By its access key, Apply takes what is still being typed.
    hw.click(1, 3, ColumnInfo2);
    QTest::keyClicks(number, "55");
    hw.form->findChild<QPushButton*>("cmdApply")->click();
    EXPECT_TRUE(hw.ini().contains("Action3Data2=55"));
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
        EXPECT_TRUE(line(n).isOutput());
    for (const int n : {9, 16})
        EXPECT_FALSE(line(n).isOutput());
    hw.press("cmdApply");
    EXPECT_EQ(hw.prompts.texts(), QStringList{"This card is not currently supported"});
    EXPECT_EQ(hw.grid(2)->model()->rowCount(), 0);
}

TEST(HardwareGrid, RowsGoThroughTheClipboardToAnotherCardAndBack) {
    HardwareForm hw(controller);
    hw.open();
    line(1) = {0, 0, -1, 0, {}, "\"Go\" button", 255, 3, {7, 9, 0, 12}};
    line(4) = {0, 0, 0, 0, {}, "", 0, 96, {255, 0, 0, 0}};
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
        EXPECT_TRUE(HardwareCards()[2].Lines[n].isStoredAs(line(n))) << n;
    EXPECT_EQ(hw.cell(2, 4, ColumnDescription), "K-OVA - Use Log Mode");
    EXPECT_TRUE(hw.changes().contains("2"));

    // The same rows with words changed in a spreadsheet: the words count.
    QApplication::clipboard()->setText(QString(rows).replace("Use Log Mode", "Live Assist"));
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(HardwareCards()[2].Lines[4].ActionData[0], 2);
    // Words alone, in columns of another order.
    QApplication::clipboard()->setText("Action\tType\tInfo 1\r\nK-OVA - Other\tInput\tK-OVA SegEdit\r\n");
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(HardwareCards()[2].Lines[1].Action, 5);
    EXPECT_EQ(HardwareCards()[2].Lines[1].ActionData[0], 2);

    const HardwareLine before = HardwareCards()[2].Lines[1];
    const auto refused = [&](const char* text, const char* why) {
        QApplication::clipboard()->setText(text);
        hw.prompts.forget();
        hw.key(Qt::Key_V, Qt::ControlModifier);
        ASSERT_EQ(hw.prompts.asked.size(), 1) << text;
        EXPECT_TRUE(hw.prompts.texts().front().contains(why)) << hw.prompts.texts().front().toStdString();
        EXPECT_TRUE(HardwareCards()[2].Lines[1].isStoredAs(before));
    };
    refused("", "There are no lines to paste");
    refused("1\tInput\t\t\tNot in use\n2\tInput\t\t\tIC Display\n",
            "Row 2 cannot be pasted. Action is \"IC Display\"");
    refused("1\tInput\t\t\tIC Trigger\tInstant Cart X\n", "Info 1 is \"Instant Cart X\"");
    refused("1\tRelay\n", "Type is \"Relay\"");
    refused("1\tOutput\t\tLamp\tIC Display\t3\n", "line 1 of this card is an input and stays one");
    QApplication::clipboard()->setText(QString("1\tInput\t\tMany\n").repeated(6));
    hw.key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(hw.prompts.texts().back(), "Only the first 4 of 6 lines were pasted: the card has no more.");
    EXPECT_EQ(hw.cell(2, 4, ColumnDescription), "Many");
}

TEST(HardwareGrid, HiddenLinesAreLeftAlone) {
    HardwareForm hw(controller);
    hw.open();
    QTest::mouseClick(hw.on<QCheckBox>(1, "chkOnlyInUse"), Qt::LeftButton, {}, QPoint(8, 12));
    EXPECT_TRUE(hw.grid(1)->isRowHidden(3));
    line(8).Description = "Last";
    hw.on<QCheckBox>(1, "chkOnlyInUse")->setChecked(false);
    hw.on<QCheckBox>(1, "chkOnlyInUse")->setChecked(true);
    hw.drag(1, 8, 2, ColumnLogic);
    EXPECT_EQ(hw.grid(1)->selectedLines(), (LineNumbers{8, 3, 2}));
    for (int n = 1; n <= 8; ++n)
        EXPECT_EQ(line(n).ActiveLow, n == 2 || n == 3 || n == 8 ? -1 : 0) << n;
}
