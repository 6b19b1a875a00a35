#include "ui/style/WheelGuard.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTabBar>

namespace tolvex {

namespace {

// The field that a widget is or belongs to, such as a list, a number or the tabs of a strip; null for a
// widget without a value.
const QWidget* fieldOf(const QWidget* widget) {
    for (; widget && !widget->isWindow(); widget = widget->parentWidget()) {
        if (qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
            qobject_cast<const QTabBar*>(widget))
            return widget;
        if (qobject_cast<const QAbstractSlider*>(widget))
            return qobject_cast<const QScrollBar*>(widget) ? nullptr : widget;
    }
    return nullptr;
}

class WheelGuard : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool wheel = event->type() == QEvent::Wheel;
        if ((!wheel && event->type() != QEvent::Polish) || !watched->isWidgetType())
            return false;
        auto* widget = static_cast<QWidget*>(watched);
        const QWidget* field = fieldOf(widget);
        if (!field)
            return false;
        if (!wheel) {
            // Otherwise the wheel itself would give it the focus.
            if (field == widget && widget->focusPolicy() == Qt::WheelFocus)
                widget->setFocusPolicy(Qt::StrongFocus);
            return false;
        }
        const QWidget* focus = QApplication::focusWidget();
        if (field == focus || field->isAncestorOf(focus))
            return false;
        event->ignore(); // passes it on to the surrounding widget
        return true;
    }
};

} // namespace

void GuardWheel(QApplication& application) {
    static QPointer<WheelGuard> guard;
    if (guard)
        return;
    guard = new WheelGuard(&application);
    application.installEventFilter(guard);
}

} // namespace tolvex
