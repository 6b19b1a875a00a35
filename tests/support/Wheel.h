// Turns the mouse wheel over a widget as a user does.
#pragma once

#include <QApplication>
#include <QWheelEvent>
#include <QWidget>
#include <QtTest/qtestspontaneevent.h>

namespace tolvex::tests {

// One step downwards; `up` turns it the other way.
inline void RollWheel(QWidget* over, bool up = false) {
    const QPointF at(over->rect().center());
    QWheelEvent wheel(at, over->mapToGlobal(at), {}, QPoint(0, up ? 120 : -120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel); // others are not passed on to the parent
    qApp->notify(over, &wheel);
}

} // namespace tolvex::tests
