// The grid of a card's lines. One column over several rows can be selected, upwards or downwards, and is
// edited at once: a click on a cell, or F2 on the keyboard, changes the cell's lines or opens the editor over
// it, a list or a text box.
#pragma once

#include "hardware/LineEdits.h"
#include "ui/binding/InCellEditor.h"

#include <QTableView>

namespace tolvex {

class LineUsageModel;

class LineGrid : public QTableView {
    Q_OBJECT

public:
    explicit LineGrid(QWidget* parent = nullptr);

    void setLines(LineUsageModel* model);
    // The type whose lines are shown; null for one that nothing is known of. What was changed under another
    // cannot be undone.
    void setCardType(const CardTypeRow* type);
    // Shows the lines as they are in the table now.
    void showLines();
    // Hides lines that stand for nothing, as they are now.
    void showOnlyLinesInUse(bool on);
    // What stands in the middle while there are no rows to show.
    void setEmptyText(const QString& text);

    // The selected lines that can be seen, from the current line to the other end of the selection.
    LineNumbers selectedLines() const;
    void copyLines();
    void pasteLines();
    void clearLines(); // "Not in use"
    void undo();       // takes the last change back, up to that of the type

    // Stores what is being typed and closes the editor.
    void finishEditing() { editor_.commit(); }

    QSize sizeHint() const override;

signals:
    void linesChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void selectAll() override;

private:
    using Lines = NumberedTable<HardwareLine, LinesPerCard>;

    HardwareCard& card() const;
    CardLines lines() const;
    // Changes the lines or opens the editor of the current cell. `key` is what opened it, null for none.
    void editCell(const QKeyEvent* key = nullptr);
    void storeText(QWidget* box);
    void choose(qint32 value);
    // Between the two the lines change; what differs can be undone.
    void beginChange() { before_ = card().Lines; }
    void endChange();
    void takeBack(const Lines& lines);
    void changed();
    void hideRows();
    void hideEmptyColumns();
    void fillWidth();

    LineUsageModel* model_ = nullptr;
    const CardTypeRow* type_ = nullptr;
    InCellEditor editor_{this};
    QLineEdit* txtDescription_;
    QLineEdit* txtInfo_;
    OptionList* ListOptions_;
    QString emptyText_;
    bool onlyInUse_ = false;
    int descriptionWidth_ = 0; // as told
    int columnsWidth_ = 0;     // of the others that are ever used
    int pressedColumn_ = -1;
    // What is being edited: these lines, and what a choice or a number means: -1 nothing, 0 the action, 1 to
    // 4 that parameter.
    LineNumbers lines_;
    int tag_ = -1;
    Lines before_;      // as they were when the change began
    QList<Lines> undo_; // the lines before each change, the last one at the end
};

} // namespace tolvex
