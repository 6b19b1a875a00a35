#include "ui/forms/frmGoodInputBox.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace tolvex;
using Mode = frmGoodInputBox::Mode;

namespace {

void click(QWidget& form, const char* name) {
    auto* button = form.findChild<QPushButton*>(name);
    ASSERT_TRUE(button && button->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
}

// Answers the input box that comes up modally.
void answer(const std::function<void(frmGoodInputBox&)>& act) {
    QTimer::singleShot(0, [act] {
        auto* box = qobject_cast<frmGoodInputBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        act(*box);
    });
}

} // namespace

TEST(InputBox, TextModeGivesTheTextAndEmptyIsNoCancel) {
    QString result;
    answer([](frmGoodInputBox& box) {
        EXPECT_EQ(box.windowTitle(), "Title");
        auto* text = box.findChild<QLineEdit*>("Text1");
        EXPECT_EQ(text->selectedText(), "first");
        QTest::keyClicks(text, "second");
        QTest::keyClick(text, Qt::Key_Return);
    });
    EXPECT_FALSE(GoodInputBox(" R & B? ", " Title ", "first", 0, result, nullptr));
    EXPECT_EQ(result, "second");

    answer([](frmGoodInputBox& box) {
        QTest::keyClick(box.findChild<QLineEdit*>("Text1"), Qt::Key_Delete);
        click(box, "cmdOK");
    });
    EXPECT_FALSE(GoodInputBox("p", "t", "gone", 0, result, nullptr));
    EXPECT_EQ(result, "");
}

TEST(InputBox, CancelEscapeAndTheCloseBoxCancel) {
    for (int way = 0; way < 3; ++way) {
        QString result = "before";
        answer([way](frmGoodInputBox& box) {
            if (way == 0)
                click(box, "cmdCancel");
            else if (way == 1)
                QTest::keyClick(&box, Qt::Key_Escape);
            else
                box.close();
        });
        EXPECT_TRUE(GoodInputBox("p", "t", "text", 0, result, nullptr));
        EXPECT_EQ(result, "");
    }
}

TEST(InputBox, TheLimitStopsTypingButKeepsALongerDefault) {
    frmGoodInputBox box;
    box.setText("123456789");
    box.setMaximumLength(5);
    box.show();
    auto* text = box.findChild<QLineEdit*>("Text1");
    EXPECT_EQ(text->text(), "123456789");
    QTest::keyClick(text, Qt::Key_End);
    QTest::keyClicks(text, "x");
    EXPECT_EQ(text->text(), "123456789");
    QTest::keyClick(text, Qt::Key_Backspace);
    EXPECT_EQ(text->text(), "12345678");
    text->selectAll();
    QTest::keyClicks(text, "abcdefgh");
    EXPECT_EQ(text->text(), "abcde");
}

TEST(InputBox, MasksAndShowsOneControlPerMode) {
    frmGoodInputBox masked;
    masked.setPasswordCharacter("*");
    masked.setText("secret");
    EXPECT_EQ(masked.findChild<QLineEdit*>("Text1")->displayText(), "******");

    const QList<std::pair<Mode, const char*>> controls = {
        {Mode::Text, "Text1"},
        {Mode::Combo, "comboCombo"},
        {Mode::List, "comboList"},
        {Mode::SortedList, "comboSortedList"},
        {Mode::MultipleList, "listMulti"},
        {Mode::SingleList, "listMultiNonSel"},
    };
    for (const auto& [mode, name] : controls) {
        frmGoodInputBox box;
        box.setMode(mode);
        box.setItems({"pear", "apple", "fig"});
        box.show();
        for (const auto& other : controls)
            EXPECT_EQ(box.findChild<QWidget*>(other.second)->isVisible(), QString(other.second) == name)
                << name;
    }
}

TEST(InputBox, ListModesAnswerWithTextOrNumbers) {
    const auto run = [](Mode mode, const std::function<void(frmGoodInputBox&)>& choose) {
        frmGoodInputBox box;
        box.setMode(mode);
        box.setItems({"pear", "apple", "fig"});
        box.show();
        choose(box);
        click(box, "cmdOK");
        return box.isVisible() ? QString("open") : box.answer();
    };
    EXPECT_EQ(
        run(Mode::List,
            [](auto& box) { QTest::keyClick(box.template findChild<QComboBox*>("comboList"), Qt::Key_End); }),
        "fig");
    EXPECT_EQ(run(Mode::SortedList, [](auto&) {}), "apple");
    EXPECT_EQ(run(Mode::Combo,
                  [](auto& box) { box.template findChild<QComboBox*>("comboCombo")->setEditText("own"); }),
              "own");
    EXPECT_EQ(run(Mode::SingleList, [](auto&) {}), "open");
    const auto pick = [](const char* list, const QList<int>& rows) {
        return [list, rows](frmGoodInputBox& box) {
            auto* view = box.findChild<QListWidget*>(list);
            for (const int row : rows)
                QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                                  view->visualItemRect(view->item(row)).center());
        };
    };
    EXPECT_EQ(run(Mode::SingleList, pick("listMultiNonSel", {0, 2})), "3");
    EXPECT_EQ(run(Mode::MultipleList, pick("listMulti", {0, 2})), "1,3,");
    EXPECT_EQ(run(Mode::MultipleList, [](auto&) {}), "");
}
