// An editor over the cells of any grid: it is closed or open, and an open one ends exactly once.
#include "ui/binding/InCellEditor.h"
#include "ui/binding/OptionList.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QTableWidget>
#include <QTest>

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

struct Grid : QTableWidget {
    Grid()
        : QTableWidget(3, 2) {
        box->setObjectName("txtName");
        connect(&editor, &InCellEditor::committed, this, [this](QWidget* control) {
            EXPECT_FALSE(editor.isOpen());
            ended += control == box ? "stored " + box->text() : "list";
        });
        connect(&editor, &InCellEditor::dropped, this, [this] { ended += "dropped"; });
        connect(&editor, &InCellEditor::chosen, this, [this](qint32 value) { chosen += value; });
        show();
        activateWindow();
    }
    void openText(int row, const QKeyEvent* key = nullptr) {
        editor.openText(box, model()->index(row, 1), "Studio", 3, key);
    }

    InCellEditor editor{this};
    QLineEdit* box = editor.addTextBox("txtName", "Name");
    OptionList* list = editor.addList("ListOptions", "Choices");
    QStringList ended;
    QList<qint32> chosen;
};

} // namespace

TEST(InCellEditor, EndsOnceByCommitOrByDrop) {
    Grid grid;
    ASSERT_TRUE(QTest::qWaitForWindowActive(&grid));
    grid.editor.commit();
    grid.editor.drop();
    EXPECT_EQ(grid.ended, QStringList());
    grid.openText(0);
    EXPECT_TRUE(grid.editor.isOpen());
    EXPECT_EQ(grid.box->geometry(), grid.visualRect(grid.model()->index(0, 1)));
    EXPECT_EQ(grid.box->selectedText(), "Stu");
    // Another cell: the first one is committed.
    grid.box->setText("One");
    grid.openText(1);
    EXPECT_EQ(grid.ended, QStringList{"stored One"});
    EXPECT_EQ(grid.box->geometry(), grid.visualRect(grid.model()->index(1, 1)));
    QTest::keyClick(grid.box, Qt::Key_Escape);
    EXPECT_TRUE(grid.hasFocus());
    grid.editor.commit();
    EXPECT_EQ(grid.ended, (QStringList{"stored One", "dropped"}));
    // The key that opened it replaces the text.
    const QKeyEvent key(QEvent::KeyPress, Qt::Key_X, {}, "x");
    grid.openText(2, &key);
    QTest::keyClicks(grid.box, "y");
    grid.hide();
    EXPECT_EQ(grid.ended.last(), "stored xy");
    EXPECT_FALSE(grid.editor.isOpen());
    EXPECT_EQ(grid.ended.size(), 3);
}

TEST(InCellEditor, AListTellsEachChoiceAndEndsWithTheLast) {
    Grid grid;
    ASSERT_TRUE(QTest::qWaitForWindowActive(&grid));
    const Choices choices = {{"None", 0}, {"Left", 10}, {"Right", 20}};
    const QKeyEvent key(QEvent::KeyPress, Qt::Key_L, {}, "l");
    grid.editor.openList(grid.list, grid.model()->index(0, 0), choices, 0, &key);
    QTest::keyClick(grid.list->view(), Qt::Key_Down);
    QTest::keyClick(grid.list->view(), Qt::Key_Return);
    EXPECT_EQ(grid.chosen, (QList<qint32>{10, 20}));
    EXPECT_EQ(grid.ended, QStringList{"list"});
    grid.editor.openList(grid.list, grid.model()->index(0, 0), choices, 2);
    EXPECT_EQ(grid.list->currentText(), "Right");
    grid.editor.commit();
    grid.list->view()->window()->close(); // a late event of a list that is gone
    QCoreApplication::processEvents();
    EXPECT_EQ(grid.ended, (QStringList{"list", "list"}));
    // Closed from outside, for instance by a click.
    grid.editor.openList(grid.list, grid.model()->index(1, 0), choices, 2);
    grid.list->view()->window()->hide();
    EXPECT_TRUE(QTest::qWaitFor([&grid] { return !grid.editor.isOpen(); }));
    EXPECT_TRUE(grid.list->isHidden());
    EXPECT_EQ(grid.chosen.size(), 2);
}
