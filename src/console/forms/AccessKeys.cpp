#include "console/forms/AccessKeys.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenuBar>

#include <algorithm>

namespace tolvex {

namespace {

bool marks(const QString& caption, QChar key) {
    const QKeySequence sequence = QKeySequence::mnemonic(caption);
    return !sequence.isEmpty() && sequence[0].key() == static_cast<Qt::Key>(key.toUpper().unicode());
}

// Buttons in reading order, independent of their creation.
QList<QAbstractButton*> buttonsFor(const QMainWindow* window, QChar key) {
    QList<QAbstractButton*> buttons;
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>())
        if (button->isVisible() && button->isEnabled() && marks(button->text(), key))
            buttons.append(button);
    std::sort(buttons.begin(), buttons.end(), [window](const QWidget* a, const QWidget* b) {
        const QPoint left = a->mapTo(window, QPoint());
        const QPoint right = b->mapTo(window, QPoint());
        return left.y() != right.y() ? left.y() < right.y() : left.x() < right.x();
    });
    return buttons;
}

QAction* menuFor(const QMainWindow* window, QChar key) {
    for (QAction* action : window->menuBar()->actions())
        if (action->isVisible() && action->isEnabled() && marks(action->text(), key))
            return action;
    return nullptr;
}

void openMenu(QMainWindow* window, QAction* menu) {
    window->menuBar()->setFocus();
    window->menuBar()->setActiveAction(menu);
}

} // namespace

bool PressAccessKey(QMainWindow* window, QChar key) {
    const QList<QAbstractButton*> buttons = buttonsFor(window, key);
    QAction* menu = menuFor(window, key);
    if (buttons.isEmpty() && !menu)
        return false;
    if (buttons.isEmpty()) {
        openMenu(window, menu);
    } else if (buttons.size() == 1 && !menu) {
        buttons.front()->setFocus(Qt::ShortcutFocusReason);
        buttons.front()->click();
    } else {
        const qsizetype at = buttons.indexOf(qobject_cast<QAbstractButton*>(window->focusWidget()));
        if (at + 1 < buttons.size())
            buttons[at + 1]->setFocus(Qt::ShortcutFocusReason);
        else if (menu)
            openMenu(window, menu);
        else
            buttons.front()->setFocus(Qt::ShortcutFocusReason);
    }
    return true;
}

} // namespace tolvex
