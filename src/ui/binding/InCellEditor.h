// The editor of a grid's cells: a text box or a list over the cell being edited. It is closed or open, and an
// open one ends exactly once, by commit() or by drop(), whatever happens to its grid meanwhile: a box that
// loses the focus or is hidden behind another tab is committed, Escape drops it.
//
//     box = editor.addTextBox("txtName", "Name of the workstation");
//     connect(&editor, &InCellEditor::committed, this, [this](QWidget*) { store(box->text()); });
//     editor.openText(box, cell, text, text.size());
#pragma once

#include "core/text/Choices.h"

#include <QObject>
#include <QPersistentModelIndex>

class QKeyEvent;
class QLineEdit;
class QTableView;

namespace tolvex {

class OptionList;

class InCellEditor : public QObject {
    Q_OBJECT

public:
    // Serves this grid, and belongs to it.
    explicit InCellEditor(QTableView* grid);

    // The controls that it opens, initially hidden: made once for each kind of cell, with the name used by
    // the form and the accessible name.
    QLineEdit* addTextBox(const char* name, const char* accessibleName);
    OptionList* addList(const char* name, const char* accessibleName);

    bool isOpen() const { return control_ != nullptr; }

    // Opens a control over a cell; an open one is committed first. In a box `selected` characters of its text
    // are selected. `key` is the key that opened it, null for none: in a box it replaces the text, in a list
    // it chooses.
    void openText(QLineEdit* box, const QModelIndex& cell, const QString& text, qsizetype selected,
                  const QKeyEvent* key = nullptr);
    void openList(OptionList* list, const QModelIndex& cell, const Choices& choices, int selected,
                  const QKeyEvent* key = nullptr);

    // Ends what is open; does nothing if closed. The focus returns to the grid if the control had it.
    void commit();
    void drop();

signals:
    // An entry of the open list, whenever a key reaches one or the mouse chooses it.
    void chosen(qint32 value);
    // The editor was closed, and this control ended in this way. The last choice in a list stays.
    void committed(QWidget* control);
    void dropped(QWidget* control);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void open(QWidget* control, const QModelIndex& cell);
    QWidget* close();
    void place();
    bool boxEvent(QEvent* event);

    QTableView* grid_;
    QWidget* control_ = nullptr; // null: closed
    QPersistentModelIndex cell_;
};

} // namespace tolvex
