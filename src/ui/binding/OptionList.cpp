#include "ui/binding/OptionList.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>

namespace tolvex {

namespace {

constexpr int MostVisible = 14;

// Keys that choose nothing: they only modify others.
bool choosesNothing(const QKeyEvent& key) {
    switch (key.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_F1:
        return true;
    default:
        return (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    }
}

} // namespace

OptionList::OptionList(QWidget* parent)
    : QComboBox(parent) {
    setMaxVisibleItems(MostVisible);
    setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; border-radius: 0; padding: 0 4px; "
                                 "min-height: 0; }"));
    // A list without entries cannot drop open: its keys come to the box.
    view()->installEventFilter(this);
    installEventFilter(this);
    hidden_.setSingleShot(true);
    connect(&hidden_, &QTimer::timeout, this, &OptionList::committed);
    connect(this, &QComboBox::activated, this, [this](int entry) { emit chosen(itemData(entry).toInt()); });
    hide();
}

void OptionList::open(const Choices& choices, int selected) {
    clear();
    for (const Choice& choice : choices)
        addItem(choice.text, choice.value);
    setCurrentIndex(selected);
    const int widest = view()->sizeHintForColumn(0) + view()->frameWidth() * 2 + 32;
    view()->setMinimumWidth(qMax(width(), widest));
    show();
    setFocus();
    showPopup();
    hidden_.stop();
}

void OptionList::close() {
    hidePopup();
    hide();
    hidden_.stop();
}

void OptionList::press(const QKeyEvent& key) {
    QKeyEvent copy(key.type(), key.key(), key.modifiers(), key.text());
    QCoreApplication::sendEvent(view(), &copy);
}

bool OptionList::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Hide:
        // An entry chosen by the mouse is reported after this.
        if (watched == view())
            hidden_.start(0);
        break;
    case QEvent::FocusOut:
        // For a box without a list; otherwise the list has the focus.
        if (watched == this && count() == 0 &&
            static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            emit committed();
        break;
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        if (!passing_)
            return handleKey(watched, static_cast<QKeyEvent*>(event));
        break;
    default:
        break;
    }
    return QComboBox::eventFilter(watched, event);
}

bool OptionList::handleKey(QObject* watched, QKeyEvent* key) {
    const bool pressed = key->type() == QEvent::KeyPress;
    switch (key->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_F4:
        key->accept(); // otherwise the list would choose its entry by the event before the key's own
        if (pressed && key->key() == Qt::Key_Escape)
            emit dropped();
        else if (pressed)
            emit committed();
        return true;
    default:
        break;
    }
    if (watched == this) {
        key->accept(); // nothing can be chosen here
        return true;
    }
    if (!pressed)
        return QComboBox::eventFilter(watched, key);
    // The list moves to the key's target before the entry is taken.
    passing_ = true;
    QCoreApplication::sendEvent(watched, key);
    passing_ = false;
    if (!choosesNothing(*key))
        chooseReached();
    return true;
}

void OptionList::chooseReached() {
    const QModelIndex entry = view()->currentIndex();
    if (entry.isValid())
        emit chosen(itemData(entry.row()).toInt());
}

} // namespace tolvex
