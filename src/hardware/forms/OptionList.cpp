#include "hardware/forms/OptionList.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QTimer>

namespace tolvex {

namespace {

constexpr int MostVisible = 14;

// Keys that choose nothing: they only change what others mean, or leave.
bool choosesNothing(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_F1:
        return true;
    default:
        return false;
    }
}

} // namespace

OptionList::OptionList(QWidget* parent)
    : QComboBox(parent) {
    setMaxVisibleItems(MostVisible);
    setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; border-radius: 0; padding: 0 4px; "
                                 "min-height: 0; }"));
    view()->installEventFilter(this);
    connect(this, &QComboBox::activated, this, [this](int entry) { emit clicked(itemData(entry).toInt()); });
    hide();
}

void OptionList::open(const Choices& choices, int selected, const QRect& cell) {
    clear();
    for (const Choice& choice : choices)
        addItem(choice.text, choice.value);
    setCurrentIndex(selected);
    const int widest = view()->sizeHintForColumn(0) + view()->frameWidth() * 2 + 32;
    view()->setMinimumWidth(qMax(cell.width(), widest));
    setGeometry(cell);
    show();
    setFocus();
    showPopup();
}

void OptionList::press(QKeyEvent* key) {
    QKeyEvent copy(key->type(), key->key(), key->modifiers(), key->text());
    QCoreApplication::sendEvent(view(), &copy);
}

void OptionList::hidePopup() {
    QComboBox::hidePopup();
    // An entry that the mouse chose is told first.
    if (isVisible())
        QTimer::singleShot(0, this, &OptionList::closed);
}

bool OptionList::eventFilter(QObject* watched, QEvent* event) {
    const bool pressed = event->type() == QEvent::KeyPress;
    if (!isVisible() || (!pressed && event->type() != QEvent::ShortcutOverride))
        return QComboBox::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F4) {
        event->accept(); // the list would choose its entry by the event before the key's own
        if (pressed) {
            if (key == Qt::Key_Escape)
                emit cancelled();
            hidePopup();
        }
        return true;
    }
    // Once the list has moved to where the key leads.
    if (pressed && !choosesNothing(key))
        QTimer::singleShot(0, this, &OptionList::reach);
    return QComboBox::eventFilter(watched, event);
}

void OptionList::reach() {
    const QModelIndex entry = view()->currentIndex();
    if (isVisible() && entry.isValid())
        emit reached(itemData(entry.row()).toInt());
}

} // namespace tolvex
