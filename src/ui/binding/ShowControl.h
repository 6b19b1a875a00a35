// Brings a control of a form into sight.
#pragma once

#include <QList>
#include <QString>

class QTabWidget;
class QWidget;

namespace tolvex {

struct TabPlace {
    QTabWidget* tabs;
    int tab;
};
// Brings the tabs that contain a control to the front and returns them, from the inside out.
QList<TabPlace> ShowTabsOf(QWidget* control);

// Its tab to the front, and the focus on it or, for a label, on the field that it belongs to. Nothing happens
// for a name that the form does not have.
void ShowControl(QWidget* form, const QString& name);

} // namespace tolvex
