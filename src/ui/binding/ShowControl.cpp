#include "ui/binding/ShowControl.h"

#include <QLabel>
#include <QTabWidget>

namespace tolvex {

QList<TabPlace> ShowTabsOf(QWidget* control) {
    QList<TabPlace> places;
    for (QWidget* page = control; page->parentWidget(); page = page->parentWidget())
        if (auto* tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget()))
            if (const int tab = tabs->indexOf(page); tab >= 0) {
                tabs->setCurrentIndex(tab);
                places.append({tabs, tab});
            }
    return places;
}

void ShowControl(QWidget* form, const QString& name) {
    auto* control = form->findChild<QWidget*>(name);
    if (!control)
        return;
    ShowTabsOf(control);
    const auto* label = qobject_cast<const QLabel*>(control);
    QWidget* field = label && label->buddy() ? label->buddy() : control;
    field->setFocus(Qt::OtherFocusReason);
}

} // namespace tolvex
