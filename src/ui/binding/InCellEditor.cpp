#include "ui/binding/InCellEditor.h"

#include "ui/binding/OptionList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>

#include <utility>

namespace tolvex {

InCellEditor::InCellEditor(QTableView* grid)
    : QObject(grid)
    , grid_(grid) {
    connect(grid->horizontalHeader(), &QHeaderView::sectionResized, this, &InCellEditor::place);
}

QLineEdit* InCellEditor::addTextBox(const char* name, const char* accessibleName) {
    auto* box = new QLineEdit(grid_->viewport());
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(QLatin1String(accessibleName));
    box->setStyleSheet(QStringLiteral("QLineEdit { border-radius: 0; padding: 0 4px; min-height: 0; }"));
    box->hide();
    box->installEventFilter(this);
    return box;
}

OptionList* InCellEditor::addList(const char* name, const char* accessibleName) {
    auto* list = new OptionList(grid_->viewport());
    list->setObjectName(QLatin1String(name));
    list->setAccessibleName(QLatin1String(accessibleName));
    list->installEventFilter(this);
    connect(list, &OptionList::chosen, this, [this, list](qint32 value) {
        if (control_ == list)
            emit chosen(value);
    });
    connect(list, &OptionList::committed, this, [this, list] {
        if (control_ == list)
            commit();
    });
    connect(list, &OptionList::dropped, this, [this, list] {
        if (control_ == list)
            drop();
    });
    return list;
}

void InCellEditor::open(QWidget* control, const QModelIndex& cell) {
    commit();
    cell_ = cell;
    control_ = control;
    place();
}

void InCellEditor::openText(QLineEdit* box, const QModelIndex& cell, const QString& text, qsizetype selected,
                            const QKeyEvent* key) {
    open(box, cell);
    box->setText(key ? key->text() : text);
    box->show();
    box->setFocus();
    if (!key)
        box->setSelection(0, static_cast<int>(qMin(selected, text.size())));
}

void InCellEditor::openList(OptionList* list, const QModelIndex& cell, const Choices& choices, int selected,
                            const QKeyEvent* key) {
    open(list, cell);
    list->open(choices, selected);
    if (key)
        list->press(*key);
}

// Closed first: consequences such as the loss of focus must not end it a second time.
QWidget* InCellEditor::close() {
    QWidget* control = std::exchange(control_, nullptr);
    if (!control)
        return nullptr;
    auto* list = qobject_cast<OptionList*>(control);
    const bool focused = list || control->hasFocus();
    if (list)
        list->close();
    else
        control->hide();
    if (focused && grid_->isVisible())
        grid_->setFocus();
    return control;
}

void InCellEditor::commit() {
    if (QWidget* control = close())
        emit committed(control);
}

void InCellEditor::drop() {
    if (QWidget* control = close())
        emit dropped(control);
}

void InCellEditor::place() {
    if (control_ && cell_.isValid())
        control_->setGeometry(grid_->visualRect(cell_));
}

bool InCellEditor::eventFilter(QObject* watched, QEvent* event) {
    if (!control_ || watched != control_)
        return false;
    if (event->type() == QEvent::Hide) {
        commit();
        return false;
    }
    return qobject_cast<QLineEdit*>(control_) && boxEvent(event);
}

bool InCellEditor::boxEvent(QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        // The box's own menu takes the focus for a while.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            commit();
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
        drop();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commit();
        return true;
    default:
        return false;
    }
}

} // namespace tolvex
