// The grid of a card's lines. The user can select one column over several rows, upwards or downwards, and
// edit it at once: a click on a cell, or F2, changes the cell's lines or opens the editor over it, a list or
// a text box.
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
    // The type whose lines are shown; null for an unknown
    // one. Clears the undo history.
    void setCardType(const CardTypeRow* type);
    // Shows the lines as they are in the table now.
    void showLines();
    // Hides lines that are currently unused.
    void showOnlyLinesInUse(bool on);
    // The message in the middle while there are no rows.
    void setEmptyText(const QString& text);

    // The selected visible lines, from the current line to the other end of the selection.
    LineNumbers selectedLines() const;
    void copyLines();
    void pasteLines();
    void clearLines(); // "Not in use"
    void undo();       // reverts the last change; stops at a change of type

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
    // Changes the lines or opens the editor of the current cell. `key` opened it, null for none.
    void editCell(const QKeyEvent* key = nullptr);
    void storeText(QWidget* box);
    void choose(qint32 value);
    // Lines change between the two; any difference can be undone.
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
    int descriptionWidth_ = 0; // as given
    int columnsWidth_ = 0;     // of all other columns that are ever used
    int pressedColumn_ = -1;
    // What is being edited: these lines, and the meaning of a choice or a number: -1 nothing, 0 the action, 1
    // to 4 that parameter.
    LineNumbers lines_;
    int tag_ = -1;
    Lines before_;      // as they were when the change began
    QList<Lines> undo_; // the lines before each change, the last one at the end
};

} // namespace tolvex
