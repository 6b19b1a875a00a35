// The grid of a card's lines. One column over several rows can be selected, upwards or downwards, and is
// edited at once: a click on a cell, or F2 on the keyboard, changes the cell's lines or opens the editor over
// it, a list or a text box.
#pragma once

#include "hardware/LineEdits.h"

#include <QTableView>

#include <functional>

class QLineEdit;

namespace tolvex {

class LineUsageModel;
class OptionList;

class LineGrid : public QTableView {
    Q_OBJECT

public:
    explicit LineGrid(QWidget* parent = nullptr);

    void setLines(LineUsageModel* model);
    void setCardType(const CardTypeRow* type) { type_ = type; }
    // Hides lines that stand for nothing, as they are now.
    void showOnlyLinesInUse(bool on);
    // What stands in the middle while there are no rows to show.
    void setEmptyText(const QString& text);

    // The selected lines that can be seen, from the current line to the other end of the selection.
    LineNumbers selectedLines() const;
    void copyLines();
    void pasteLines();
    void clearLines(); // "Not in use"

    // Stores what is being typed and closes the editor.
    void finishEditing();

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
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    HardwareCard& card() const;
    // Changes the lines or opens the editor of the current cell. `key` is what opened it, null for none.
    void editCell(QKeyEvent* key = nullptr);
    void openText(QLineEdit* box, const QRect& cell, const QString& text, int selected, QKeyEvent* key);
    void choose(qint32 value);
    void restore();
    void storeText(QLineEdit* box);
    void leaveEditor(QWidget* editor);
    void changed();
    void hideRows();

    LineUsageModel* model_ = nullptr;
    const CardTypeRow* type_ = nullptr;
    QLineEdit* txtDescription_;
    QLineEdit* txtInfo_;
    OptionList* ListOptions_;
    QString emptyText_;
    bool onlyInUse_ = false;
    int descriptionWidth_ = 0; // as told
    int pressedColumn_ = -1;
    // What is being edited: these lines, of which the last choice by key is taken back first; and what a
    // choice means: -1 nothing, 0 the action, 1 to 4 that parameter.
    LineNumbers lines_;
    QList<HardwareLine> before_;
    int tag_ = -1;
};

} // namespace tolvex
