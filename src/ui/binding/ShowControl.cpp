#include "ui/binding/ShowControl.h"

#include <QLabel>
#include <QTabWidget>

namespace tolvex {

void ShowControl(QWidget* form, const QString& name) {
    auto* control = form->findChild<QWidget*>(name);
    if (!control)
        return;
    for (QWidget* page = control; page->parentWidget(); page = page->parentWidget())
        if (auto* tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget());
            tabs && tabs->indexOf(page) >= 0)
            tabs->setCurrentWidget(page);
    const auto* label = qobject_cast<const QLabel*>(control);
    QWidget* field = label && label->buddy() ? label->buddy() : control;
    field->setFocus(Qt::OtherFocusReason);
}

} // namespace tolvex
